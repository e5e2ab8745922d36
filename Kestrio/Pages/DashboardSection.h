// The pages of the dashboard, as its sidebar lists them. Plain values.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

enum class DashboardSection { overview, timeline, apps, websites, youtube, projects, performance, resourceLog };
inline constexpr std::array allDashboardSections{DashboardSection::overview,    DashboardSection::timeline,
                                                 DashboardSection::apps,        DashboardSection::websites,
                                                 DashboardSection::youtube,     DashboardSection::projects,
                                                 DashboardSection::performance, DashboardSection::resourceLog};

/// The text by which a section is stored.
std::string_view rawValue(DashboardSection section);
/// Absent for a text that is not exactly one of the raw texts.
std::optional<DashboardSection> dashboardSection(std::string_view rawValue);
/// What is wrong with a text that somebody gave for a section's raw text, and which there are. Absent when it is one.
std::optional<std::string> dashboardSectionError(std::string_view text);
/// Whether the section has a page already.
bool hasPage(DashboardSection section);
/// The same for a page that somebody wants to open: it must be there.
std::optional<std::string> dashboardPageError(std::string_view text);
std::string_view label(DashboardSection section);
std::string_view symbol(DashboardSection section);

/// Whether the page shows a report of a range, which its person can move.
bool isReportPage(DashboardSection section);

/// The page that opens: the one that was asked for, else the one stored, else the overview.
DashboardSection openingSection(std::optional<DashboardSection> requested, const std::optional<std::string>& stored);

struct SidebarGroup {
    std::string title;
    std::vector<DashboardSection> sections;
    friend bool operator==(const SidebarGroup&, const SidebarGroup&) = default;
};

/// The groups "Insights" and "Mac".
std::vector<SidebarGroup> sidebarGroups();

} // namespace kestrio
