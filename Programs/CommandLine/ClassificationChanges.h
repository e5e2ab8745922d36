// What a change of mind about categories or projects would move among all that was recorded: counted, not done.
#pragma once

#include "Kestrio/Activity/Database.h"
#include "Programs/CommandLine/SessionTable.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrio {

/// The sessions that would go from one name to another.
struct ClassificationChange {
    std::string from;
    std::string to;
    std::size_t sessions = 0;
    Seconds focused{};
    Seconds alongside{};

    friend bool operator==(const ClassificationChange&, const ClassificationChange&) = default;
};

class ClassificationChanges {
public:
    /// Counts the session if the names differ.
    void add(const std::string& from, const std::string& to, const ActivitySession& session);

    /// The weightiest first.
    std::vector<ClassificationChange> all() const;

private:
    std::map<std::pair<std::string, std::string>, ClassificationChange> byNames_;
};

/// Visits every session that began before the date once, in the order of their starts, some weeks in memory at a time.
void forEachSession(Database& database, Date before, const std::function<void(const ActivitySession&)>& visit);

/// A line that says how much would change, and one for each change; ends with a line feed.
std::string changesText(const std::vector<ClassificationChange>& changes, const TableStyle& style);

} // namespace kestrio
