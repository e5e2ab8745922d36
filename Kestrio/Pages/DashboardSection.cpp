#include "Kestrio/Pages/DashboardSection.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

struct SectionFacts {
    std::string_view rawValue;
    std::string_view label;
    std::string_view symbol;
    bool isReportPage;
    bool hasPage;
};

const SectionFacts& facts(DashboardSection section) {
    static constexpr std::array<SectionFacts, allDashboardSections.size()> table{{
        {"overview", "Overview", "square.grid.2x2", true, true},
        {"timeline", "Timeline", "chart.xyaxis.line", true, true},
        {"apps", "Apps", "macwindow", true, true},
        {"websites", "Websites", "globe", true, true},
        {"youtube", "YouTube", "play.rectangle", true, true},
        {"projects", "Projects", "folder", true, true},
        {"performance", "Performance", "gauge.with.dots.needle.67percent", false, false},
        {"resourceLog", "Resource Log", "list.bullet.rectangle", false, false},
    }};
    return table[static_cast<std::size_t>(section)];
}

template <class Fits>
std::string listed(Fits fits) {
    std::vector<std::string_view> names;
    for (const auto section : allDashboardSections)
        if (fits(section))
            names.push_back(rawValue(section));
    return fmt::format("{}", fmt::join(names, ", "));
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
    return fmt::format("there is no page \"{}\"; there are {}", text, listed([](auto) { return true; }));
}

bool hasPage(DashboardSection section) {
    return facts(section).hasPage;
}

std::optional<std::string> dashboardPageError(std::string_view text) {
    const auto section = dashboardSection(text);
    if (section && hasPage(*section))
        return std::nullopt;
    return fmt::format("there is no page \"{}\"{}; there are {}", text, section ? " yet" : "", listed(hasPage));
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
