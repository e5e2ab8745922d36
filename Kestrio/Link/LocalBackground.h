// The agent's side of `Background`: answers from the running program's model. Belongs to the main queue, like the
// model.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/Background.h"
#include "Kestrio/Link/WindowRequest.h"
#include "Kestrio/Shell/AppModel.h"

namespace kestrio {

class LocalBackground final : public Background {
public:
    struct Facts {
        std::string version;
        std::int64_t processIdentifier;
        std::string dataFolder;
        Date startedAt;
    };

    using ImportFiles = std::function<Subscription(std::vector<SessionFile>, ImportReceiver)>;
    using DeleteActivity = std::function<void(std::optional<Date> before, std::function<void()> deleted)>;
    using ObserveMonitor = std::function<Subscription(std::function<void(const MonitorReading&)>)>;

    /// What the agent lends it, each as the operation of `Background` by the same name says. What is left out answers
    /// as if there were nothing of its kind.
    struct Services {
        std::function<Failure(const WindowRequest&)> openWindow = {};
        ImportFiles importFiles = {};
        DeleteActivity deleteActivity = {}; // tells its end on the queue
        std::function<void()> deleteResourceLog = {};
        std::function<std::vector<BrowserReading>()> browsers = {};
        std::function<Subscription(std::function<void()>)> observeBrowsers = {};
        ObserveMonitor observeMonitor = {};
        std::function<AgentCost()> ownCost = {};
        std::function<void()> quit = {}; // called after the answer
        OptimizerLink* optimizer = nullptr;
    };

    /// The model and the optimizer must outlive this.
    LocalBackground(AppModel& model, Facts facts, Services services);

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
    OptimizerLink* optimizer() override { return services_.optimizer; }

    /// Runs work on the queue after what runs now.
    void afterwards(Queue::Work work) { model_.queue().async(std::move(work)); }

    /// Called on the queue after the state or the end of a pause changed.
    Subscription observeState(std::function<void()> receiver);

private:
    Failure openWindow(const WindowRequest& request);
    void tellSoon();

    AppModel& model_;
    const Facts facts_;
    const Services services_;
    Signal<AgentStatus> changed_;
    Signal<> stateChanged_;
    Signal<> activityDataDidChange_;
    Subscription telling_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
