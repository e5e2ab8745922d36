// A face's side of `Background`: asks the agent over the session bus. Single-threaded; the calls block up to their
// deadline. Changes arrive while `run` runs.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/Background.h"

#include <functional>
#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
} // namespace sdbus

namespace kestrio {

class OptimizerClient;

class BackgroundClient final : public Background {
public:
    /// Null when there is no bus at the address or no agent on it. Does not start one. What listens at the address is
    /// taken for a bus that answers: whoever does not know that asks it first, with a deadline of their own.
    static std::unique_ptr<BackgroundClient> connect(const std::string& busAddress);
    ~BackgroundClient() override;

    std::optional<AgentStatus> status() override;
    Failure pause(std::optional<Seconds> length) override;
    Failure resume() override;
    Failure openDashboard(std::optional<std::string> page) override;
    Failure openSettings(std::optional<std::string> tab) override;
    Failure quit() override;
    Subscription importFiles(std::vector<SessionFile> files, ImportReceiver receiver) override;
    Failure deleteActivity(std::optional<Date> before) override;
    Failure deleteResourceLog() override;
    Subscription observeData(std::function<void()> receiver) override;
    std::optional<std::vector<BrowserReading>> browsers() override;
    Subscription observeBrowsers(std::function<void()> receiver) override;
    std::optional<AgentCost> ownCost() override;
    Subscription observe(std::function<void(const AgentStatus&)> receiver) override;
    Subscription observeMonitor(std::function<void(const MonitorReading&)> receiver) override;
    OptimizerLink* optimizer() override;

    /// Delivers changes on the calling thread until the agent ends (true) or the bus does (false).
    bool run();

    /// Delivers what arrives on the calling thread for a while, and returns soon after something came. False when the
    /// bus went.
    bool serve(Seconds patience);

    /// Can be read when something arrived; `serve` then delivers it.
    int descriptor() const;

    /// `receiver` is called when the agent leaves the bus, while changes are delivered.
    Subscription observeEnd(std::function<void()> receiver);

private:
    explicit BackgroundClient(std::unique_ptr<sdbus::IConnection> connection);

    /// What a method without arguments answers; absent when the agent does not.
    std::optional<std::string> answer(const char* method);
    template <class... Arguments>
    Failure call(const char* method, Arguments... arguments);
    /// The same, but waits for no answer.
    void tell(const char* method);

    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IProxy> proxy_;
    std::unique_ptr<OptimizerClient> optimizer_;
    std::shared_ptr<std::function<void(const AgentStatus&)>> receiver_;
    std::shared_ptr<std::function<void()>> dataReceiver_ = std::make_shared<std::function<void()>>();
    std::shared_ptr<Signal<>> browserChanges_ = std::make_shared<Signal<>>();
    std::shared_ptr<std::function<void(double)>> shareReceiver_ = std::make_shared<std::function<void(double)>>();
    std::shared_ptr<Signal<MonitorReading>> monitorReadings_ = std::make_shared<Signal<MonitorReading>>();
    std::shared_ptr<BackgroundClient*> self_ = std::make_shared<BackgroundClient*>(this); // tokens hold it weakly
};

} // namespace kestrio
