#include "Programs/CommandLine/ResourceSurroundings.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/Linux/LinuxHostFacts.h"
#include "Kestrio/Platform/Linux/LinuxKernelCounters.h"
#include "Kestrio/Resources/DataSpeeds.h"
#include "Kestrio/Resources/KernelStats.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Shell/HostWords.h"
#include "Kestrio/Shell/Settings.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

constexpr std::uint64_t gibibyte = 1 << 30;

/// The kernel keeps some memory for itself: what it leaves of 16 gigabytes is told as 16.
std::int64_t nearestGigabytes(std::uint64_t bytes) {
    return static_cast<std::int64_t>((bytes + gibibyte / 2) / gibibyte);
}

ResourceExporter::Mac thisComputer(KernelStats& stats) {
    const auto facts = hostFacts();
    const auto& chip = facts.chip.empty() ? stats.chipName() : facts.chip;
    return {.chip = chip.empty() ? "computer" : chip,
            .memoryGB = nearestGigabytes(facts.physicalMemory),
            .efficiencyCores = stats.efficiencyCores(),
            .performanceCores = stats.performanceCores(),
            .macOS = facts.system};
}

/// Null for a setting that is not there or is no JSON.
JSON storedJSON(const KeyValueStore& store, const char* key) {
    const auto stored = store.get<SettingBytes>(key);
    auto parsed = stored ? JSON::parse(stored->bytes, nullptr, false) : JSON();
    return parsed.is_discarded() ? JSON() : parsed;
}

ResourceExporter::UsedSession used(const ClassifiedSession& session) {
    return {.start = session.start,
            .end = session.end,
            .kind = text::lowercased(label(session.kind)),
            .app = session.appName,
            .bundleID = session.bundleID,
            .category = std::string(label(session.category)),
            .project = session.project,
            .site = session.domain};
}

} // namespace

JSON exportedSettings(const KeyValueStore& store) {
    return {{"optimization_on", store.boolean(settingKey::optimizerEnabled)},
            {"tuning", storedJSON(store, settingKey::optimizerTuning)},
            {"rules", storedJSON(store, settingKey::optimizerRules)},
            {"memory_alerts", store.boolean(settingKey::optimizerMemoryAlerts)},
            {"runaway_alerts", store.boolean(settingKey::optimizerRunawayAlerts)},
            {"log_days", store.integer(settingKey::resourceLogDays)},
            {"detail_every_seconds", store.integer(settingKey::resourceDetail)},
            {"detail_days", store.integer(settingKey::resourceDetailDays)}};
}

ResourceExporter::Surroundings resourceSurroundings(const KeyValueStore& store, const Calendar& calendar) {
    LinuxKernelCounters counters;
    KernelStats stats(counters);
    return {.mac = thisComputer(stats),
            .version = AppInfo::version(),
            .settings = exportedSettings(store),
            .topRAMSpeed = RAMSpeed::topSpeed(stats.chipName()),
            .driveTest = SSDSpeedTest::saved(store),
            .calendar = calendar,
            .hostWords = [](const auto& text, auto names) { return hostWords(text, names); }};
}

std::vector<ResourceExporter::UsedSession> usedSessions(std::vector<ActivitySession> sessions, DateInterval interval,
                                                        const Calendar& calendar,
                                                        const Classification& classification) {
    const auto report = ReportBuilder::build(std::move(sessions), interval, Granularity::day, calendar, classification);
    std::vector<ResourceExporter::UsedSession> made;
    made.reserve(report.sessions.size() + report.alongsideSessions.size());
    for (const auto* list : {&report.sessions, &report.alongsideSessions})
        std::ranges::transform(*list, std::back_inserter(made), used);
    std::ranges::stable_sort(made, {}, &ResourceExporter::UsedSession::start);
    return made;
}

} // namespace kestrio
