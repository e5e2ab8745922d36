// The agent on the session bus: small typed methods and properties for people's scripts, JSON for the bulky readings.
//
//   Pause(d seconds)      pauses for so long         PauseIndefinitely()   until somebody resumes
//   Resume()              goes on recording
//   OpenDashboard()       as it was left             OpenPage(s page)      one of its pages, by its raw text
//   OpenSettings(s tab)   a tab by its raw text, or empty: as they were left
//   Quit()                ends the agent, and with it the recording
//   Browsers() -> a(ssbb) the browsers that run: bundle identifier, name, whether the extension is connected, whether
//                         accessibility shows their pages. BrowsersDidChange() is a signal.
//   Status() -> s         everything that lives in memory, as JSON
//   Import(a(sh) files) -> s      brings the sessions of exported files into the database, each a name for messages and
//                         a descriptor open for reading. Answers at the end, which may be minutes away, with the counts
//                         or the error as JSON. The caller meanwhile hears `ImportProgress(d share)`; it stops the
//                         import by StopImport() or by leaving the bus.
//   OwnCost() -> s        what the agent itself takes of the machine, as JSON
//   Watch()               from now on `Changed` is sent, until the caller leaves the bus
//   WatchMonitor()        from now on the caller hears `MonitorReading(s json)`, what the system monitor sees, every
//                         two seconds or so, until UnwatchMonitor() or until it leaves the bus
//   ActivityDataDidChange()       a signal: stored sessions changed other than by recording
//   State s, PausedUntil d (seconds since 1970, 0 when not paused), Version s      properties, with change notices
//
// Belongs to the main queue, whose loop serves the connection.
#pragma once

#include "Kestrio/Link/LocalBackground.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace sdbus {
class IConnection;
class IObject;
} // namespace sdbus

namespace kestrio {

class OptimizerService;

class BackgroundService {
public:
    /// Runs something that sends on the connection; false when that failed.
    using Perform = std::function<bool(const std::function<void(sdbus::IConnection&)>&)>;

    /// Null when the bus would not have the name or the object: somebody else has the name already. Everything handed
    /// over must outlive the service.
    static std::unique_ptr<BackgroundService> offer(sdbus::IConnection& connection, Perform perform,
                                                    LocalBackground& background);
    ~BackgroundService();

private:
    struct Watcher;
    struct MonitorWatcher;
    struct Import;

    BackgroundService(Perform perform, LocalBackground& background);

    void registerObject(sdbus::IConnection& connection);
    void watch(sdbus::IConnection& connection);
    void afterwards(std::function<void(BackgroundService&)> work);
    void forget(const std::string& watcher);
    void watchMonitor(sdbus::IConnection& connection);
    void tellReading(const std::string& watcher, const MonitorReading& reading);
    void beginImport(sdbus::IConnection& connection, std::shared_ptr<Import> begun, std::vector<SessionFile> files);
    void stopImport(const std::string& caller);
    void tellShare(const Import& import, double share);
    void endImport(const Import& import, const ImportOutcome& outcome);
    void tellState();
    void tell(const AgentStatus& status);

    const Perform perform_;
    LocalBackground& background_;
    std::unique_ptr<sdbus::IObject> object_;
    std::unique_ptr<OptimizerService> optimizer_;                            // null where there is none
    std::map<std::string, std::unique_ptr<Watcher>> watchers_;               // by unique bus name
    std::map<std::string, std::unique_ptr<MonitorWatcher>> monitorWatchers_; // by unique bus name
    Subscription changes_;                                                   // while somebody watches
    Subscription stateChanges_;
    Subscription dataChanges_;
    Subscription browserChanges_;
    std::map<std::string, std::shared_ptr<Import>> imports_; // by the caller's unique bus name
    std::shared_ptr<BackgroundService*> self_ = std::make_shared<BackgroundService*>(this); // work holds it weakly
};

} // namespace kestrio
