// The pages that the dashboard has: for each its file in `Pages/` and the maker of its model. A page that is not in the
// table is not listed. Values; any thread.
#pragma once

#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Views/Window/PageModel.h"

#include <memory>
#include <vector>

namespace kestrio {

struct PageEntry {
    DashboardSection section;
    const char* file; // in Pages/, without ".qml"
    std::unique_ptr<PageModel> (*makeModel)(const WindowParts& parts);
};

/// In the order of the sections.
const std::vector<PageEntry>& pageTable();

/// Null for a section without a page.
const PageEntry* pageEntry(DashboardSection section);

/// The sidebar's groups with the sections that have pages; no empty ones.
std::vector<SidebarGroup> listedGroups();

} // namespace kestrio
