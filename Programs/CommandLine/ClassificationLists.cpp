#include "Programs/CommandLine/ClassificationLists.h"

#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <tuple>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

std::string_view rawValue(CategoryKind kind) {
    return kind == CategoryKind::app ? "app" : "site";
}

ActivityCategory categoryIn(const Categorizer::Snapshot& snapshot, CategoryKind kind, const std::string& name) {
    return kind == CategoryKind::app ? snapshot.appCategory(name) : snapshot.category("", name);
}

void addRows(std::vector<CategoryRow>& rows, const Categorizer::Snapshot& snapshot, CategoryKind kind,
             const Categorizer::Overrides& chosen, const CategoryTable* builtIn) {
    for (const auto& [name, category] : chosen) {
        auto without = snapshot;
        (kind == CategoryKind::app ? without.appOverrides : without.domainOverrides).erase(name);
        rows.push_back({kind, name, category, categoryIn(without, kind, name), true});
    }
    if (builtIn)
        for (const auto& [name, category] : *builtIn)
            if (!chosen.contains(name))
                rows.push_back({kind, std::string(name), category, category, false});
}

/// The text cut and filled to exactly so many columns.
std::string cell(const std::string& text, std::size_t columns) {
    return padded(text::fittedToColumns(text, columns), columns);
}

template <class Rows, class Measure>
std::size_t widest(const Rows& rows, std::size_t most, Measure measure) {
    std::size_t columns = 0;
    for (const auto& row : rows)
        columns = std::max(columns, std::min(most, text::columns(text::fittedToColumns(measure(row), most))));
    return columns;
}

} // namespace

std::vector<CategoryRow> categoryRows(const Categorizer::Snapshot& snapshot, CategoryScope scope) {
    const bool all = scope == CategoryScope::everything;
    std::vector<CategoryRow> rows;
    addRows(rows, snapshot, CategoryKind::app, snapshot.appOverrides, all ? &builtInApps() : nullptr);
    addRows(rows, snapshot, CategoryKind::site, snapshot.domainOverrides, all ? &builtInDomains() : nullptr);
    std::sort(rows.begin(), rows.end(), [](const CategoryRow& a, const CategoryRow& b) {
        return std::tie(a.kind, a.category, a.name) < std::tie(b.kind, b.category, b.name);
    });
    return rows;
}

std::string categoryTable(const std::vector<CategoryRow>& rows, const TableStyle& style) {
    const Painter paint(style.hasColour);
    const auto width = std::max<std::size_t>(style.width, 40);
    const auto labelOf = [](const CategoryRow& row) { return std::string(label(row.category)); };
    const auto labelColumns = widest(rows, 20, labelOf);
    // Two at the left with the mark, and two between any two columns.
    const auto nameColumns = widest(rows, width - labelColumns - 6, [](const auto& row) { return row.name; });
    std::string text;
    std::optional<CategoryKind> kind;
    for (const auto& row : rows) {
        if (kind != row.kind)
            text += fmt::format("{}  {}\n\n", text.empty() ? "" : "\n",
                                paint.bold(row.kind == CategoryKind::app ? "Applications" : "Sites"));
        kind = row.kind;
        auto line = fmt::format("  {} {}  {}", row.isChosen ? "•" : " ", cell(row.name, nameColumns),
                                paint.shade(static_cast<std::size_t>(row.category), labelOf(row)));
        const auto otherwise = fmt::format("otherwise {}", label(row.otherwise));
        if (row.isChosen && 4 + nameColumns + 2 + labelColumns + 2 + otherwise.size() <= width)
            line += std::string(labelColumns - text::columns(labelOf(row)) + 2, ' ') + paint.dim(otherwise);
        text += line + "\n";
    }
    return text + "\n  • set by you\n";
}

nlohmann::ordered_json toJSON(const std::vector<CategoryRow>& rows) {
    auto array = JSON::array();
    for (const auto& row : rows)
        array.push_back({{"kind", rawValue(row.kind)},
                         {"name", row.name},
                         {"category", kestrio::rawValue(row.category)},
                         {"otherwise", kestrio::rawValue(row.otherwise)},
                         {"isChosen", row.isChosen}});
    return array;
}

std::string ruleTable(const std::vector<ProjectRule>& rules, const TableStyle& style) {
    const Painter paint(style.hasColour);
    const auto width = std::max<std::size_t>(style.width, 40);
    const auto numberColumns = std::to_string(rules.size()).size();
    const auto keywordColumns =
        widest(rules, (width - numberColumns) / 2, [](const ProjectRule& rule) { return rule.keyword; });
    std::string text;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const auto project = std::string(text::trimmedOfBlanks(rules[i].project));
        const auto room = width - numberColumns - keywordColumns - 7;
        text += fmt::format("  {}  {} → {}\n", paint.dim(paddedLeft(std::to_string(i + 1), numberColumns)),
                            cell(rules[i].keyword, keywordColumns),
                            project.empty() ? paint.dim(text::fittedToColumns("no project", room))
                                            : paint.bold(text::fittedToColumns(project, room)));
    }
    return text + "\n  The first rule that matches decides.\n";
}

nlohmann::ordered_json toJSON(const std::vector<ProjectRule>& rules) {
    auto array = JSON::array();
    for (std::size_t i = 0; i < rules.size(); ++i)
        array.push_back({{"number", i + 1},
                         {"id", tindra::text(rules[i].id)},
                         {"keyword", rules[i].keyword},
                         {"project", rules[i].project}});
    return array;
}

} // namespace kestrio
