#include "Programs/Agent/Agent.h"

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/Log.h"
#include "Kestrio/Base/Mistake.h"
#include "Kestrio/Classification/TextTools.h"
#include "Kestrio/Link/BackgroundService.h"
#include "Kestrio/Link/LocalBackground.h"
#include "Kestrio/Pages/StateWords.h"
#include "Kestrio/Platform/Linux/AutostartLoginItem.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"
#include "Kestrio/Platform/Linux/SingleInstance.h"
#include "Kestrio/Platform/Linux/StatusNotifierTray.h"
#include "Kestrio/Reports/SessionImport.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Shell/AppModel.h"
#include "Kestrio/Shell/Launch.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/BrowserTabs.h"
#include "Programs/Agent/HostBrowsers.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/Agent/HostDesktop.h"
#include "Programs/Agent/HostMedia.h"
#include "Programs/Agent/HostMonitor.h"
#include "Programs/Agent/HostResources.h"
#include "Programs/Agent/HostTray.h"
#include "Programs/Agent/TodaysTime.h"
#include "Programs/Agent/WindowLauncher.h"

#include <csignal>
#include <cstdio>
#include <malloc.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

void say(const std::string& text) {
    std::fprintf(stderr, "kestrio: %s\n", text.c_str());
}

fs::path ownProgram() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored);
}

/// Signals that end the program arrive as readable data on the main queue, never in the middle of anything. Every
/// thread made later inherits that they are blocked.
class EndingSignals {
public:
    EndingSignals() {
        sigemptyset(&signals_);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            sigaddset(&signals_, signal);
        pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
        std::signal(SIGPIPE, SIG_IGN); // a reader that goes away is an error of that write, no more
        descriptor_ = signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK);
        if (descriptor_ < 0)
            programmersMistake("no descriptor left for signals");
    }
    ~EndingSignals() { close(descriptor_); }
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    Subscription observe(LoopQueue& queue, std::function<void()> ended) {
        return queue.watch(descriptor_, [this, ended = std::move(ended)] {
            signalfd_siginfo info{};
            while (read(descriptor_, &info, sizeof info) == sizeof info)
                ended();
        });
    }

private:
    sigset_t signals_{};
    int descriptor_ = -1;
};

class Agent {
public:
    Agent(const Locations& locations, const AgentOptions& options) : locations_(locations), options_(options) {}

    int run() {
        registerDefaults();
        dataFolder_ = Database::directory(locations_.data);
        if (const auto status = refuseSecondCopy())
            return *status;
        // Before anything that may fail or take long.
        optimizer_.emplace(HostOptimizer::Host{clock_, main_, settings_, dataFolder_, ownProgram().parent_path(),
                                               options_.wrapSignals});
        if (!openDatabase())
            return 1;
        import_.emplace(*database_, main_);
        browserTabs_.emplace(clock_, tabSocketPath(locations_));
        connectReaders();
        monitor_.emplace(ActivityMonitor::Host{clock_, monitorQueue_, desktop_->workspace, desktop_->windowTitles,
                                               desktop_->inputIdle, desktop_->sessionEvents, settings_},
                         *database_, HostDesktop::hostApplications(), collaborators());
        systemMonitor_.emplace(clock_, main_);
        resources_.emplace(clock_, main_, settings_, dataFolder_, monitorQueue_, *desktop_, *monitor_, *optimizer_);
        optimizer_->connect(optimizerParts());
        systemMonitor_->followOptimizer([this] { return optimizer_->counts(); });
        const auto program = ownProgram();
        loginItem_.emplace(locations_.autostartFolder(), program);
        model_.emplace(AppModel::Parts{clock_, main_, *monitor_, settings_, *loginItem_, isInstalledCopy(program)});
        background_.emplace(
            *model_, LocalBackground::Facts{AppInfo::version(), getpid(), dataFolder_.string(), clock_.now()},
            LocalBackground::Services{
                .openWindow = [this](const WindowRequest& request) { return windows_->show(request); },
                .importFiles = [this](auto files,
                                      auto receiver) { return importFiles(std::move(files), std::move(receiver)); },
                .deleteActivity = [this](auto before, auto deleted) { deleteActivity(before, std::move(deleted)); },
                .deleteResourceLog = [this] { resources_->deleteLog(); },
                .browsers = [this] { return browserReadings(); },
                .observeBrowsers = [this](auto receiver) { return browserChanges_.subscribe(std::move(receiver)); },
                .observeMonitor = [this](auto receiver) { return systemMonitor_->observe(std::move(receiver)); },
                .ownCost = [this] { return resources_->cost(); },
                .quit = [this] { quit(); },
                .optimizer = optimizer_->link(),
            });
        if (!offerOnBus())
            return 0;
        const auto signals = signals_.observe(main_, [this] { endBySignal(); });
        if (options_.onChange)
            changes_ = background_->observe(options_.onChange);
        model_->start();
        optimizer_->start();
        resources_->recorder().start();
        showInTray();
        systemMonitor_->start();
        openDashboardAtLaunch();
        giveBackMemory_ = main_.after(Seconds(10), [] { malloc_trim(0); });
        main_.run();
        return 0;
    }

    ~Agent() {
        changes_.cancel();
        trayStates_.cancel();
        hostTray_.reset();
        tray_.reset();
        service_.reset();
        background_.reset();
        model_.reset();
        optimizer_.reset();
        monitorQueue_.sync([] {}); // what it asked there is answered
        resources_.reset();
        systemMonitor_.reset();
        monitor_.reset();
        monitorQueue_.sync([this] {
            media_.reset();
            browsers_.reset();
            desktop_.reset();
        });
    }
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

private:
    void registerDefaults() {
        std::error_code ignored;
        std::optional<FileKeyValueStore> old;
        if (fs::exists(locations_.timeweftSettingsFile(), ignored))
            old.emplace(locations_.timeweftSettingsFile());
        AppSettings::registerDefaults(settings_, old ? &*old : nullptr, bundleIdentifier);
    }

    /// The exit status when another agent runs, or nobody can tell whether one does.
    std::optional<int> refuseSecondCopy() {
        auto answer = SingleInstance::acquire(dataFolder_);
        if (auto* held = std::get_if<SingleInstance>(&answer)) {
            instance_.emplace(std::move(*held));
            return std::nullopt;
        }
        if (const auto* failed = std::get_if<SingleInstance::Failed>(&answer)) {
            say(failed->reason);
            return 1;
        }
        const auto process = std::get<SingleInstance::Taken>(answer).processIdentifier;
        say("Kestrio is already running" + (process ? " (process " + std::to_string(*process) + ")." : "."));
        if (!options_.isLoginItem && !options_.onChange)
            showDashboard();
        return 0;
    }

    /// Not by the copy that runs: the screen to show it on and the desktop's leave to take the front are this one's.
    void showDashboard() {
        const auto bus = BusConnection::open(main_, BusConnection::Bus::session);
        WindowLauncher windows({main_, bus.get(), ownProgram().parent_path() / "kestrio-window", processEnvironment});
        const auto token = processEnvironment("XDG_ACTIVATION_TOKEN").value_or("");
        if (const auto failure = windows.show(DashboardRequest(), token))
            say(*failure);
    }

    bool openDatabase() {
        try {
            database_.emplace(dataFolder_ / Database::fileName, databaseQueue_);
            return true;
        } catch (const DatabaseError& error) {
            say((dataFolder_ / Database::fileName).string() + ": " + error.what());
            return false;
        }
    }

    void connectReaders() {
        monitorQueue_.sync([this] {
            desktop_ = std::make_unique<HostDesktop>(monitorQueue_, clock_, processEnvironment);
            browsers_ = std::make_unique<HostBrowsers>(monitorQueue_, clock_, *desktop_, browserTabs_->board(),
                                                       processEnvironment, [this] { tellBrowserChange(); });
            media_ = std::make_unique<HostMedia>(monitorQueue_, clock_, *desktop_, *browsers_);
        });
    }

    /// What the other concerns contribute to a sample.
    ActivityMonitor::Collaborators collaborators() {
        ActivityMonitor::Collaborators all;
        all.activeTab = [this](const std::string& bundleID) { return browsers_->activeTab(bundleID); };
        all.observeTabs = [this](auto receiver) { return browsers_->observe(std::move(receiver)); };
        all.alongside = [this](const auto& frontmost, bool allowWatching) {
            return media_->alongside.evidence(frontmost, allowWatching);
        };
        all.isBrowser = BrowserInspector::isBrowser;
        all.stripBrowserName = BrowserInspector::stripBrowserName;
        all.cleanTitle = [](const std::string& title) { return TitleCleaner::clean(title); };
        all.removingAppName = [](const std::string& title, const std::string& appName) {
            return TitleCleaner::removingAppName(title, appName);
        };
        all.domain = [](const std::string& url) { return URLTools::domain(url); };
        all.project = [detector = ProjectDetector(projectHost(processEnvironment))](
                          const auto& bundleID, const auto& appName, const auto& title, const auto&) {
            return detector.detect(bundleID, appName, title);
        };
        return all;
    }

    /// Answers at once with what is known; what somebody asks about is then looked at.
    std::vector<BrowserReading> browserReadings() {
        monitorQueue_.async([this] {
            if (browsers_)
                browsers_->examine();
        });
        return browsers_->readings();
    }

    void tellBrowserChange() {
        main_.async([this] { browserChanges_.emit(); });
    }

    HostOptimizer::Parts optimizerParts() {
        return {.readMedia =
                    [this](auto answer) {
                        monitorQueue_.async([this, answer = std::move(answer)] { answer(mediaUse()); });
                    },
                .log = [this](const ResourceEvent& event) { resources_->log(event); },
                .openDashboard = [this] { windows_->show(DashboardRequest()); },
                .switched = [this] { resources_->recorder().schedule(); }};
    }

    /// Who is watched or listened to alongside is not to be frozen, however quiet. On the monitor's queue.
    MediaUse mediaUse() {
        auto use = media_->use();
        for (const auto& session : monitor_->published().alongside)
            use.keepDisplayAwake.insert(session.sample.bundleID);
        return use;
    }

    /// False when another agent of this session has the name already; this one then leaves it alone.
    bool offerOnBus() {
        sessionBus_ = BusConnection::open(main_, BusConnection::Bus::session);
        windows_.emplace(WindowLauncher::Parts{main_, sessionBus_.get(), ownProgram().parent_path() / "kestrio-window",
                                               processEnvironment});
        if (!sessionBus_)
            return true; // the lock in the data folder is guard enough
        sessionBus_->onDeath([this] {
            // The person's session is over, and this program with it.
            endBySignal();
        });
        service_ = BackgroundService::offer(
            sessionBus_->connection(), [this](const auto& work) { return sessionBus_->perform(work); }, *background_);
        if (service_ || !sessionBus_->isAlive())
            return true;
        say("Kestrio is already running in this session, with its data elsewhere.");
        return false;
    }

    void showInTray() {
        const auto address = BusConnection::address(BusConnection::Bus::session);
        if (!sessionBus_ || !address || options_.onChange)
            return; // nobody to show it, or in the foreground of a terminal
        tray_.emplace(main_, *address);
        hostTray_.emplace(HostTray::Parts{
            .model = *model_,
            .settings = settings_,
            .tray = *tray_,
            .calendar = Calendar::current(),
            .timeInFront = [this](auto interval, auto receiver) { addUpTime(interval, std::move(receiver)); },
            .open =
                [this](const auto& request, const auto& token) {
                    if (const auto failure = windows_->show(request, token))
                        logLine("Kestrio: " + *failure);
                },
            .quit = [this] { quit(); },
        });
        systemMonitor_->followIcon([this] { return hostTray_->isSystemIconShown(); });
        trayStates_ = systemMonitor_->monitor().observe([this](const auto& state) { hostTray_->showSystem(state); });
    }

    void addUpTime(DateInterval interval, std::function<void(Seconds)> receiver) {
        monitorQueue_.async([this, interval, receiver = std::move(receiver)] {
            main_.async([receiver, time = timeInFront(*database_, *monitor_, interval)] { receiver(time); });
        });
    }

    bool isLaunchedByUser() {
        const auto sessionStart = monitorQueue_.sync([this] { return desktop_->sessionEvents.sessionStart(); });
        return !isLoginLaunch(options_.isLoginItem, sessionStart, clock_.now(), clock_.uptime());
    }

    static bool isInstalledCopy(const fs::path& program) {
        // The program's path has no links in it; some systems have one in the home folder's.
        const fs::path home = processEnvironment("HOME").value_or("");
        std::error_code error;
        const auto resolved = fs::canonical(home, error);
        return isInstalled(program, error ? home : resolved);
    }

    void openDashboardAtLaunch() {
        if (options_.onChange)
            return; // in the foreground of a terminal
        const bool byUser = isLaunchedByUser();
        if (!opensDashboardAtLaunch(byUser, settings_.boolean(settingKey::hasOnboarded)))
            return;
        const auto failure = windows_->show(DashboardRequest());
        if (!failure)
            settings_.set(settingKey::hasOnboarded, true);
        else if (byUser)
            say(*failure);
    }

    Subscription importFiles(std::vector<SessionFile> files, ImportReceiver receiver) {
        receiver.ended = [ended = std::move(receiver.ended)](const ImportOutcome& outcome) {
            ended(outcome);
            malloc_trim(0); // a large file took much for a moment
        };
        return import_->start(std::move(files), std::move(receiver));
    }

    void deleteActivity(std::optional<Date> before, std::function<void()> deleted) {
        const auto erase = [this, before, deleted = std::move(deleted)] {
            if (before)
                database_->deleteSessions(*before);
            else
                database_->deleteAll();
            main_.async(deleted);
        };
        if (before)
            monitorQueue_.async(erase);
        else
            monitor_->beginAnew(erase);
    }

    /// The path without promise of time: what is open is saved first.
    void endBySignal() {
        stopRecording();
        giveBackHeld();
        stopLogging();
        main_.stop();
    }

    /// On the person's word: whatever else happens, nothing stays frozen.
    void quit() {
        giveBackHeld();
        stopLogging();
        stopRecording();
        windows_->quit(); // they would only say that nothing is recorded any more
        main_.stop();
    }

    void stopRecording() {
        if (import_)
            import_->stop(); // the monitor's last rows would wait for it
        if (monitor_)
            monitor_->stop();
    }
    void giveBackHeld() {
        if (optimizer_)
            optimizer_->finish();
    }
    void stopLogging() {
        if (resources_)
            resources_->recorder().stop();
    }

    const Locations locations_;
    const AgentOptions options_;
    const SystemClock clock_;
    EndingSignals signals_; // before any thread
    MainQueue main_;
    FileKeyValueStore settings_{locations_.settingsFile(), &main_};
    fs::path dataFolder_;
    std::optional<SingleInstance> instance_;
    WorkerQueue databaseQueue_{"Kestrio.database"};
    std::optional<HostOptimizer> optimizer_;
    std::optional<Database> database_;
    WorkerQueue monitorQueue_{"Kestrio.monitor"};
    std::optional<BrowserTabs> browserTabs_;
    // On the monitor queue; each uses those before it.
    std::unique_ptr<HostDesktop> desktop_;
    std::unique_ptr<HostBrowsers> browsers_;
    std::unique_ptr<HostMedia> media_;
    std::optional<BackgroundImport> import_;
    std::optional<ActivityMonitor> monitor_;
    std::optional<HostMonitor> systemMonitor_;
    std::optional<HostResources> resources_;
    std::optional<AutostartLoginItem> loginItem_;
    std::optional<AppModel> model_;
    std::optional<LocalBackground> background_;
    Signal<> browserChanges_;
    std::unique_ptr<BusConnection> sessionBus_;
    std::unique_ptr<BackgroundService> service_;
    std::optional<WindowLauncher> windows_;
    std::optional<StatusNotifierTray> tray_;
    std::optional<HostTray> hostTray_;
    Subscription trayStates_;
    Subscription changes_;
    Subscription giveBackMemory_;
};

} // namespace

int runAgent(const AgentOptions& options) {
    umask(077); // whatever is made here is nobody else's business
    // Its threads hardly ever work at the same time; a heap for each would only keep what another could use.
    mallopt(M_ARENA_MAX, 1);
    const auto places = locations(processEnvironment);
    if (!places) {
        say("neither KESTRIO_HOME nor HOME is set to a folder; there is no place to keep anything.");
        return 1;
    }
    return Agent(*places, options).run();
}

} // namespace kestrio
