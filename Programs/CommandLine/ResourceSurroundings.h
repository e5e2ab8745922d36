// What the exports of the resource log say beside the log: this computer, this program, the person's settings and what
// they used.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Link/Background.h"
#include "Kestrio/Platform/KeyValueStore.h"
#include "Kestrio/Reports/ReportBuilder.h"
#include "Kestrio/Resources/ResourceExporter.h"

#include <vector>

namespace kestrio {

/// The settings that the log was kept under, by the names that the exports give them.
nlohmann::ordered_json exportedSettings(const KeyValueStore& store);

/// Takes the time of a few small files.
ResourceExporter::Surroundings resourceSurroundings(const KeyValueStore& store, const Calendar& calendar);

/// The sessions of a range with their categories and projects, and without what they showed, in the order of time.
std::vector<ResourceExporter::UsedSession> usedSessions(std::vector<ActivitySession> sessions, DateInterval interval,
                                                        const Calendar& calendar, const Classification& classification);

} // namespace kestrio
