// Who asked a desktop's screen saver service to stay away, and its power manager to stay awake. These list nothing, so
// that the calls to them are watched as they are made; what was held before this began is not known.
//
// Belongs to the queue of its bus. A holder that dies sends no farewell: its connection's end counts as one.
#pragma once

#include "Kestrio/Base/Subscription.h"
#include "Kestrio/Platform/Linux/BusMonitor.h"
#include "Kestrio/Platform/SleepInhibitors.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sdbus {
class IProxy;
class Message;
} // namespace sdbus

namespace kestrio {

class BusConnection;

class ScreenSaverHolders {
public:
    /// The bus, which is the one at the address, must outlive this.
    ScreenSaverHolders(LoopQueue& queue, BusConnection& sessionBus, const std::string& address);
    ~ScreenSaverHolders();
    ScreenSaverHolders(const ScreenSaverHolders&) = delete;
    ScreenSaverHolders& operator=(const ScreenSaverHolders&) = delete;

    /// A holder whose process is not known yet is left out.
    std::vector<SleepInhibitor> held() const;

private:
    static constexpr std::size_t serviceCount = 2;
    struct Holder {
        std::array<int, serviceCount> calls{}; // that were not taken back, by service
        std::optional<pid_t> process;
        Subscription end;
    };

    void watchService(std::size_t service);
    void serviceOwnerChanged(std::size_t service, sdbus::Message& message);
    void seen(const BusMonitor::Call& call);
    void hold(const std::string& sender, std::size_t service);
    void release(const std::string& sender, std::size_t service);
    void askForProcess(const std::string& sender);
    void forget(std::size_t service);

    BusConnection& bus_;
    std::unique_ptr<sdbus::IProxy> names_;
    std::array<bool, serviceCount> isServed_{}; // a call that nobody answers holds nothing
    std::array<Subscription, serviceCount> serviceMatches_;
    std::map<std::string, Holder> holders_; // by the unique names of their connections
    std::unique_ptr<BusMonitor> monitor_;
};

} // namespace kestrio
