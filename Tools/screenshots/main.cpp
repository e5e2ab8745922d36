// Pictures of every view over an example history, in light and dark and at two sizes: kestrio-screenshots [FOLDER
// [NAME]] writes them into the folder, Docs/images unless said otherwise; with a name only the view of that name.
#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Pages/Settings/ScheduleEditor.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/SettingsStage.h"

#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
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

/// Icons for applications that this machine does not have: their letters on colours of their own.
class ExampleIcons {
public:
    std::optional<std::filesystem::path> file(const std::string& application) const {
        const auto name = application.substr(application.rfind('.') + 1);
        const auto icon = siteIcon(name);
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
    QTemporaryDir folder_;
};

struct View {
    const char* name;
    WindowRequest request;
    RangeMode mode = RangeMode::day;
    Prepare prepare = asItIs;
};

/// Every view; a new one is one line.
const std::vector<View>& views() {
    static const std::vector<View> all{
        {"overview", DashboardRequest{"overview"}},
        {"overview-month", DashboardRequest{"overview"}, RangeMode::month},
        {"timeline", DashboardRequest{"timeline"}},
        {"timeline-week", DashboardRequest{"timeline"}, RangeMode::week},
        {"apps", DashboardRequest{"apps"}, RangeMode::week},
        {"websites", DashboardRequest{"websites"}, RangeMode::week},
        {"youtube", DashboardRequest{"youtube"}, RangeMode::month},
        {"projects", DashboardRequest{"projects"}, RangeMode::week},
        {"empty", DashboardRequest{"overview"}, RangeMode::day, withoutHistory},
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
const Size sizes[]{{"", {1240, 820}}, {"-small", {820, 620}}};

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

bool write(QQuickWindow& window, const QString& file) {
    if (window.grabWindow().save(file))
        return true;
    std::fprintf(stderr, "kestrio-screenshots: cannot write %s\n", qUtf8Printable(file));
    return false;
}

bool take(const View& view, AppearanceMode appearance, const QDir& folder) {
    const ExampleIcons icons;
    SettingsStage stage(history(), view.mode);
    stage.settings.set(settingKey::appearanceMode, std::string(rawText(appearance)));
    stage.script.status.isAccessibilityGranted = true;
    stage.parts.host.iconFile = [&icons](const auto& application, int) { return icons.file(application); };
    stage.archiveHistory();
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
    if (windows.settings())
        return write(*windows.settings(), folder.filePath(name + ".png"));
    auto* const window = windows.dashboard();
    if (!window)
        return false;
    for (const auto& size : sizes) {
        window->resize(size.size);
        settle(stage);
        if (!write(*window, folder.filePath(name + size.suffix + ".png")))
            return false;
    }
    return true;
}

int run(int count, char** words) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const WindowApplication application(count, words);
    const QDir folder(count > 1 ? words[1] : "Docs/images");
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "kestrio-screenshots: cannot make %s\n", qUtf8Printable(folder.path()));
        return 1;
    }
    for (const auto& view : views()) {
        if (count > 2 && std::string_view(words[2]) != view.name)
            continue;
        for (const auto appearance : {AppearanceMode::light, AppearanceMode::dark})
            if (!take(view, appearance, folder))
                return 1;
    }
    return 0;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    return kestrio::run(argc, argv);
}
