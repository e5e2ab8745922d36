#include "Kestrio/Pages/ProjectsPage.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr std::size_t initialItems = 25;

DetailHeader header(const ActivityReport& report, const ProjectUsage& project, const Viewpoint& viewpoint) {
    auto header = detailHeader(SymbolIcon{"folder.fill"}, project.name, project.duration, report.total);
    header.note =
        fmt::format("First seen {} · last {}", Fmt::lastSeen(project.firstSeen, viewpoint.now, viewpoint.calendar),
                    Fmt::lastSeen(project.lastSeen, viewpoint.now, viewpoint.calendar));
    return header;
}

TopCard<UsageRow> appsCard(const ProjectUsage& project) {
    TopCard<UsageRow> card{.head = {"Apps used", "macwindow"}, .rows = {}};
    for (const auto& app : project.apps)
        card.rows.push_back({.key = app.id,
                             .icon = AppIcon{app.id},
                             .title = app.title,
                             .subtitle = {},
                             .duration = Fmt::duration(app.duration),
                             .fraction = fraction(app.duration, project.duration),
                             .tint = SystemColor::blue});
    return card;
}

} // namespace

std::variant<EmptyActivity, ProjectsPage> projectsPage(const ActivityReport& report) {
    if (report.projects.empty())
        return EmptyActivity{"No projects detected", "folder",
                             "Projects are detected from VS Code, Cursor, Windsurf, Xcode, JetBrains IDEs, Zed, "
                             "Sublime Text and terminal folders. Add rules to put anything else — Figma files, docs, "
                             "websites — into a project."};
    return ProjectsPage{projectRows(report.projects, report.projects.size())};
}

std::optional<ProjectDetail> projectDetail(const ActivityReport& report, std::string_view name,
                                           const ItemFilter& filter, const Viewpoint& viewpoint) {
    const auto project = std::ranges::find(report.projects, name, &ProjectUsage::name);
    if (project == report.projects.end())
        return std::nullopt;
    const auto belongs = [&](const ClassifiedSession& session) {
        return session.project && text::equivalent(*session.project, project->name);
    };
    const ItemListing listing{.total = project->duration, .countLabel = "times", .filter = filter};
    return ProjectDetail{
        .header = header(report, *project, viewpoint),
        .trend = usageTrend(report, belongs, SystemColor::blue, viewpoint.calendar),
        .apps = appsCard(*project),
        .items = filteredCard({"What you worked on", "doc.text"}, initialItems, project->items, listing, viewpoint)};
}

} // namespace kestrio
