#include "Kestrio/Optimizer/HeldProcesses.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <fmt/format.h>
#include <fstream>
#include <system_error>

namespace kestrio {
namespace {

constexpr std::string_view ownerKind = "owner";
constexpr std::string_view stopKind = "stop";
constexpr std::string_view slowKind = "slow";

/// Far more than any journal: a file of another kind that bears such a name is not to fill the memory.
constexpr std::uintmax_t longestJournal = std::uintmax_t(1) << 26;

template <std::integral Number>
std::optional<Number> parsedNumber(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::string_view takeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    return word;
}

std::string line(std::string_view kind, ProcessKey key) {
    return fmt::format("{} {} {}\n", kind, key.pid, key.start);
}

std::string line(const SlowedProcess& slowed) {
    const auto& words = slowed.before.words;
    return fmt::format("{} {} {}{}{}\n", slowKind, slowed.key.pid, slowed.key.start, words.empty() ? "" : " ", words);
}

/// Of a line that was cut nobody knows whether its last word is whole.
std::string_view withoutLastWord(std::string_view line) {
    const auto blank = line.rfind(' ');
    return line.substr(0, blank == std::string_view::npos ? 0 : blank);
}

void readLine(HeldJournal& journal, std::string_view line, bool isWhole) {
    const auto kind = takeWord(line);
    const auto pid = parsedNumber<pid_t>(takeWord(line));
    const auto start = parsedNumber<std::uint64_t>(takeWord(line));
    if (!pid || *pid <= 0 || !start)
        return;
    const ProcessKey key{*pid, *start};
    if (kind == ownerKind)
        journal.owner = key;
    else if (kind == stopKind)
        journal.held.frozen.push_back(key);
    else if (kind == slowKind)
        journal.held.slowed.push_back({key, {std::string(isWhole ? line : withoutLastWord(line))}});
    else
        journal.held.slowed.push_back({key, {}});
}

bool lists(const std::vector<SlowedProcess>& processes, ProcessKey key) {
    return std::any_of(processes.begin(), processes.end(),
                       [key](const SlowedProcess& process) { return process.key == key; });
}

} // namespace

std::string journalText(const HeldJournal& journal) {
    std::string text;
    if (journal.owner)
        text += line(ownerKind, *journal.owner);
    for (const auto& key : journal.held.frozen)
        text += line(stopKind, key);
    for (const auto& slowed : journal.held.slowed)
        text += line(slowed);
    return text;
}

HeldJournal parsedJournal(std::string_view text) {
    HeldJournal journal;
    while (!text.empty()) {
        const auto end = text.find('\n');
        readLine(journal, text.substr(0, end), end != std::string_view::npos);
        text.remove_prefix(std::min(end, text.size() - 1) + 1);
    }
    return journal;
}

HeldJournal readJournal(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return {};
    const auto size = std::filesystem::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    std::string text(error ? 0 : std::min(size, longestJournal), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return parsedJournal(text);
}

std::size_t putRight(const HeldProcesses& held, ProcessSignals& signals) {
    const auto isThere = [&signals](ProcessKey key) { return signals.condition(key) != ProcessCondition::gone; };
    std::size_t count = 0;
    for (auto key = held.frozen.rbegin(); key != held.frozen.rend(); ++key) {
        count += isThere(*key) ? 1U : 0U;
        signals.resume(*key);
    }
    for (const auto& slowed : held.slowed)
        count += isThere(slowed.key) ? 1U : 0U;
    restoreWithHeirs(held.slowed, {}, signals);
    return count;
}

void restoreWithHeirs(const std::vector<SlowedProcess>& slowed, const std::vector<SlowedProcess>& stillSlowed,
                      ProcessSignals& signals) {
    for (const auto& process : slowed)
        signals.restore(process.key, process.before);
    // Which of them was whose parent cannot be known any more; they rarely differ.
    const ProcessPriority* last = nullptr;
    for (const auto& process : slowed) {
        if (last && *last == process.before)
            continue;
        last = &process.before;
        for (const auto& heir : signals.heirs(process.before))
            if (!lists(stillSlowed, heir))
                signals.restore(heir, process.before);
    }
}

} // namespace kestrio
