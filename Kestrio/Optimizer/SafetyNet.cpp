#include "Kestrio/Optimizer/SafetyNet.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Base/TextFile.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <optional>
#include <system_error>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = "optimizer-held-";
constexpr std::string_view suffix = ".txt";

std::string nameOf(pid_t owner) {
    return fmt::format("{}{}{}", prefix, owner, suffix);
}

bool isJournal(const fs::path& file) {
    const auto name = file.filename().string();
    return name.starts_with(prefix) && file.extension() == suffix;
}

/// A journal that somebody was writing when they ended.
bool isUnfinishedJournal(const fs::path& file) {
    return file.filename().string().starts_with(fmt::format(".{}", prefix));
}

/// Absent when the name holds no number.
std::optional<pid_t> ownerIn(std::string_view name) {
    name.remove_prefix(std::min(name.find(prefix) + prefix.size(), name.size()));
    name = name.substr(0, name.find(suffix));
    pid_t owner = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), owner);
    return error == std::errc() && end == name.data() + name.size() ? std::optional(owner) : std::nullopt;
}

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        files.push_back(entry->path());
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

SafetyNet::SafetyNet(Setup setup, ProcessSignals& signals, Watchdog& watchdog)
    : setup_(std::move(setup)), signals_(signals), watchdog_(watchdog) {}

fs::path SafetyNet::journal() const {
    return setup_.folder / nameOf(setup_.own.pid);
}

bool SafetyNet::record(const std::vector<ProcessKey>& frozen, const std::vector<SlowedProcess>& slowed) {
    if (wantsWatcher_)
        startWatcher();
    return write({frozen, slowed});
}

bool SafetyNet::intendToFreeze(const std::vector<ProcessKey>& keys) {
    auto held = held_;
    for (const auto& key : keys)
        if (std::find(held.frozen.begin(), held.frozen.end(), key) == held.frozen.end())
            held.frozen.push_back(key);
    return record(held.frozen, held.slowed);
}

bool SafetyNet::intendToSlow(const std::vector<SlowedProcess>& processes) {
    auto held = held_;
    for (const auto& process : processes) {
        // One that is slow already: what it was before that counts, not what it is now.
        const bool isHeld = std::any_of(held.slowed.begin(), held.slowed.end(),
                                        [&](const SlowedProcess& other) { return other.key == process.key; });
        if (!isHeld)
            held.slowed.push_back(process);
    }
    return record(held.frozen, held.slowed);
}

bool SafetyNet::write(HeldProcesses held) {
    const auto file = journal();
    std::error_code error;
    if (held.isEmpty()) {
        held_ = {};
        written_.clear();
        return fs::remove(file, error), !error;
    }
    const auto text = journalText({setup_.own, held});
    if (text != written_ || !fs::exists(file, error)) {
        ReplacementFile replacement(file, 0600);
        replacement.write(text);
        if (replacement.commit())
            return false;
        written_ = text;
    }
    held_ = std::move(held);
    return true;
}

void SafetyNet::startWatcher() {
    wantsWatcher_ = true;
    const auto problem = watchdog_.start(journal());
    if (problem && !isWatcherMissing_)
        logLine(fmt::format("Kestrio: couldn't start the optimizer's safety net: {}", *problem));
    isWatcherMissing_ = problem.has_value();
}

/// That of an owner who lives is left to them, and our own too. One without an owner's line was damaged at its first,
/// or its name is no journal's: whatever it still names is put right.
bool SafetyNet::isOver(const fs::path& journal, const HeldJournal& content) const {
    const auto named = ownerIn(journal.filename().string());
    if (named == setup_.own.pid && (!content.owner || content.owner == setup_.own))
        return false;
    const bool isTheirs = named && content.owner && content.owner->pid == *named;
    return !isTheirs || signals_.condition(*content.owner) == ProcessCondition::gone;
}

std::size_t SafetyNet::recoverEarlierRuns() {
    std::size_t count = 0;
    std::error_code ignored;
    for (const auto& file : filesIn(setup_.folder)) {
        if (!isJournal(file) && !isUnfinishedJournal(file))
            continue;
        const auto content = readJournal(file);
        if (!isOver(file, content))
            continue;
        // What was not finished was never acted on.
        if (isJournal(file))
            count += putRight(content.held, signals_);
        fs::remove(file, ignored);
    }
    return count;
}

} // namespace kestrio
