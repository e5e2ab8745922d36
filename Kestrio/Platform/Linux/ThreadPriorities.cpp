#include "Kestrio/Platform/Linux/ThreadPriorities.h"

#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/KernelText.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr std::string_view sinceMark = "since=";
constexpr std::string_view slowCoresMark = "to=";

std::string word(const ThreadPriority& priority) {
    return fmt::format("{}/{}/{}", coreList(priority.cores), priority.policy, priority.ioPriority);
}

/// The part of the text up to the mark, which goes with it; all of it when there is no mark.
std::string_view takeUpTo(std::string_view& text, char mark) {
    const auto part = text.substr(0, text.find(mark));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

std::optional<ThreadPriority> parsedPriority(std::string_view text) {
    if (std::count(text.begin(), text.end(), '/') != 2)
        return std::nullopt;
    auto cores = parseCoreList(takeUpTo(text, '/'));
    const auto policy = parsedNumber<int>(takeUpTo(text, '/'));
    const auto ioPriority = parsedNumber<int>(text);
    if (cores.empty() || !policy || !ioPriority)
        return std::nullopt;
    return ThreadPriority{std::move(cores), *policy, *ioPriority};
}

std::optional<ThreadPriorities::Exception> parsedException(std::string_view text) {
    const auto thread = parsedNumber<pid_t>(takeUpTo(text, '@'));
    const auto start = parsedNumber<std::uint64_t>(takeUpTo(text, '/'));
    auto priority = parsedPriority(text);
    if (!thread || *thread <= 0 || !start || !priority)
        return std::nullopt;
    return ThreadPriorities::Exception{*thread, *start, std::move(*priority)};
}

} // namespace

std::optional<ThreadPriority> ThreadPriorities::of(pid_t thread, std::uint64_t start) const {
    for (const auto& exception : exceptions)
        if (exception.thread == thread && exception.start == start)
            return exception.priority;
    return common;
}

std::string coreList(const std::vector<int>& cores) {
    std::string list;
    for (auto first = cores.begin(); first != cores.end();) {
        auto last = first;
        while (last + 1 != cores.end() && *(last + 1) == *last + 1)
            ++last;
        list += list.empty() ? "" : ",";
        list += first == last ? fmt::format("{}", *first) : fmt::format("{}-{}", *first, *last);
        first = last + 1;
    }
    return list;
}

std::string words(const ThreadPriorities& priorities) {
    std::string text;
    const auto add = [&text](const std::string& next) { text += (text.empty() ? "" : " ") + next; };
    if (priorities.since)
        add(fmt::format("{}{}", sinceMark, *priorities.since));
    if (!priorities.slowCores.empty())
        add(fmt::format("{}{}", slowCoresMark, coreList(priorities.slowCores)));
    if (priorities.common)
        add(word(*priorities.common));
    for (const auto& exception : priorities.exceptions)
        add(fmt::format("{}@{}/{}", exception.thread, exception.start, word(exception.priority)));
    return text;
}

ThreadPriorities parsedPriorities(std::string_view words) {
    ThreadPriorities priorities;
    for (auto word = nextWord(words); !word.empty(); word = nextWord(words)) {
        if (word.starts_with(sinceMark)) {
            priorities.since = parsedNumber<std::uint64_t>(word.substr(sinceMark.size()));
        } else if (word.starts_with(slowCoresMark)) {
            priorities.slowCores = parseCoreList(word.substr(slowCoresMark.size()));
        } else if (word.find('@') != std::string_view::npos) {
            if (auto exception = parsedException(word))
                priorities.exceptions.push_back(std::move(*exception));
        } else if (auto common = parsedPriority(word); common && !priorities.common) {
            priorities.common = std::move(common);
        }
    }
    return priorities;
}

} // namespace kestrio
