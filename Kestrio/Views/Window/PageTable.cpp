#include "Kestrio/Views/Window/PageTable.h"

#include "Kestrio/Views/Window/AppsModel.h"
#include "Kestrio/Views/Window/OverviewModel.h"
#include "Kestrio/Views/Window/ProjectsModel.h"
#include "Kestrio/Views/Window/TimelineModel.h"
#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Kestrio/Views/Window/YouTubeModel.h"

#include <algorithm>

namespace kestrio {
namespace {

template <class Model>
std::unique_ptr<PageModel> make(const WindowParts& parts) {
    return std::make_unique<Model>(parts);
}

} // namespace

const std::vector<PageEntry>& pageTable() {
    static const std::vector<PageEntry> table{
        {DashboardSection::overview, "Overview", make<OverviewModel>},
        {DashboardSection::timeline, "Timeline", make<TimelineModel>},
        {DashboardSection::apps, "Apps", make<AppsModel>},
        {DashboardSection::websites, "Websites", make<WebsitesModel>},
        {DashboardSection::youtube, "YouTube", make<YouTubeModel>},
        {DashboardSection::projects, "Projects", make<ProjectsModel>},
    };
    return table;
}

const PageEntry* pageEntry(DashboardSection section) {
    const auto found = std::ranges::find(pageTable(), section, &PageEntry::section);
    return found == pageTable().end() ? nullptr : &*found;
}

std::vector<SidebarGroup> listedGroups() {
    auto groups = sidebarGroups();
    for (auto& group : groups)
        std::erase_if(group.sections, [](DashboardSection section) { return !pageEntry(section); });
    std::erase_if(groups, [](const SidebarGroup& group) { return group.sections.empty(); });
    return groups;
}

} // namespace kestrio
