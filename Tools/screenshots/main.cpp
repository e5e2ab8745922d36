// Pictures of every view over an example history, in light and dark and at two sizes: kestrio-screenshots [FOLDER
// [NAME]] writes them into the folder, Docs/images unless said otherwise; with a name only the view of that name. Its
// options show how they look with larger text, on finer screens, with more contrast, from right to left.
#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Pages/Settings/ScheduleEditor.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/DashboardModel.h"
#include "Kestrio/Views/Window/MasterDetailModel.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/SettingsStage.h"

#include <CLI/CLI.hpp>
#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <cstdio>

namespace kestrio {
namespace {

using Prepare = void (*)(WindowStage& stage);

void asItIs(WindowStage& /*stage*/) {}

void withoutAgent(WindowStage& stage) {
    stage.isAgentThere = false;
}

void pausedUntilSix(WindowStage& stage) {
    stage.script.status.state = TrackingState::paused;
    stage.script.status.pausedUntil = stage.calendar.date(2026, 11, 20, 18);
}

void withoutHistory(WindowStage& stage) {
    stage.sessions.clear();
}

void withProjectRules(WindowStage& stage) {
    stage.classification.projectRules().setRules(
        {{{{1}}, "harbour", "Harbour"}, {{{2}}, "docs.google.com", "Writing"}, {{{3}}, "lunch", ""}});
}

void withOptimizerRules(WindowStage& stage) {
    OptimizerChoices choices{.isEnabled = true};
    choices.rules = addingSchedule({}, {{1}});
    choices.rules.schedules[0].tiers["com.tinyspeck.slackmacgap"] = tindra::AppTier::alwaysOn;
    choices.rules.tiers["com.tinyspeck.slackmacgap"] = tindra::AppTier::checkPeriodically;
    choices.rules.tiers["com.spotify.client"] = tindra::AppTier::canWait;
    choices.rules.neverTouch = {"com.microsoft.VSCode"};
    stage.settings.set(settingKey::optimizerEnabled, true);
    stage.settings.set(settingKey::optimizerRules, SettingBytes{encoded(choices.rules).value_or("")});
}

void withoutReadableHistory(WindowStage& stage) {
    stage.trouble = DatabaseTrouble::damaged;
    stage.parts.host.historyFile = "/home/robin/.local/share/Kestrio/activity.sqlite";
    stage.dashboard.step(-1); // what was read before is another day's
}

void atWork(WindowStage& stage) {
    const auto& last = stage.sessions.back();
    LiveActivity live;
    live.sample.bundleID = last.bundleID;
    live.sample.appName = last.appName;
    live.sample.title = last.title;
    stage.script.status.live = live;
}

/// A machine that is a little short of memory.
MonitorReading exampleReading() {
    SystemSnapshot snapshot;
    snapshot.cpu = 0.38;
    snapshot.memoryUsed = 13'900'000'000;
    snapshot.memoryTotal = 16'700'000'000;
    snapshot.pressure = MemoryPressure::warning;
    snapshot.swapUsed = 1'900'000'000;
    snapshot.temperature = 61;
    snapshot.disk = DiskUsage{.free = 171'000'000'000, .total = 512'000'000'000};
    snapshot.battery = BatteryInfo{.level = 82};
    snapshot.topMemory = {
        {.id = "com.google.Chrome", .name = "Google Chrome", .memory = 4'820'000'000, .processes = 23},
        {.id = "com.microsoft.VSCode", .name = "Code", .memory = 2'110'000'000, .processes = 11},
        {.id = "com.tinyspeck.slackmacgap", .name = "Slack", .memory = 940'000'000, .processes = 6},
        {.id = "com.spotify.client", .name = "Spotify", .memory = 610'000'000, .processes = 4},
    };
    snapshot.topCPU = snapshot.topMemory;
    snapshot.hasAppCPU = true;
    std::vector<double> history;
    for (int i = 0; i < 60; ++i)
        history.push_back(0.3 + 0.08 * ((i * 7) % 5) - 0.04 * ((i * 3) % 4));
    return {.state = {snapshot, history, SystemInsight::make(snapshot, history, Calendar("en_GB", "Europe/Berlin"))},
            .chipName = "Eight-core processor",
            .cores = 8,
            .uptime = Seconds(93'600),
            .optimizer = OptimizerCounts{.frozen = 2, .frozenMemory = 1'200'000'000, .isManaging = true}};
}

/// Icons for the applications of a history, which this machine does not have: the letters of their names on colours of
/// their own.
class ExampleIcons {
public:
    explicit ExampleIcons(const std::vector<ActivitySession>& sessions) {
        for (const auto& session : sessions)
            names_.emplace(session.bundleID, session.appName);
    }

    std::optional<std::filesystem::path> file(const std::string& application) const {
        const auto name = names_.find(application);
        const auto icon = siteIcon(name == names_.end() ? application : name->second);
        const auto* const letter = std::get_if<SiteLetter>(&icon);
        if (!letter)
            return std::nullopt;
        const auto color = QColor::fromHsvF(static_cast<float>(letter->color.hue), 0.5F, 0.72F).name();
        QFile file(folder_.filePath(QString::fromStdString(application) + ".svg"));
        if (!file.open(QIODevice::WriteOnly))
            return std::nullopt;
        file.write(
            QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 32 32'><rect x='2' y='2' width='28' "
                           "height='28' rx='7' fill='%1'/><text x='16' y='22' font-family='Inter' font-size='17' "
                           "font-weight='600' text-anchor='middle' fill='white'>%2</text></svg>")
                .arg(color, QString::fromStdString(letter->letter))
                .toUtf8());
        return file.fileName().toStdString();
    }

private:
    std::map<std::string, std::string> names_; // by bundle identifier
    QTemporaryDir folder_;
};

struct View {
    const char* name;
    WindowRequest request;
    RangeMode mode = RangeMode::day;
    Prepare prepare = asItIs;
    int selected = -1; // the place of the row of which the page tells
};

/// Every view; a new one is one line.
const std::vector<View>& views() {
    static const std::vector<View> all{
        {"overview", DashboardRequest{"overview"}},
        {"overview-month", DashboardRequest{"overview"}, RangeMode::month},
        {"timeline", DashboardRequest{"timeline"}},
        {"timeline-week", DashboardRequest{"timeline"}, RangeMode::week},
        {"apps", DashboardRequest{"apps"}, RangeMode::week},
        {"apps-selected", DashboardRequest{"apps"}, RangeMode::day, asItIs, 0},
        {"websites", DashboardRequest{"websites"}, RangeMode::week},
        {"websites-selected", DashboardRequest{"websites"}, RangeMode::month, asItIs, 0},
        {"youtube", DashboardRequest{"youtube"}, RangeMode::month},
        {"projects", DashboardRequest{"projects"}, RangeMode::week},
        {"projects-selected", DashboardRequest{"projects"}, RangeMode::week, asItIs, 0},
        {"empty", DashboardRequest{"overview"}, RangeMode::day, withoutHistory},
        {"unreadable", DashboardRequest{"overview"}, RangeMode::day, withoutReadableHistory},
        {"not-running", DashboardRequest{"overview"}, RangeMode::day, withoutAgent},
        {"paused", DashboardRequest{"timeline"}, RangeMode::week, pausedUntilSix},
        {"panel-today", PanelRequest{PanelKind::today}, RangeMode::day, atWork},
        {"settings-general", SettingsRequest{"general"}},
        {"settings-categories", SettingsRequest{"categories"}},
        {"settings-projects", SettingsRequest{"projects"}, RangeMode::day, withProjectRules},
        {"settings-optimization", SettingsRequest{"optimization"}, RangeMode::day, withOptimizerRules},
        {"settings-permissions", SettingsRequest{"permissions"}},
        {"settings-data", SettingsRequest{"data"}},
        {"settings-about", SettingsRequest{"about"}},
        {"panel-system", PanelRequest{PanelKind::system}},
    };
    return all;
}

struct Size {
    const char* suffix;
    QSize size;
};
const std::vector<Size> usualSizes{{"", {1240, 820}}, {"-small", {820, 620}}};

std::vector<ActivitySession> history() {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 11, 20, 17, 30);
    auto sessions = exampleHistory(now, calendar, {.days = 30});
    std::erase_if(sessions, [&](const ActivitySession& session) { return session.end > now; });
    return sessions;
}

/// Until the icons are there and nothing moves any more.
void settle(WindowStage& stage) {
    constexpr int patience = 500; // milliseconds
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < patience) {
        stage.settle();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

void select(QQuickWindow& dashboard, int place) {
    const auto* const model = dashboard.property("model").value<DashboardModel*>();
    if (auto* const page = model ? qobject_cast<MasterDetailModel*>(model->page()) : nullptr)
        page->selectPlace(place);
}

bool write(QQuickWindow& window, const QString& file) {
    if (window.grabWindow().save(file))
        return true;
    std::fprintf(stderr, "kestrio-screenshots: cannot write %s\n", qUtf8Printable(file));
    return false;
}

struct Wish {
    std::string folder = "Docs/images";
    std::string name;
    std::optional<std::pair<int, int>> size;
    double scale = 1;
    DesktopAppearance desktop;
    bool isRightToLeft = false;

    std::vector<Size> sizes() const {
        return size ? std::vector<Size>{{"", QSize(size->first, size->second)}} : usualSizes;
    }
};

bool take(const View& view, AppearanceMode appearance, const Wish& wish, const QDir& folder) {
    SettingsStage stage(history(), view.mode);
    const ExampleIcons icons(stage.sessions);
    stage.settings.set(settingKey::appearanceMode, std::string(rawText(appearance)));
    stage.script.status.isAccessibilityGranted = true;
    stage.parts.host.isBrowser = [](const auto& id) { return id == "com.google.Chrome"; };
    stage.parts.host.iconFile = [&icons](const auto& application, int) { return icons.file(application); };
    stage.archiveHistory();
    stage.parts.host.observeDesktop = [&wish](const auto& receiver) {
        receiver(wish.desktop);
        return Subscription();
    };
    view.prepare(stage);
    stage.today.reload();
    stage.agent.start(); // once more, to see it as it is now
    Windows windows(stage.parts);
    windows.show(view.request);
    stage.settle();
    stage.script.readings.emit(exampleReading());
    settle(stage);
    const auto name = QStringLiteral("%1-%2").arg(view.name, rawText(appearance));
    if (windows.panel())
        return write(*windows.panel(), folder.filePath(name + ".png"));
    if (auto* const settings = windows.settings()) {
        if (wish.size)
            settings->resize(wish.size->first, wish.size->second);
        settle(stage);
        return write(*settings, folder.filePath(name + ".png"));
    }
    auto* const window = windows.dashboard();
    if (!window)
        return false;
    select(*window, view.selected);
    for (const auto& size : wish.sizes()) {
        window->resize(size.size);
        settle(stage);
        if (!write(*window, folder.filePath(name + size.suffix + ".png")))
            return false;
    }
    return true;
}

/// The exit status instead where that was all.
std::variant<Wish, int> parse(int count, const char* const* arguments) {
    Wish wish;
    CLI::App app("Pictures of the windows over an example history.", "kestrio-screenshots");
    app.add_option("folder", wish.folder, "Where the pictures are written")->capture_default_str();
    std::vector<std::string> names;
    for (const auto& view : views())
        names.emplace_back(view.name);
    app.add_option("name", wish.name, "The only view to show")->check(CLI::IsMember(names));
    app.add_option("--size", wish.size, "Of the dashboard or the settings, in points, instead of the usual ones");
    app.add_option("--scale", wish.scale, "The pixels of a point")->check(CLI::Range(0.5, 4.0));
    app.add_option("--text", wish.desktop.textScale, "How much larger text is")->check(CLI::Range(0.5, 3.0));
    app.add_flag("--high-contrast", wish.desktop.isHighContrast, "With more contrast");
    app.add_flag("--right-to-left", wish.isRightToLeft, "Mirrored");
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    }
    return wish;
}

int run(int count, char** words, const Wish& wish) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(wish.scale)); // read when the application begins
    const WindowApplication application(count, words);
    QGuiApplication::setLayoutDirection(wish.isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    const QDir folder(QString::fromStdString(wish.folder));
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "kestrio-screenshots: cannot make %s\n", qUtf8Printable(folder.path()));
        return 1;
    }
    for (const auto& view : views()) {
        if (!wish.name.empty() && wish.name != view.name)
            continue;
        for (const auto appearance : {AppearanceMode::light, AppearanceMode::dark})
            if (!take(view, appearance, wish, folder))
                return 1;
    }
    return 0;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    using namespace kestrio;
    const auto parsed = parse(argc, argv);
    if (const auto* const status = std::get_if<int>(&parsed))
        return *status;
    return run(argc, argv, std::get<Wish>(parsed));
}
