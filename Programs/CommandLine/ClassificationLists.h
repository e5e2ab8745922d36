// The person's categories and project rules as tables for a terminal and as data for scripts. Pure functions.
#pragma once

#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"
#include "Programs/CommandLine/SessionTable.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kestrio {

enum class CategoryKind { app, site };

struct CategoryRow {
    CategoryKind kind;
    std::string name; // bundle identifier or domain
    ActivityCategory category;
    ActivityCategory otherwise; // without the person's own choice for it
    bool isChosen = false;      // by the person

    friend bool operator==(const CategoryRow&, const CategoryRow&) = default;
};

enum class CategoryScope { chosen, everything };

/// Applications before sites, by category and then by name. `everything` adds the built-in rows.
std::vector<CategoryRow> categoryRows(const Categorizer::Snapshot& snapshot, CategoryScope scope);

// Texts end with a line feed.
std::string categoryTable(const std::vector<CategoryRow>& rows, const TableStyle& style);
nlohmann::ordered_json toJSON(const std::vector<CategoryRow>& rows);

/// The rules in their order, numbered from 1.
std::string ruleTable(const std::vector<ProjectRule>& rules, const TableStyle& style);
nlohmann::ordered_json toJSON(const std::vector<ProjectRule>& rules);

} // namespace kestrio
