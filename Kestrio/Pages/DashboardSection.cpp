#include "Kestrio/Pages/DashboardSection.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

struct SectionFacts {
    std::string_view rawValue;
    std::string_view label;
    std::string_view symbol;
    bool isReportPage;
};

const SectionFacts& facts(DashboardSection section) {
    static constexpr std::array<SectionFacts, allDashboardSections.size()> table{{
        {"overview", "Overview", "square.grid.2x2", true},
        {"timeline", "Timeline", "chart.xyaxis.line", true},
        {"apps", "Apps", "macwindow", true},
        {"websites", "Websites", "globe", true},
        {"youtube", "YouTube", "play.rectangle", true},
        {"projects", "Projects", "folder", true},
        {"performance", "Performance", "gauge.with.dots.needle.67percent", false},
        {"resourceLog", "Resource Log", "list.bullet.rectangle", false},
    }};
    return table[static_cast<std::size_t>(section)];
}

} // namespace

std::string_view rawValue(DashboardSection section) {
    return facts(section).rawValue;
}

std::optional<DashboardSection> dashboardSection(std::string_view raw) {
    for (const auto section : allDashboardSections)
        if (rawValue(section) == raw)
            return section;
    return std::nullopt;
}

std::optional<std::string> dashboardSectionError(std::string_view text) {
    if (dashboardSection(text))
        return std::nullopt;
    std::vector<std::string_view> known;
    for (const auto section : allDashboardSections)
        known.push_back(rawValue(section));
    return fmt::format("there is no page \"{}\"; there are {}", text, fmt::join(known, ", "));
}

std::string_view label(DashboardSection section) {
    return facts(section).label;
}

std::string_view symbol(DashboardSection section) {
    return facts(section).symbol;
}

bool isReportPage(DashboardSection section) {
    return facts(section).isReportPage;
}

DashboardSection openingSection(std::optional<DashboardSection> requested, const std::optional<std::string>& stored) {
    if (requested)
        return *requested;
    const auto known = stored ? dashboardSection(*stored) : std::nullopt;
    return known.value_or(DashboardSection::overview);
}

std::vector<SidebarGroup> sidebarGroups() {
    std::vector<SidebarGroup> groups{{"Insights", {}}, {"Mac", {}}};
    for (const auto section : allDashboardSections)
        groups[isReportPage(section) ? 0 : 1].sections.push_back(section);
    return groups;
}

} // namespace kestrio
