// Pictures of every view over an example history, in light and dark and at two sizes: kestrio-screenshots [FOLDER
// [NAME]] writes them into the folder, Docs/images unless said otherwise; with a name only the view of that name.
#include "Kestrio/Views/Design/Design.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Tests/Views/Window/ExampleWindows.h"

#include <QDir>
#include <QImage>
#include <QQuickWindow>
#include <cstdio>

namespace kestrio {
namespace {

struct View {
    const char* name;
    WindowRequest request;
    RangeMode mode = RangeMode::day;
    /// What else leads to the view.
    std::function<void(ExampleWindows&)> prepare = [](auto&) {};
};

void pauseUntilTomorrow(ExampleWindows& example) {
    auto status = example.script.status;
    status.state = TrackingState::paused;
    status.pausedUntil = example.calendar().date(2026, 11, 20, 18);
    example.script.status = status;
}

/// Every view; a new one is one line.
std::vector<View> views() {
    return {
        {"overview", DashboardRequest{"overview"}},
        {"overview-month", DashboardRequest{"overview"}, RangeMode::month},
        {"timeline", DashboardRequest{"timeline"}},
        {"timeline-week", DashboardRequest{"timeline"}, RangeMode::week},
        {"not-running", DashboardRequest{"overview"}, RangeMode::day,
         [](ExampleWindows& example) { example.script.isRunning = false; }},
        {"paused", DashboardRequest{"overview"}, RangeMode::week, pauseUntilTomorrow},
    };
}

struct Size {
    const char* name;
    QSize size;
};
constexpr Size sizes[]{{"", {1240, 820}}, {"-small", {820, 620}}};

/// Until nothing moves any more.
void settle() {
    ExampleWindows::waitFor([] { return false; }, 400);
}

bool save(const QImage& picture, const QString& file) {
    if (picture.save(file))
        return true;
    std::fprintf(stderr, "kestrio-screenshots: cannot write %s\n", qUtf8Printable(file));
    return false;
}

bool take(Queue& main, const View& view, AppearanceMode appearance, const QDir& folder) {
    ExampleWindows example(main, {.settings = {{settingKey::appearanceMode, std::string(rawText(appearance))}}});
    view.prepare(example);
    example.dashboard().setMode(view.mode);
    example.agent().start();
    example.windows().show(view.request);
    auto* const window = example.windows().dashboard();
    bool isSaved = window != nullptr;
    for (const auto& size : sizes) {
        if (!isSaved)
            break;
        window->resize(size.size);
        ExampleWindows::waitFor([&] { return !example.dashboard().isLoading().value(); });
        settle();
        const auto name = QStringLiteral("%1-%2%3.png").arg(view.name, rawText(appearance), size.name);
        isSaved = save(window->grabWindow(), folder.filePath(name));
    }
    return isSaved;
}

int run(int count, char** words) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    WindowApplication application(count, words);
    const QDir folder(count > 1 ? words[1] : "Docs/images");
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "kestrio-screenshots: cannot make %s\n", qUtf8Printable(folder.path()));
        return 1;
    }
    for (const auto& view : views()) {
        if (count > 2 && std::string_view(words[2]) != view.name)
            continue;
        for (const auto appearance : {AppearanceMode::light, AppearanceMode::dark})
            if (!take(application.queue(), view, appearance, folder))
                return 1;
    }
    return 0;
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    return kestrio::run(argc, argv);
}
