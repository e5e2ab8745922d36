// What a face (a window, the command line) may ask of the running agent.
//
// Served by the agent on the session bus, and answered within this process for tests. A call may fail at any time: the
// agent may have ended, or hang. Every call ends within `callDeadline`.
#pragma once

#include "Kestrio/Base/Subscription.h"
#include "Kestrio/Link/AgentCost.h"
#include "Kestrio/Link/MonitorReading.h"
#include "Kestrio/Model/Models.h"
#include "Kestrio/Reports/SessionImport.h"

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

class OptimizerLink;

/// Everything that lives in the agent's memory.
struct AgentStatus {
    TrackingState state = TrackingState::tracking;
    std::optional<Date> pausedUntil; // `distantFuture`: until somebody resumes
    std::optional<LiveActivity> live;
    std::vector<LiveActivity> alongside;
    std::int64_t unsaved = 0; // closed sessions that wait for the disk to take them
    bool isAccessibilityGranted = false;
    std::string version;
    std::int64_t processIdentifier = 0;
    std::string dataFolder;
    Date startedAt;

    friend bool operator==(const AgentStatus&, const AgentStatus&) = default;
};

nlohmann::ordered_json toJSON(const AgentStatus& status);
/// Absent when a field is missing or of another type: the agent is of another version.
std::optional<AgentStatus> agentStatusFromJSON(const nlohmann::ordered_json& json);

/// How a running browser is read; where neither of both holds, the titles of its windows are all that is known.
struct BrowserReading {
    std::string bundleIdentifier;
    std::string name;          // as the person reads it
    bool isConnected = false;  // its extension is
    bool isAccessible = false; // the tree of its pages could be read when it was last looked at

    friend bool operator==(const BrowserReading&, const BrowserReading&) = default;
};

class Background {
public:
    static constexpr Seconds callDeadline{5.0};

    /// Why an action could not be done, in words for the person; absent when it was done.
    using Failure = std::optional<std::string>;

    virtual ~Background() = default;

    /// Absent when the agent does not answer.
    virtual std::optional<AgentStatus> status() = 0;

    /// Pauses for a length above 0, or with an absent one until somebody resumes.
    virtual Failure pause(std::optional<Seconds> length) = 0;
    virtual Failure resume() = 0;

    /// Shows the dashboard: a page by its raw text, or the one that was open last.
    virtual Failure openDashboard(std::optional<std::string> page) = 0;

    /// Shows the settings: a tab by its raw text, or the one that was open last.
    virtual Failure openSettings(std::optional<std::string> tab) = 0;

    /// Ends the agent in order, and with it the recording. Returns before it has ended.
    virtual Failure quit() = 0;

    /// Brings the sessions of exported files into the database, which is the agent's alone to write. Does not wait;
    /// takes as long as it takes. Dropping the token stops it; its end is told all the same, unless the agent goes
    /// first.
    virtual Subscription importFiles(std::vector<SessionFile> files, ImportReceiver receiver) = 0;

    /// Deletes the sessions that ended before the date, or with an absent one all of them, the open ones too. Does not
    /// wait for it; whoever observes the data hears of its end.
    virtual Failure deleteActivity(std::optional<Date> before) = 0;

    /// Deletes all that the resource log holds. Sessions are not touched.
    virtual Failure deleteResourceLog() = 0;

    /// `receiver` is called whenever stored sessions changed other than by recording, until the token is dropped.
    virtual Subscription observeData(std::function<void()> receiver) = 0;

    /// By bundle identifier, the browsers that run and are known here. Absent when the agent does not answer, or is of
    /// another version. What it did not look at for long it looks at after the answer, and tells of if it is otherwise.
    virtual std::optional<std::vector<BrowserReading>> browsers() = 0;

    /// `receiver` is called whenever `browsers` has become another answer, until the token is dropped.
    virtual Subscription observeBrowsers(std::function<void()> receiver) = 0;

    /// What the agent itself takes of the machine. Absent when it does not answer.
    virtual std::optional<AgentCost> ownCost() = 0;

    /// `receiver` hears of every published change, within two seconds of it, until the token is dropped or the agent
    /// ends.
    virtual Subscription observe(std::function<void(const AgentStatus&)> receiver) = 0;

    /// `receiver` hears of the system monitor's readings, one every two seconds or so and the first within moments,
    /// until the token is dropped or the agent ends. The monitor looks closely for as long as anybody observes it. The
    /// token is empty when the agent does not answer.
    virtual Subscription observeMonitor(std::function<void(const MonitorReading&)> receiver) = 0;
    /// What may be asked of the optimizer, for as long as this lives. Null where there is none.
    virtual OptimizerLink* optimizer() = 0;
};

} // namespace kestrio
