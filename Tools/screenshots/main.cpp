// Pictures of every view over an example history, in light and dark and at two sizes: kestrio-screenshots [FOLDER
// [NAME]] writes them into the folder, Docs/images unless said otherwise; with a name only the view of that name.
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/WindowStage.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QQuickWindow>
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

bool take(const View& view, AppearanceMode appearance, const QDir& folder) {
    WindowStage stage(history(), view.mode);
    stage.settings.set(settingKey::appearanceMode, std::string(rawText(appearance)));
    stage.script.status.isAccessibilityGranted = true;
    view.prepare(stage);
    stage.agent.start(); // once more, to see it as it is now
    Windows windows(stage.parts);
    windows.show(view.request);
    auto* const window = windows.dashboard();
    if (!window)
        return false;
    for (const auto& size : sizes) {
        window->resize(size.size);
        settle(stage);
        const auto file =
            folder.filePath(QStringLiteral("%1-%2%3.png").arg(view.name, rawText(appearance), size.suffix));
        if (!window->grabWindow().save(file)) {
            std::fprintf(stderr, "kestrio-screenshots: cannot write %s\n", qUtf8Printable(file));
            return false;
        }
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
