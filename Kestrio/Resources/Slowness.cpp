#include "Kestrio/Resources/Slowness.h"

#include "Kestrio/Base/Formatters.h"
#include "TindraCore/ResourceMath.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace kestrio {
namespace {

using Cause = Slowness::Cause;
using Verdict = Slowness::Verdict;
using Behaviour = tindra::BehaviourAccumulator;

constexpr Seconds minuteLength{60};
constexpr Seconds longestGap{10};   // between two of the log's seconds, at its slowest pace
constexpr double leastCores = 0.05; // less is no work to speak of
constexpr std::uint64_t leastDisk = 1 << 20;
constexpr std::int64_t warning = 2; // the log's codes of memory pressure
constexpr std::int64_t critical = 4;
constexpr std::int64_t feltLag = 100; // milliseconds; a shorter stall is not worth a word

bool isSleepOrWake(const ResourceEvent& event) {
    return event.kind == ResourceEventKind::macSlept || event.kind == ResourceEventKind::macWoke;
}

bool wasAsleep(const LogAroundMoment& log) {
    const auto last = std::find_if(log.events.rbegin(), log.events.rend(), isSleepOrWake);
    return last != log.events.rend() && last->kind == ResourceEventKind::macSlept;
}

/// Null when the log has no minute for the moment.
const SystemMinute* minuteOf(const LogAroundMoment& log) {
    for (const auto& minute : log.minutes)
        if (minute.minute <= log.at && log.at < minute.minute + minuteLength)
            return &minute;
    if (log.minutes.empty() || wasAsleep(log))
        return nullptr;
    const auto& last = log.minutes.back();
    return last.minute <= log.at && log.at < last.minute + 2 * minuteLength ? &last : nullptr;
}

std::vector<SystemSecond> secondsOf(const LogAroundMoment& log) {
    std::vector<SystemSecond> near;
    std::ranges::copy_if(log.seconds, std::back_inserter(near), [&](const SystemSecond& second) {
        return second.at >= log.at - Slowness::reach && second.at <= log.at + Slowness::reach;
    });
    return near;
}

/// What the rates of the seconds come to.
std::uint64_t bytesReadBack(const std::vector<SystemSecond>& seconds) {
    double bytes = 0;
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        const auto length = i == 0 ? Seconds(1) : std::min(seconds[i].at - seconds[i - 1].at, longestGap);
        bytes += seconds[i].swapInRate * length.count();
    }
    return static_cast<std::uint64_t>(bytes);
}

void takeMinute(Slowness& made, const SystemMinute& minute) {
    made.pressure = minute.pressure;
    made.readBack = minute.swapIn;
    made.lagMilliseconds = minute.lagMilliseconds;
    made.cpu = minute.cpu;
    made.thermal = minute.thermal;
    made.ssdWaitMicroseconds = minute.ssdWaitMicroseconds;
    made.ssdSpeed = minute.ssdRead + minute.ssdWrite;
}

void takeSeconds(Slowness& made, const std::vector<SystemSecond>& seconds, bool hasMinute) {
    double cpu = 0;
    for (const auto& second : seconds) {
        made.pressure = std::max(made.pressure, second.pressure);
        made.thermal = std::max(made.thermal, second.thermal);
        cpu += second.cpu / static_cast<double>(seconds.size());
    }
    // Around the moment may be busier than its minute, or reach into the next.
    made.cpu = hasMinute ? std::max(made.cpu, cpu) : cpu;
    made.readBack = std::max(made.readBack, bytesReadBack(seconds));
    const auto longest = std::ranges::max_element(seconds, {}, &SystemSecond::lagMilliseconds);
    if (longest->lagMilliseconds < made.lagMilliseconds || longest->lagMilliseconds <= 0)
        return;
    made.lagMilliseconds = longest->lagMilliseconds;
    made.lagAt = longest->at;
}

std::vector<Cause> causesOf(const Slowness& seen) {
    // Each measure by itself, against the bounds that make a minute of the log a slowdown.
    const auto isSlow = [](const tindra::MinuteHealth& health) { return health.isSlowdown(); };
    std::vector<Cause> causes;
    if (isSlow({.lagMilliseconds = seen.lagMilliseconds}))
        causes.push_back(Cause::stall);
    if (isSlow({.pressure = seen.pressure}))
        causes.push_back(Cause::criticalMemory);
    if (isSlow({.swapInBytes = seen.readBack}))
        causes.push_back(Cause::readBack);
    if (seen.ssdWaitMicroseconds >= Slowness::longWaitMicroseconds && seen.ssdSpeed >= Slowness::leastTraffic)
        causes.push_back(Cause::heldUpDrive);
    if (seen.cpu >= Slowness::busyShare)
        causes.push_back(Cause::busyCores);
    if (seen.thermal >= Slowness::throttlingFrom)
        causes.push_back(Cause::heat);
    return causes;
}

void takeApps(Slowness& made, const std::vector<AppMinute>& apps, Date minute) {
    for (const auto& app : apps) {
        if (app.minute != minute)
            continue;
        const Slowness::App seen{app.appID, app.name, app.memory, app.cpu, app.diskRead + app.diskWritten};
        if (!made.largest || seen.memory > made.largest->memory)
            made.largest = seen;
        if (seen.cpu >= leastCores && (!made.busiest || seen.cpu > made.busiest->cpu))
            made.busiest = seen;
        if (seen.disk >= leastDisk && (!made.writingMost || seen.disk > made.writingMost->disk))
            made.writingMost = seen;
    }
}

/// How the person spent the most of the minute. Absent for one from before that was logged.
std::optional<std::int64_t> activityOf(const SystemMinute& minute) {
    const std::pair<std::int64_t, std::int64_t> spent[] = {{Behaviour::active, minute.activeSeconds},
                                                           {Behaviour::idle, minute.idleSeconds},
                                                           {Behaviour::away, minute.awaySeconds},
                                                           {Behaviour::paused, minute.pausedSeconds}};
    const auto* const most = std::ranges::max_element(spent, {}, &std::pair<std::int64_t, std::int64_t>::second);
    return most->second > 0 ? std::optional(most->first) : std::nullopt;
}

/// An application's name, as any minute around the moment has it, or whoever else knows it; else its key.
std::string nameOf(const std::string& key, const LogAroundMoment& log) {
    const auto app = std::ranges::find(log.apps, key, &AppMinute::appID);
    if (app != log.apps.end())
        return app->name;
    const auto other = log.otherNames.find(key);
    return other == log.otherNames.end() ? key : other->second;
}

void takeBehaviour(Slowness& made, const LogAroundMoment& log, const SystemMinute* minute,
                   const std::vector<SystemSecond>& seconds) {
    std::optional<std::string> front;
    if (!seconds.empty()) {
        const auto nearest =
            std::ranges::min_element(seconds, {}, [&](const SystemSecond& second) { return abs(second.at - log.at); });
        front = nearest->frontApp;
        made.activity = nearest->state;
    } else if (minute) {
        front = minute->frontApp;
        made.activity = activityOf(*minute);
    }
    if (front)
        made.front = nameOf(*front, log);
}

// Sentences.

/// "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& clauses) {
    std::string text;
    for (std::size_t i = 0; i < clauses.size(); ++i)
        text += (i == 0 ? "" : i + 1 == clauses.size() ? " and " : ", ") + clauses[i];
    return text;
}

std::string lag(const Slowness& seen, const Calendar& calendar) {
    return seen.lagMilliseconds < 1000 ? fmt::format("{} ms", seen.lagMilliseconds)
                                       : Fmt::seconds(seen.lagMilliseconds, calendar);
}

std::string causeInWords(Cause cause, const Slowness& seen, const Calendar& calendar) {
    switch (cause) {
    case Cause::stall:
        return fmt::format("it stood still for {}{}", lag(seen, calendar),
                           seen.lagAt ? " at " + calendar.localized(*seen.lagAt, "jmmss") : "");
    case Cause::criticalMemory: return "its memory was full (critical pressure)";
    case Cause::readBack:
        return fmt::format("{} had to be read back from the SSD within a minute", Fmt::memory(seen.readBack, calendar));
    case Cause::heldUpDrive:
        return fmt::format("its SSD could not keep up (a request waited {} ms, at {})",
                           (seen.ssdWaitMicroseconds + 500) / 1000, Fmt::speed(seen.ssdSpeed, calendar));
    case Cause::busyCores: return fmt::format("its cores were all busy ({})", Fmt::percent(seen.cpu, 1));
    case Cause::heat: return "it was hot and slowed itself down to cool off";
    }
    return {};
}

/// The measures that did not make it slow, as they stood.
std::string quietMeasures(const Slowness& seen, const Calendar& calendar) {
    std::vector<std::string> measures;
    measures.emplace_back(seen.pressure >= warning ? "memory was under some pressure" : "memory was under no pressure");
    measures.push_back(seen.readBack > 0 ? Fmt::memory(seen.readBack, calendar) + " came back from the SSD"
                                         : "nothing had to be read back from the SSD");
    if (seen.lagMilliseconds >= feltLag)
        measures.push_back(fmt::format("the longest stall took {} ms", seen.lagMilliseconds));
    measures.push_back(fmt::format("the cores were {} busy", Fmt::percent(seen.cpu, 1)));
    return listed(measures);
}

std::string verdictSentence(const Slowness& seen, const Calendar& calendar) {
    const auto when = calendar.localized(seen.at, "jmm");
    if (seen.verdict == Verdict::smooth)
        return fmt::format("The Mac was not slow at {}: {}.", when, quietMeasures(seen, calendar));
    std::vector<std::string> causes;
    for (const auto cause : seen.causes)
        causes.push_back(causeInWords(cause, seen, calendar));
    // What lies behind a stall is worth a word even where it alone would not slow anything.
    if (seen.pressure >= warning && seen.pressure < critical)
        causes.emplace_back("memory was under some pressure");
    return fmt::format("The Mac was slow at {}: {}.", when, listed(causes));
}

std::string doing(const Slowness& seen) {
    if (!seen.activity)
        return seen.front ? *seen.front + " was in front" : "";
    switch (*seen.activity) {
    case Behaviour::active: return "you were " + (seen.front ? "using " + *seen.front : std::string("at the Mac"));
    case Behaviour::idle: return "you were idle" + (seen.front ? " with " + *seen.front + " in front" : std::string());
    case Behaviour::away: return "you were away";
    default: return "recording of what you did was paused";
    }
}

std::vector<std::string> appsInWords(const Slowness& seen, const Calendar& calendar) {
    std::vector<std::string> clauses;
    if (!seen.largest)
        return clauses;
    auto holding =
        fmt::format("{} held the most memory ({})", seen.largest->name, Fmt::memory(seen.largest->memory, calendar));
    if (seen.busiest && seen.busiest->id == seen.largest->id)
        holding += fmt::format(" and was the busiest ({})", Fmt::cores(seen.busiest->cpu, calendar));
    clauses.push_back(std::move(holding));
    if (seen.busiest && seen.busiest->id != seen.largest->id)
        clauses.push_back(
            fmt::format("{} was the busiest ({})", seen.busiest->name, Fmt::cores(seen.busiest->cpu, calendar)));
    if (seen.writingMost && std::ranges::find(seen.causes, Cause::heldUpDrive) != seen.causes.end())
        clauses.push_back(fmt::format("{} read and wrote the most ({})", seen.writingMost->name,
                                      Fmt::fileSize(seen.writingMost->disk, calendar)));
    return clauses;
}

std::string upperFirst(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

} // namespace

Slowness slowness(const LogAroundMoment& log) {
    Slowness made{.at = log.at};
    const auto* const minute = minuteOf(log);
    const auto seconds = secondsOf(log);
    if (!minute && seconds.empty()) {
        made.wasAsleep = wasAsleep(log);
        return made;
    }
    if (minute) {
        takeMinute(made, *minute);
        takeApps(made, log.apps, minute->minute);
    }
    if (!seconds.empty())
        takeSeconds(made, seconds, minute != nullptr);
    takeBehaviour(made, log, minute, seconds);
    made.causes = causesOf(made);
    made.verdict = made.causes.empty() ? Verdict::smooth : Verdict::slow;
    return made;
}

std::vector<std::string> sentences(const Slowness& slowness, const Calendar& calendar) {
    if (slowness.verdict == Verdict::unlogged)
        return {fmt::format("Nothing is logged of {}{}.", calendar.localized(slowness.at, "yMMMdjmm"),
                            slowness.wasAsleep ? ": the Mac was asleep" : "")};
    std::vector<std::string> made{verdictSentence(slowness, calendar)};
    auto around = appsInWords(slowness, calendar);
    const bool beginsWithName = !around.empty() || !slowness.activity; // which stays as it is written
    if (auto said = doing(slowness); !said.empty())
        around.push_back(std::move(said));
    if (!around.empty())
        made.push_back((beginsWithName ? listed(around) : upperFirst(listed(around))) + ".");
    return made;
}

} // namespace kestrio
