// Why something belongs to its category and its project, for `kestrioctl explain`. Pure functions.
#pragma once

#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"
#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

/// What a person asks about: a window as the recorder would see it.
struct ExplainedWindow {
    std::string bundleID;
    std::string appName;
    std::string title = {}; // as the window has it
    std::optional<std::string> url = {};
};

struct Explanation {
    ExplainedWindow window; // the title as it would be recorded
    std::optional<std::string> domain;
    std::vector<CategoryStep> category; // never empty; the last one is what answered
    ProjectReading reading;
    ProjectResolution resolution;
    std::optional<ProjectRule> rule; // the one that decided
};

Explanation explanation(ExplainedWindow window, const Categorizer::Snapshot& categories,
                        const ProjectDetector& detector, const std::vector<ProjectRule>& rules);

/// Ends with a line feed.
std::string explanationText(const Explanation& explanation, const TableStyle& style);
nlohmann::ordered_json toJSON(const Explanation& explanation);

} // namespace kestrio
