// A made-up person's recorded history: working days with editors, terminals, browsers and chats, evenings and weekends
// with less of it, music and talks alongside. The same seed gives the same history on every machine. For benchmarks,
// pictures of the windows, and trying things out; what it says about anybody is invented.
#pragma once

#include "Kestrio/Base/Calendar.h"
#include "Kestrio/Model/Models.h"

#include <filesystem>
#include <vector>

namespace kestrio {

struct ExampleHistoryOptions {
    std::uint64_t seed = 1;
    int days = 30;
    /// On an ordinary working day; few at the weekend. Somebody who switches all the time has a thousand.
    int sessionsPerWorkday = 250;
};

/// The sessions of so many days up to and with the day that contains `lastDay`, ascending by start, numbered from 1.
/// Those in front never overlap.
std::vector<ActivitySession> exampleHistory(Date lastDay, const Calendar& calendar,
                                            const ExampleHistoryOptions& options = {});

/// Makes a database file of the sessions, or adds them to one. False when it cannot be written.
bool writeHistory(const std::filesystem::path& file, const std::vector<ActivitySession>& sessions);

} // namespace kestrio
