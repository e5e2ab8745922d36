// What it costs to ask what plays, what keeps the display awake and what stands on the screens: with scripted answers,
// and with the real services that PULSE_SERVER, DISPLAY and the buses' variables name.
#include "Kestrio/Activity/MediaInspector.h"
#include "Kestrio/Activity/ScreenInspector.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/ApplicationOwners.h"
#include "Kestrio/Platform/Linux/LinuxSleepInhibitors.h"
#include "Kestrio/Platform/Linux/PulseAudioUse.h"
#include "Kestrio/Platform/Linux/X11SaverSuspensions.h"
#include "Kestrio/Platform/Linux/X11Screens.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Kestrio/Platform/Testing/ScriptedMedia.h"
#include "Tests/Platform/Linux/X11TestClient.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <unistd.h>

namespace kestrio {
namespace {

constexpr int windowCount = 30;

/// The owners of this host, with no window system behind them.
struct Owners {
    const SystemClock clock{};
    DesktopEntries entries{applicationFolders(processEnvironment), "en_US", clock};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn()};
    ScriptedWorkspace workspace;
    ApplicationOwners owners{workspace, identity};

    MediaInspector::Owner owner() {
        return [this](const ApplicationTrace& trace) { return owners.bundleIdentifier(trace); };
    }
};

void appsPlayingAudioWithNothingPlaying(benchmark::State& state) {
    Owners owners;
    PulseAudioUse audio({});
    ScriptedSleepInhibitors inhibitors;
    MediaInspector inspector(audio, inhibitors, owners.owner(), "");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(inspector.appsPlayingAudio());
}
BENCHMARK(appsPlayingAudioWithNothingPlaying)->Unit(benchmark::kMicrosecond);

void appsPlayingAudioWithOnePlayer(benchmark::State& state) {
    Owners owners;
    ScriptedAudioUse audio;
    audio.players = {{getpid()}};
    ScriptedSleepInhibitors inhibitors;
    MediaInspector inspector(audio, inhibitors, owners.owner(), "");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(inspector.appsPlayingAudio());
}
BENCHMARK(appsPlayingAudioWithOnePlayer)->Unit(benchmark::kMicrosecond);

/// Between two questions to the X server, as most of them are.
void appsHoldingWithNothingHeld(benchmark::State& state) {
    Owners owners;
    ScriptedAudioUse audio;
    MainQueue queue;
    auto setup = LinuxSleepInhibitors::setupOfThisSession();
    X11Connection connection(queue, owners.clock, processEnvironment("DISPLAY").value_or(""));
    setup.x11 = &connection;
    LinuxSleepInhibitors inhibitors(queue, owners.clock, setup);
    MediaInspector inspector(audio, inhibitors, owners.owner(), "");
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(inspector.apps(MediaInspector::displayAssertionTypes()));
}
BENCHMARK(appsHoldingWithNothingHeld)->Unit(benchmark::kMicrosecond);

void visibleWindowsOfThirty(benchmark::State& state) {
    ScreenLayout layout{{{0, 0, 1920, 1080}, {1920, 0, 1920, 1080}}, {}};
    for (int i = 0; i < windowCount; ++i)
        layout.windows.push_back({pid_t{i}, {i * 100.0, i * 10.0, 800, 600}});
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(ScreenInspector::visibleWindows(layout));
}
BENCHMARK(visibleWindowsOfThirty)->Unit(benchmark::kMicrosecond);

/// A display with thirty windows on it, in the hands of this program.
class Desktop {
public:
    explicit Desktop(const std::string& display) : client_(display) {
        client_.manage();
        std::vector<xcb_window_t> windows;
        for (int i = 0; i < windowCount; ++i) {
            windows.push_back(client_.create("window"));
            const std::uint32_t size[] = {400, 300};
            xcb_configure_window(client_.xcb(), windows.back(), XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                 size);
            client_.map(windows.back());
        }
        client_.setManaged(windows);
    }

private:
    X11TestClient client_;
};

template <class Ask>
void withADisplay(benchmark::State& state, Ask ask) {
    const auto display = processEnvironment("DISPLAY");
    if (!display) {
        state.SkipWithError("no DISPLAY");
        return;
    }
    const Desktop desktop(*display);
    const SystemClock clock{};
    MainQueue queue;
    X11Connection connection(queue, clock, *display);
    X11Windows windows(connection);
    X11Screens screens(connection, windows);
    for ([[maybe_unused]] auto _ : state)
        ask(connection, screens);
}

void visibleWindowsOfARealDisplay(benchmark::State& state) {
    withADisplay(state, [](X11Connection&, X11Screens& screens) {
        benchmark::DoNotOptimize(ScreenInspector(screens).visibleWindows());
    });
}
BENCHMARK(visibleWindowsOfARealDisplay)->Unit(benchmark::kMicrosecond);

void suspendersOfARealDisplay(benchmark::State& state) {
    withADisplay(state, [](X11Connection& connection, X11Screens&) {
        benchmark::DoNotOptimize(saverSuspendingProcesses(connection));
    });
}
BENCHMARK(suspendersOfARealDisplay)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kestrio
