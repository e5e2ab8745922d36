#include "Programs/CommandLine/ClassificationChanges.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

/// So much is read at a time.
constexpr Seconds step{30 * 86'400.0};

std::string lengthText(const ClassificationChange& change) {
    return Fmt::split(change.focused, change.alongside).value_or(Fmt::duration(change.focused));
}

} // namespace

void ClassificationChanges::add(const std::string& from, const std::string& to, const ActivitySession& session) {
    if (from == to)
        return;
    auto& change = byNames_.try_emplace({from, to}, ClassificationChange{from, to, 0, {}, {}}).first->second;
    ++change.sessions;
    (session.kind == SessionKind::focus ? change.focused : change.alongside) += session.duration();
}

std::vector<ClassificationChange> ClassificationChanges::all() const {
    std::vector<ClassificationChange> changes;
    for (const auto& [names, change] : byNames_)
        changes.push_back(change);
    std::stable_sort(changes.begin(), changes.end(),
                     [](const auto& a, const auto& b) { return a.focused + a.alongside > b.focused + b.alongside; });
    return changes;
}

void forEachSession(Database& database, Date before, const std::function<void(const ActivitySession&)>& visit) {
    const auto earliest = database.earliestStart();
    for (auto from = earliest.value_or(before); from < before; from += step)
        for (const auto& session : database.sessions(from, std::min(from + step, before)))
            if (session.start >= from) // one that reaches in from before was visited with those
                visit(session);
}

std::string changesText(const std::vector<ClassificationChange>& changes, const TableStyle& style) {
    if (changes.empty())
        return "  No recorded session would change.\n";
    ClassificationChange total;
    std::size_t fromColumns = 0;
    std::size_t toColumns = 0;
    std::size_t countColumns = 0;
    // Two blanks before, between and around the arrow, and room for the figures.
    const auto most = std::max<std::size_t>(style.width, 60) / 2 - 24;
    const auto shown = [most](const std::string& name) { return text::fittedToColumns(name, most); };
    for (const auto& change : changes) {
        total.sessions += change.sessions;
        total.focused += change.focused;
        total.alongside += change.alongside;
        fromColumns = std::max(fromColumns, text::columns(shown(change.from)));
        toColumns = std::max(toColumns, text::columns(shown(change.to)));
        countColumns = std::max(countColumns, counted(change.sessions, "session").size());
    }
    const Painter paint(style.hasColour);
    auto text = "  " +
                paint.bold(fmt::format("{} would change: {}", counted(total.sessions, "session"), lengthText(total))) +
                "\n\n";
    for (const auto& change : changes)
        text += fmt::format("  {} → {}  {}  {}\n", padded(shown(change.from), fromColumns),
                            padded(shown(change.to), toColumns),
                            paddedLeft(counted(change.sessions, "session"), countColumns), lengthText(change));
    return text;
}

} // namespace kestrio
