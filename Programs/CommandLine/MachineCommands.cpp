#include "Programs/CommandLine/MachineCommands.h"

#include "Kestrio/Platform/Linux/LinuxHostFacts.h"
#include "Kestrio/Resources/KernelStats.h"
#include "Programs/Agent/HostMachine.h"
#include "Programs/CommandLine/LiveScreen.h"
#include "Programs/CommandLine/MachineText.h"
#include "Programs/CommandLine/Places.h"
#include "Programs/CommandLine/TableParts.h"
#include "Programs/CommandLine/Terminal.h"
#include "Programs/CommandLine/TopTable.h"

#include <chrono>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

namespace kestrio {
namespace {

constexpr int done = 0;
constexpr int failed = 1;
constexpr int wrongUsage = 2;

/// Long enough that a hundredth of a second, in which some counters run, is a percent.
constexpr Seconds measuring{1.0};
constexpr Seconds betweenFrames{2.0};

/// More than any pause between two frames, unless somebody stopped the program.
constexpr Seconds oldestBaseline{10};

/// Takes one reading of everything after the other.
class TopSampler {
public:
    TopSampler() : machine_(clock_, processEnvironment), scanner_(machine_.processes, clock_, oldestBaseline) {}

    TopReading sample() {
        const auto now = clock_.uptime();
        auto ticks = KernelStats(machine_.kernel).coreTicks();
        TopReading reading{.scan = scanner_.scan(),
                           .interval = previousAt_ ? now - *previousAt_ : Seconds(0),
                           .processCount = scanner_.processCount(),
                           .cores = machine_.processes.activeProcessorCount(),
                           .memory = machine_.kernel.memory(),
                           .swap = machine_.kernel.swap(),
                           .pressure = machine_.kernel.memoryPressure()};
        if (previousAt_ && !ticks.empty())
            reading.load = tindra::coreLoad(previousTicks_, ticks, static_cast<std::int64_t>(ticks.size())).efficiency;
        previousTicks_ = std::move(ticks);
        previousAt_ = now;
        return reading;
    }

private:
    SystemClock clock_;
    HostMachine machine_;
    AppProcessScanner scanner_;
    std::optional<Uptime> previousAt_;
    std::vector<tindra::CoreTicks> previousTicks_;
};

int topOnce(TopOrder order, bool json) {
    TopSampler sampler;
    sampler.sample();
    std::this_thread::sleep_for(measuring);
    const auto reading = sampler.sample();
    if (json)
        printJSON(toJSON(reading, order));
    else
        print(topTable(reading, order, Calendar::current(), outputStyle()));
    return done;
}

class LiveTop {
public:
    explicit LiveTop(TopOrder order) : order_(order) {}

    int run() {
        auto next = clock_.uptime() + measuring; // the first frame is to be complete soon
        while (isGoingOn_ && show()) {
            const auto event = screen_.wait(next - clock_.uptime());
            std::visit([this](const auto& happened) { handle(happened); }, event);
            if (clock_.uptime() < next)
                continue;
            reading_ = sampler_.sample();
            next = clock_.uptime() + betweenFrames;
        }
        return done;
    }

private:
    bool show() {
        const auto size = screen_.size();
        auto style = outputStyle();
        style.width = size.columns;
        const auto room = size.rows > 2 ? size.rows - 2 : 1;
        const Painter paint(style.hasColour);
        return screen_.show(topTable(reading_, order_, calendar_, style, room) + "\n  " +
                            paint.dim("100% is one core   c by CPU   m by memory   q quits"));
    }

    void handle(LiveScreen::Key key) {
        switch (key.character) {
        case 'q':
        case 'Q': isGoingOn_ = false; break;
        case 'c': order_ = TopOrder::cpu; break;
        case 'm': order_ = TopOrder::memory; break;
        default: break;
        }
    }
    void handle(LiveScreen::Ended) { isGoingOn_ = false; }
    void handle(LiveScreen::Resized) {}
    void handle(LiveScreen::TimePassed) {}

    const SystemClock clock_;
    const Calendar calendar_ = Calendar::current();
    TopSampler sampler_;
    TopReading reading_ = sampler_.sample();
    TopOrder order_;
    bool isGoingOn_ = true;
    LiveScreen screen_; // last, so that nothing fails while the terminal is taken
};

void addAbsences(MachineReading& reading, const HostMachine& host, bool hasDrives) {
    const auto add = [&](bool isThere, const char* what, const char* why) {
        if (!isThere)
            reading.absences.push_back({what, why});
    };
    std::error_code ignored;
    add(reading.load.has_value(), "Load", "/proc/stat does not list the cores");
    add(reading.memory.has_value(), "Memory", "/proc/meminfo cannot be read");
    add(std::filesystem::exists("/proc/pressure/memory", ignored), "Pressure stalls",
        "this kernel does not measure them; pressure is told by free memory alone");
    add(reading.efficiencyCores > 0, "Efficiency cores", "all cores are of one class");
    add(hasDrives, "Drives", "no drive is built into this machine, or none tells its counters");
    add(reading.traffic.has_value(), "RAM traffic",
        host.memoryTraffic.hasControllers()
            ? "the kernel lets only administrators read it (perf_event_paranoid is above 0)"
            : "the memory controllers have no counters that the kernel knows");
    add(false, "Energy by application", "the kernel does not measure it");
}

MachineReading readMachine(HostMachine& host, const Clock& clock) {
    KernelStats stats(host.kernel);
    RAMTrafficMeter meter(host.memoryTraffic);
    const auto start = clock.uptime();
    const auto ticks = stats.coreTicks();
    const auto drives = host.disks.internalDrives();
    meter.sample(start);
    std::this_thread::sleep_for(measuring);

    const auto now = clock.uptime();
    const auto laterTicks = stats.coreTicks();
    const auto laterDrives = host.disks.internalDrives();
    MachineReading reading{.chip = stats.chipName(),
                           .efficiencyCores = stats.efficiencyCores(),
                           .performanceCores = stats.performanceCores(),
                           .memory = host.kernel.memory(),
                           .pressure = stats.pressure(),
                           .swap = host.kernel.swap(),
                           .traffic = meter.sample(now),
                           .topSpeed = RAMSpeed::topSpeed(stats.chipName())};
    if (!laterTicks.empty())
        reading.load = {tindra::coreLoad(ticks, laterTicks, static_cast<std::int64_t>(laterTicks.size())).efficiency,
                        tindra::coreLoad(ticks, laterTicks, stats.efficiencyCores())};
    if (drives && laterDrives)
        reading.drives = rates(*laterDrives, *drives, (now - start).count());
    addAbsences(reading, host, laterDrives.has_value());
    return reading;
}

} // namespace

int top(const TopOptions& options) {
    const auto order = topOrder(options.by);
    if (!order) {
        complain(fmt::format("--by \"{}\" is no order that I know; it is memory or cpu", options.by));
        return wrongUsage;
    }
    if (options.once || options.json || !LiveScreen::isPossible())
        return topOnce(*order, options.json);
    return LiveTop(*order).run();
}

int machine(bool json) {
    const SystemClock clock;
    HostMachine host(clock, processEnvironment);
    auto reading = readMachine(host, clock);
    if (const auto places = locations(processEnvironment))
        reading.test = SSDSpeedTest::saved(*openSettings(*places));
    if (json)
        printJSON(toJSON(reading));
    else
        print(machineText(reading, Calendar::current(), outputStyle()));
    return done;
}

int diskTest(bool json) {
    const auto places = placesOrExit();
    const SystemClock clock;
    LinuxDisks disks(HostMachine::testFolders(processEnvironment));
    if (!json)
        complain(fmt::format("writing and reading {} MB", SSDSpeedTest::usualMegabytes));
    const auto result = SSDSpeedTest::run(disks, clock, SSDSpeedTest::usualMegabytes);
    if (!result) {
        complain("the drive could not be tested: there must be room for a file of that size, and it must not lie in "
                 "memory");
        return failed;
    }
    SSDSpeedTest::save(*openSettings(places), result);
    if (json)
        printJSON(nlohmann::ordered_json::parse(SSDSpeedTest::encoded(*result)));
    else
        print(fmt::format("  The drive {}.\n", testText(*result, Calendar::current())));
    return done;
}

} // namespace kestrio
