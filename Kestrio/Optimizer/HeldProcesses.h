// The processes that one run of the program holds stopped or slowed, and the text that says so to whoever has to put
// them right after it. Values and pure functions over them; any thread.
//
// A line for each, words separated by a blank:
//     owner PID START
//     stop PID START
//     slow PID START WORDS OF THE HOST'S
// `stop` lines come before `slow` lines; a process that is both stands on two. Words at the end of the others, and
// lines of other kinds, are for later versions.
#pragma once

#include "Kestrio/Platform/ProcessSignals.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct SlowedProcess {
    ProcessKey key;
    ProcessPriority before; // what to restore

    friend bool operator==(const SlowedProcess&, const SlowedProcess&) = default;
};

struct HeldProcesses {
    std::vector<ProcessKey> frozen;
    std::vector<SlowedProcess> slowed;

    bool isEmpty() const { return frozen.empty() && slowed.empty(); }

    friend bool operator==(const HeldProcesses&, const HeldProcesses&) = default;
};

struct HeldJournal {
    std::optional<ProcessKey> owner; // absent in a damaged journal
    HeldProcesses held;

    friend bool operator==(const HeldJournal&, const HeldJournal&) = default;
};

std::string journalText(const HeldJournal& journal);

/// Lines with fewer than three words, or without numbers where they belong, are passed over. What a line of an unknown
/// kind names counts as slowed with nothing known of before; of a `slow` line that is cut off the last word does not
/// count.
HeldJournal parsedJournal(std::string_view text);

/// Empty when the file cannot be read.
HeldJournal readJournal(const std::filesystem::path& file);

/// Lets everything continue, the last first, and gives it its speed back, with all that inherited slowness. Answers how
/// many lines named a process that is still there.
std::size_t putRight(const HeldProcesses& held, ProcessSignals& signals);

/// Restores the processes, and those that they started while slow. Those in `stillSlowed` stay as they are.
void restoreWithHeirs(const std::vector<SlowedProcess>& slowed, const std::vector<SlowedProcess>& stillSlowed,
                      ProcessSignals& signals);

} // namespace kestrio
