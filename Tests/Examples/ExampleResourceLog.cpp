#include "Tests/Examples/ExampleResourceLog.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Resources/ResourceStore.h"
#include "Tests/Examples/Dice.h"
#include "TindraCore/ResourceMath.h"

#include <array>
#include <fmt/format.h>

namespace kestrio {
namespace {

using Behaviour = tindra::BehaviourAccumulator;

constexpr double mebibyte = 1 << 20;
constexpr double gibibyte = 1 << 30;
constexpr double memoryTotal = 16 * gibibyte;
constexpr double cores = 8;
constexpr std::int64_t coarsePace = 10; // where no seconds are kept
constexpr int minutesBetweenWaits = 240;

struct ExampleApp {
    const char* key;
    const char* name;
    double memory; // MiB, when it was just started
    double cpu;    // cores in use while it is in front
    double background;
    double favour; // how likely it comes to the front
};

constexpr std::array apps{
    ExampleApp{"com.google.Chrome", "Google Chrome", 2900, 0.7, 0.12, 5},
    ExampleApp{"com.microsoft.VSCode", "Code", 1700, 0.6, 0.08, 6},
    ExampleApp{"net.kovidgoyal.kitty", "kitty", 180, 0.3, 0.02, 3},
    ExampleApp{"com.tinyspeck.slackmacgap", "Slack", 620, 0.2, 0.03, 2},
    ExampleApp{"com.spotify.client", "Spotify", 380, 0.15, 0.06, 0.5},
    ExampleApp{"org.mozilla.Thunderbird", "Thunderbird", 410, 0.2, 0.02, 1},
    ExampleApp{"md.obsidian", "Obsidian", 330, 0.2, 0.01, 0.7},
    ExampleApp{"org.telegram.desktop", "Telegram", 240, 0.1, 0.01, 0.6},
    ExampleApp{"org.gnome.Nautilus", "Files", 90, 0.1, 0, 0.4},
    ExampleApp{"org.kde.okular", "Okular", 210, 0.2, 0, 0.3},
    ExampleApp{"org.gimp.GIMP", "GIMP", 520, 0.8, 0, 0.2},
    ExampleApp{"org.libreoffice.LibreOffice", "LibreOffice", 360, 0.2, 0, 0.3},
    ExampleApp{"com.docker.docker", "Docker", 780, 0.3, 0.15, 0.1},
    ExampleApp{"org.gnome.Shell", "gnome-shell", 310, 0.2, 0.06, 0},
    ExampleApp{"/usr/bin/clangd", "clangd", 900, 0.4, 0.2, 0},
    ExampleApp{"/usr/bin/ninja", "ninja", 60, 0.3, 0.05, 0},
    ExampleApp{"/usr/bin/pipewire", "pipewire", 30, 0.05, 0.03, 0},
    ExampleApp{"/usr/bin/tracker-miner-fs", "tracker-miner-fs", 120, 0.1, 0.02, 0},
};

std::uint64_t whole(double value) {
    return static_cast<std::uint64_t>(std::max(value, 0.0));
}

/// What the machine goes through in one minute, before chance is added.
struct Conditions {
    Date minute;
    std::int64_t activity = Behaviour::away;
    std::size_t front = 0;
    double load = 0.05;   // share of all cores
    double memory = 0;    // bytes in use
    double swap = 0;      // bytes
    bool isShort = false; // of memory: something is read back, and the screen stalls
    std::int64_t switches = 0;
};

/// A minute's worth of one machine: the seconds, and what they come to.
struct Minute {
    SystemMinute system;
    std::vector<AppMinute> apps;
    std::vector<SystemSecond> seconds;
};

class Machine {
public:
    explicit Machine(std::uint64_t seed) : dice_(seed) {}

    Conditions live(Date minute, const Calendar::Components& time) {
        const double hour = time.hour + time.minute / 60.0;
        const bool isWeekend = time.weekday == 1 || time.weekday == 7;
        if (time.hour == 8 && time.minute == 0)
            sinceStart_ = 0;
        ++sinceStart_;
        decideActivity(hour, isWeekend);
        decideFront();
        decideShortage();
        Conditions made{.minute = minute, .activity = activity_, .front = front_};
        const bool works = activity_ == Behaviour::active;
        made.switches = works ? static_cast<std::int64_t>(dice_.below(6)) : 0;
        build_ = build_ > 0 ? build_ - 1 : works && dice_.chance(0.03) ? 1 + static_cast<int>(dice_.below(5)) : 0;
        made.load = works ? 0.08 + apps[front_].cpu / cores + (build_ > 0 ? 0.6 : 0) : 0.03;
        // A day's work fills the memory, a night's rest does not empty it.
        const double full = std::min(0.45 + 0.0006 * sinceStart_, 0.88) + (shortage_ > 0 ? 0.08 : 0);
        made.memory = memoryTotal * full;
        made.swap = std::max(0.0, full - 0.7) * memoryTotal;
        made.isShort = shortage_ > 0;
        return made;
    }

    Minute measured(const Conditions& conditions, std::int64_t pace,
                    const std::optional<tindra::OptimizerConfig>& setup, bool hasApps) {
        Minute made;
        for (std::int64_t offset = 0; offset < 60; offset += pace)
            made.seconds.push_back(second(conditions, conditions.minute + Seconds(static_cast<double>(offset))));
        made.system = summary(conditions, made.seconds, pace);
        made.system.config = setup;
        const bool optimizes = setup && setup->enabled;
        made.system.frozenApps = optimizes ? 3 : 0;
        made.system.efficientApps = optimizes ? 2 : 0;
        if (hasApps)
            for (std::size_t i = 0; i < apps.size(); ++i)
                made.apps.push_back(appMinute(conditions, i, optimizes));
        return made;
    }

private:
    void decideActivity(double hour, bool isWeekend) {
        const bool atDesk =
            isWeekend ? hour >= 11 && hour < 14 : (hour >= 9 && hour < 12.5) || (hour >= 13.2 && hour < 18);
        const bool inTheEvening = hour >= 20 && hour < 22.5;
        if (!atDesk && !inTheEvening)
            activity_ = Behaviour::away;
        else if (activity_ == Behaviour::active)
            activity_ = dice_.chance(0.03) ? Behaviour::idle : Behaviour::active;
        else
            activity_ = dice_.chance(0.25) ? Behaviour::active : Behaviour::idle;
    }

    void decideFront() {
        if (activity_ != Behaviour::active || !dice_.chance(0.3))
            return;
        double all = 0;
        for (const auto& app : apps)
            all += app.favour;
        double drawn = dice_.uniform(0, all);
        for (std::size_t i = 0; i < apps.size(); ++i)
            if ((drawn -= apps[i].favour) < 0) {
                front_ = i;
                return;
            }
    }

    /// Now and then, and only once the memory is well filled.
    void decideShortage() {
        if (shortage_ > 0)
            --shortage_;
        else if (activity_ == Behaviour::active && sinceStart_ > minutesBetweenWaits / 2 &&
                 dice_.chance(1.0 / minutesBetweenWaits))
            shortage_ = 1 + static_cast<int>(dice_.below(4));
    }

    SystemSecond second(const Conditions& now, Date at) {
        const double load = std::clamp(now.load * dice_.uniform(0.5, 1.5) + (now.isShort ? 0.15 : 0), 0.0, 1.0);
        const bool reads = now.isShort && dice_.chance(0.12);
        const bool writes = dice_.chance(0.15);
        SystemSecond made{.at = at,
                          .cpu = load,
                          .cpuPerformance = std::min(1.0, load * 1.2),
                          .cpuEfficiency = load * 0.7,
                          .memoryUsed = whole(now.memory * dice_.uniform(0.99, 1.01)),
                          .compressed = whole(now.swap / 3),
                          .swapUsed = whole(now.swap),
                          .pressure = now.isShort ? (reads ? 4 : 2) : 1,
                          .thermal = now.load > 0.6 ? 1 : 0,
                          .ramRead = (1 + 20 * load) * 1e9 * dice_.uniform(0.8, 1.2),
                          .ramWrite = (0.5 + 8 * load) * 1e9 * dice_.uniform(0.8, 1.2),
                          .ssdRead = reads               ? dice_.uniform(50e6, 400e6)
                                     : dice_.chance(0.1) ? dice_.uniform(1e4, 9e6)
                                                         : 0,
                          .ssdWrite = writes ? dice_.uniform(1e4, 30e6) : 0};
        made.swapInRate = reads ? made.ssdRead * 0.8 : 0;
        made.swapOutRate = now.isShort && writes ? made.ssdWrite * 0.8 : 0;
        made.lagMilliseconds = reads && dice_.chance(0.5) ? 300 + static_cast<std::int64_t>(dice_.below(2400))
                                                          : static_cast<std::int64_t>(dice_.below(25));
        untouched_ = now.activity == Behaviour::active && dice_.chance(0.3) ? 0 : untouched_ + 1;
        made.idleSeconds = untouched_;
        made.state = now.activity;
        if (now.activity != Behaviour::away)
            made.frontApp = apps[now.front].key;
        return made;
    }

    SystemMinute summary(const Conditions& now, const std::vector<SystemSecond>& seconds, std::int64_t pace) {
        tindra::Running cpu, fast, slow, memory, ramRead, ramWrite, ramBoth, ssdRead, ssdWrite, ssdBoth;
        SystemMinute made{.minute = now.minute, .memoryTotal = whole(memoryTotal)};
        for (const auto& second : seconds) {
            cpu.add(second.cpu);
            fast.add(second.cpuPerformance);
            slow.add(second.cpuEfficiency);
            memory.add(static_cast<double>(second.memoryUsed));
            ramRead.add(second.ramRead);
            ramWrite.add(second.ramWrite);
            ramBoth.add(second.ramRead + second.ramWrite);
            ssdRead.add(second.ssdRead);
            ssdWrite.add(second.ssdWrite);
            ssdBoth.add(second.ssdRead + second.ssdWrite);
            made.swapIn += whole(second.swapInRate * static_cast<double>(pace));
            made.swapOut += whole(second.swapOutRate * static_cast<double>(pace));
            made.pressure = std::max(made.pressure, second.pressure);
            made.thermal = std::max(made.thermal, second.thermal);
            made.lagMilliseconds = std::max(made.lagMilliseconds, second.lagMilliseconds);
        }
        made.cpu = cpu.average();
        made.cpuPeak = cpu.peak;
        made.cpuPerformance = fast.average();
        made.cpuEfficiency = slow.average();
        made.memoryUsed = whole(memory.average());
        made.compressed = seconds.back().compressed;
        made.swapUsed = seconds.back().swapUsed;
        made.frontApp = seconds.back().frontApp;
        made.ramRead = ramRead.average();
        made.ramWrite = ramWrite.average();
        made.ramPeak = ramBoth.peak;
        made.ssdRead = ssdRead.average();
        made.ssdWrite = ssdWrite.average();
        made.ssdPeak = ssdBoth.peak;
        made.ssdWaitMicroseconds = 80 + static_cast<std::int64_t>(dice_.below(now.isShort ? 4000 : 200));
        made.activeSeconds = now.activity == Behaviour::active ? 60 : 0;
        made.idleSeconds = now.activity == Behaviour::idle ? 60 : 0;
        made.awaySeconds = now.activity == Behaviour::away ? 60 : 0;
        made.switches = now.switches;
        made.appsOpen = 12;
        made.processes = 380 + static_cast<std::int64_t>(dice_.below(40));
        made.battery = 80;
        made.onAC = true;
        made.temperature = 42 + 40 * now.load;
        return made;
    }

    AppMinute appMinute(const Conditions& now, std::size_t index, bool optimizes) {
        const auto& app = apps[index];
        const bool isFront = index == now.front && now.activity == Behaviour::active;
        const bool isFrozen = optimizes && !isFront && index >= 5 && index <= 7;
        const double grown = app.memory * mebibyte * (1 + 0.0008 * sinceStart_);
        const double cpu = isFrozen ? 0 : (isFront ? app.cpu : app.background) * dice_.uniform(0.6, 1.4);
        const double memory = grown * dice_.uniform(0.98, 1.02);
        return {.minute = now.minute,
                .appID = app.key,
                .name = app.name,
                .cpu = cpu,
                .cpuPeak = cpu * dice_.uniform(1.2, 3),
                .pcoreShare = cpu > 0 ? std::optional(isFront ? 0.8 : 0.3) : std::nullopt,
                .memory = whole(memory),
                .memoryPeak = whole(memory * 1.05),
                .resident = whole(memory * (now.isShort ? 0.7 : 0.95)),
                .pageins = now.isShort ? dice_.below(9000) : 0,
                .frontSeconds = isFront ? 60.0 : 0.0,
                .state = isFrozen ? 2 : 0,
                .processes = 1 + static_cast<std::int64_t>(app.memory / 300),
                .diskRead = dice_.below(2'000'000),
                .diskWritten = dice_.below(3'000'000),
                .energyMillijoules = whole(cpu * 60'000),
                .wakeups = dice_.below(4000)};
    }

    Dice dice_;
    double sinceStart_ = 0; // minutes
    std::int64_t activity_ = Behaviour::away;
    std::size_t front_ = 0;
    int build_ = 0;    // minutes that it still takes
    int shortage_ = 0; // minutes that it still lasts
    std::int64_t untouched_ = 0;
};

/// The things that happened between two minutes.
class Happenings {
public:
    explicit Happenings(ResourceStore& store) : store_(store) {}

    void slept(Date at) { store_.add(ResourceEventKind::macSlept, std::nullopt, "", std::nullopt, at); }
    void woke(Date at) { store_.add(ResourceEventKind::macWoke, std::nullopt, "", std::nullopt, at); }

    void tell(const Conditions& now, const SystemMinute& minute) {
        if (now.activity != activity_)
            store_.add(ResourceEventKind::activity, std::nullopt, words(now.activity), std::nullopt, now.minute);
        activity_ = now.activity;
        if (now.isShort && !wasShort_)
            store_.add(ResourceEventKind::slowdown, AppReference{apps[now.front].key, apps[now.front].name},
                       fmt::format("the Mac stalled for {:.1f} s", static_cast<double>(minute.lagMilliseconds) / 1000),
                       minute.swapIn, now.minute + Seconds(30));
        wasShort_ = now.isShort;
    }

private:
    static const char* words(std::int64_t activity) {
        return activity == Behaviour::active ? "active" : activity == Behaviour::idle ? "idle" : "away";
    }

    ResourceStore& store_;
    std::int64_t activity_ = Behaviour::away;
    bool wasShort_ = false;
};

bool isNight(const Calendar::Components& time) {
    return time.hour < 8 || time.hour == 23;
}

tindra::OptimizerConfig balanced() {
    return {true, tindra::OptimizerTuning(), tindra::OptimizerRules()};
}

} // namespace

void writeResourceLog(const std::filesystem::path& file, Date end, const Calendar& calendar,
                      const ExampleResourceLogOptions& options) {
    const SystemClock clock;
    WorkerQueue queue(ResourceStore::queueLabel);
    ResourceStore store(file, queue, clock);
    Machine machine(options.seed);
    Happenings happenings(store);
    constexpr std::int64_t minutesOfADay = 1440;
    const auto lastMinute = static_cast<std::int64_t>(end.seconds()) / 60;
    const auto first = lastMinute - options.days * minutesOfADay;
    const auto detailFrom = lastMinute - options.detailDays * minutesOfADay;
    bool isAsleep = false;
    for (auto number = first; number < lastMinute; ++number) {
        const Date start(60.0 * static_cast<double>(number));
        const auto time = calendar.components(start);
        const bool sleeps = options.sleeps && isNight(time);
        if (sleeps != isAsleep)
            sleeps ? happenings.slept(start) : happenings.woke(start);
        isAsleep = sleeps;
        if (sleeps)
            continue;
        const bool hasSeconds = number >= detailFrom;
        const auto conditions = machine.live(start, time);
        // On in the second half of each week, so that there is something to compare.
        const bool optimizes = (number / minutesOfADay) % 7 >= 4;
        auto minute = machine.measured(conditions, hasSeconds ? options.pace : coarsePace,
                                       optimizes ? balanced() : tindra::OptimizerConfig::off(), options.hasApps);
        happenings.tell(conditions, minute.system);
        store.write(minute.system, std::move(minute.apps));
        if (hasSeconds)
            store.write(std::move(minute.seconds));
        if (number % minutesOfADay == 0)
            queue.sync([] {}); // no more than a day waits in memory
    }
}

} // namespace kestrio
