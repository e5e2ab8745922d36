#include "Kestrio/Resources/AppProcessScanner.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <cmath>

namespace kestrio {
namespace {

constexpr double nanosPerSecond = 1e9;

/// The time in which the weight of what was measured falls to a third, about.
constexpr double recentSeconds = 20;

/// Nanoseconds of CPU time below which a share says nothing any more.
constexpr double leastRecentTotal = 1'000;

/// Owners are found again cheaply, so the cache is emptied rather than tended.
constexpr std::size_t mostOwners = 4'000;

/// 0 where a counter went down.
std::uint64_t increase(std::uint64_t now, std::uint64_t before) {
    return now > before ? now - before : 0;
}

/// 0 where it could not be read both times: what was counted meanwhile is not known to be of this interval.
std::uint64_t increase(std::optional<std::uint64_t> now, std::optional<std::uint64_t> before) {
    return now && before ? increase(*now, *before) : 0;
}

double share(double part, double total) {
    return std::min(part / total, 1.0);
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

} // namespace

AppProcessScanner::AppProcessScanner(ProcessTable& table, const Clock& clock, Seconds maxBaselineAge)
    : table_(table),
      clock_(clock),
      maxBaselineAge_(maxBaselineAge),
      cores_(std::max<std::size_t>(table.activeProcessorCount(), 1)) {}

std::string AppProcessScanner::programName(std::string_view path) {
    constexpr std::string_view vendor = "com.apple.";
    auto name = lastComponent(path);
    if (name.starts_with(vendor) && name.size() > vendor.size())
        name.remove_prefix(vendor.size());
    return std::string(name);
}

std::optional<std::string> AppProcessScanner::bundlePath(std::string_view path) {
    for (const std::string_view mark : {".app/", ".app.bundle/"})
        if (const auto at = path.find(mark); at != std::string_view::npos)
            return std::string(path.substr(0, at)) + ".app";
    return std::nullopt;
}

AppProcessScanner::Scan AppProcessScanner::scan() {
    const auto now = static_cast<std::uint64_t>(std::max(0.0, clock_.uptime().seconds()) * nanosPerSecond);
    const auto elapsed = now - std::min(previousScan_.value_or(now), now);
    const bool hasCPU = previousScan_ && static_cast<double>(elapsed) < maxBaselineAge_.count() * nanosPerSecond;
    const auto listed = table_.processes();
    if (listed.empty())
        return {};

    ++scans_;
    Apps apps;
    apps.reserve(appCount_);
    for (const auto process : listed)
        if (process > 0)
            visit(process, elapsed, hasCPU, apps);

    decaySplits(elapsed, hasCPU);
    setShares(apps);
    Scan result{{}, hasCPU};
    result.apps.reserve(apps.size());
    for (auto& [key, working] : apps) {
        working.app.cpu = working.app.cpuCores / static_cast<double>(cores_);
        result.apps.push_back(std::move(working.app));
    }
    appCount_ = apps.size();
    processCount_ = listed.size();
    previousScan_ = now;
    forgetEnded();
    if (owners_.size() > mostOwners)
        owners_.clear();
    return result;
}

void AppProcessScanner::visit(pid_t process, std::uint64_t elapsed, bool hasCPU, Apps& apps) {
    const auto counters = table_.counters(process);
    if (!counters)
        return;
    const ProcessKey key{process, counters->start};
    auto known = previous_.find(key);
    const bool isKnown = known != previous_.end();
    auto owner = isKnown && known->second.counters.image == counters->image ? known->second.owner : ownerOf(process);
    if (!owner) // it is looked at afresh in the next scan, with no baseline
        return;

    auto& working = apps[owner->key];
    auto& app = working.app;
    if (!working.owner) {
        working.owner = owner;
        app = {.id = owner->key,
               .name = owner->name,
               .appPath = owner->appPath,
               .bundleID = owner->bundleID,
               .processes = {}};
    }
    if (isKnown && hasCPU && elapsed > 0)
        addIncreases(working, *counters, known->second.counters, elapsed);
    app.footprint += counters->footprint;
    app.resident += counters->resident;
    app.processes.push_back(key);
    if (isKnown)
        known->second = {*counters, std::move(owner), scans_};
    else
        previous_.emplace(key, Known{*counters, std::move(owner), scans_});
}

void AppProcessScanner::addIncreases(Working& into, const ProcessCounters& now, const ProcessCounters& before,
                                     std::uint64_t elapsed) {
    if (now.cpu < before.cpu)
        return;
    const auto cpu = now.cpu - before.cpu;
    auto& app = into.app;
    app.cpuCores += static_cast<double>(cpu) / static_cast<double>(elapsed);
    app.pageins += increase(now.pageins, before.pageins);
    app.diskRead += increase(now.diskRead, before.diskRead);
    app.diskWritten += increase(now.diskWritten, before.diskWritten);
    app.energy += increase(now.energy, before.energy);
    app.wakeups += increase(now.wakeups, before.wakeups);
    into.cpu += cpu;
    into.performanceCPU += increase(now.performanceCPU, before.performanceCPU);
}

void AppProcessScanner::decaySplits(std::uint64_t elapsed, bool hasCPU) {
    if (!hasCPU) {
        recentSplit_.clear();
        return;
    }
    const double decay = std::exp(static_cast<double>(elapsed) / -nanosPerSecond / recentSeconds);
    for (auto& [key, split] : recentSplit_) {
        split.performance *= decay;
        split.total *= decay;
    }
    std::erase_if(recentSplit_, [](const auto& entry) { return !(entry.second.total > leastRecentTotal); });
}

void AppProcessScanner::setShares(Apps& apps) {
    for (auto& [key, working] : apps) {
        if (working.cpu == 0)
            continue;
        const auto performance = static_cast<double>(working.performanceCPU);
        const auto total = static_cast<double>(working.cpu);
        working.app.pcoreShare = share(performance, total);
        auto& split = recentSplit_[working.app.id];
        split.performance += performance;
        split.total += total;
    }
    for (auto& [key, working] : apps)
        if (const auto split = recentSplit_.find(working.app.id);
            split != recentSplit_.end() && split->second.total > 0)
            working.app.recentPcoreShare = share(split->second.performance, split->second.total);
}

void AppProcessScanner::forgetEnded() {
    std::erase_if(previous_, [this](const auto& entry) { return entry.second.scan != scans_; });
}

AppProcessScanner::SharedOwner AppProcessScanner::ownerOf(pid_t process) {
    auto responsible = table_.responsible(process).value_or(process);
    if (responsible <= 0)
        responsible = process;
    auto path = table_.programPath(responsible);
    if (!path && responsible != process)
        path = table_.programPath(process);
    if (!path)
        return nullptr;
    if (const auto known = owners_.find(*path); known != owners_.end())
        return known->second;
    auto owner = std::make_shared<const Owner>(resolve(responsible, *path));
    owners_.emplace(std::move(*path), owner);
    return owner;
}

AppProcessScanner::Owner AppProcessScanner::resolve(pid_t responsible, const std::string& path) {
    if (auto application = table_.application(responsible)) {
        const auto name = application->localizedName.value_or(std::string(lastComponent(application->path)));
        return {.key = application->bundleIdentifier,
                .name = text::withoutInvisibleMarks(name),
                .appPath = std::move(application->path),
                .bundleID = application->bundleIdentifier};
    }
    if (const auto bundle = bundlePath(path)) {
        const auto found = table_.bundle(*bundle);
        auto name = lastComponent(*bundle);
        name.remove_suffix(std::string_view(".app").size());
        return {.key = *bundle,
                .name = std::string(name),
                .appPath = found ? bundle : std::nullopt,
                .bundleID = found ? found->bundleIdentifier : std::nullopt};
    }
    return {.key = path, .name = programName(path), .appPath = {}, .bundleID = {}};
}

} // namespace kestrio
