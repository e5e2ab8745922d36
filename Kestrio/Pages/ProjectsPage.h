// The projects of a report: the list, and what is told of the one that is selected. Plain values.
#pragma once

#include "Kestrio/Pages/OverviewPage.h"
#include "Kestrio/Pages/UsageTrend.h"

namespace kestrio {

struct ProjectsPage {
    static constexpr auto addRulesTitle = "Add Project Rules…"; // the button of the empty page
    static constexpr auto rulesSymbol = "slider.horizontal.3";
    static constexpr auto rulesHelp = "Group activity into projects by keyword";
    static constexpr auto sheetTitle = "Project Rules";
    static constexpr auto sheetDone = "Done";
    static Placeholder placeholder() { return {"Select a project", "folder"}; }

    std::vector<UsageRow> rows; // by name
    friend bool operator==(const ProjectsPage&, const ProjectsPage&) = default;
};

std::variant<EmptyActivity, ProjectsPage> projectsPage(const ActivityReport& report);

struct ProjectDetail {
    DetailHeader header;
    UsageTrend trend;
    TopCard<UsageRow> apps;
    ItemCard items;
    friend bool operator==(const ProjectDetail&, const ProjectDetail&) = default;
};

/// Absent when the report does not have the project: the placeholder then shows.
std::optional<ProjectDetail> projectDetail(const ActivityReport& report, std::string_view name,
                                           const ItemFilter& filter, const Viewpoint& viewpoint);

} // namespace kestrio
