// The agent's side of `Background`: answers from the running program's model. Belongs to the main queue, like the
// model.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Link/Background.h"
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

    /// Brings up the dashboard; says what is missing when it cannot.
    using OpenDashboard = std::function<Failure()>;

    /// Brings files into the database, as `Background::importFiles` says.
    using ImportFiles = std::function<Subscription(std::vector<SessionFile>, ImportReceiver)>;

    /// The browsers that are read, as `Background::browsers` tells them.
    using Browsers = std::function<std::vector<BrowserReading>()>;

    /// What is known of the machine; an empty one knows nothing.
    struct Machine {
        /// As `Background::observeMonitor` says.
        std::function<Subscription(std::function<void(const MonitorReading&)>)> observeMonitor;
        std::function<AgentCost()> ownCost;
    };

    /// The model must outlive this.
    LocalBackground(AppModel& model, Facts facts, OpenDashboard openDashboard, ImportFiles importFiles = {},
                    Browsers browsers = {}, Machine machine = {});

    std::optional<AgentStatus> status() override;
    Failure pause(std::optional<Seconds> length) override;
    Failure resume() override;
    Failure openDashboard() override;
    Subscription importFiles(std::vector<SessionFile> files, ImportReceiver receiver) override;
    Subscription observeData(std::function<void()> receiver) override;
    std::optional<std::vector<BrowserReading>> browsers() override;
    std::optional<AgentCost> ownCost() override;
    Subscription observe(std::function<void(const AgentStatus&)> receiver) override;
    Subscription observeMonitor(std::function<void(const MonitorReading&)> receiver) override;

    /// Runs work on the queue after what runs now.
    void afterwards(Queue::Work work) { model_.queue().async(std::move(work)); }

    /// Called on the queue after the state or the end of a pause changed.
    Subscription observeState(std::function<void()> receiver);

private:
    void tellSoon();

    AppModel& model_;
    const Facts facts_;
    const OpenDashboard openDashboard_;
    const ImportFiles importFiles_;
    const Browsers browsers_; // empty: nobody reads them
    const Machine machine_;
    Signal<AgentStatus> changed_;
    Signal<> stateChanged_;
    Signal<> activityDataDidChange_;
    Subscription telling_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
