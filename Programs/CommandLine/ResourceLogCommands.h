// The commands of `kestrioctl` about the log of how the machine performed. They only read it. Each returns the exit
// status, as those in `Commands.h`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrio {

struct LogExportOptions {
    std::string folder; // that exists; the export becomes a new one inside it
    std::optional<std::string> from = {};
    std::optional<std::string> to = {};
    bool all = false; // as without a range
};

/// At most one of the day, the week, the month and the free range; today when there is none.
struct LogReportOptions {
    std::optional<std::string> day = {};
    std::optional<std::string> week = {};
    std::optional<std::string> month = {};
    std::optional<std::string> from = {};
    std::optional<std::string> to = {};
    std::string output = "-"; // a file, or "-" for standard output
};

struct LogEventsOptions {
    std::optional<std::string> from = {};
    std::optional<std::string> to = {};
    std::int64_t limit = 200; // the latest that many
    bool json = false;
};

struct LogSecondsOptions {
    std::string from;
    std::optional<std::string> to = {};
    bool csv = false;
    bool json = false;
};

int logStatus(bool json);
int logExport(const LogExportOptions& options);
int logReport(const LogReportOptions& options);
int logEvents(const LogEventsOptions& options);
int logSeconds(const LogSecondsOptions& options);
/// The latest that is logged, unless a moment is named.
int why(const std::optional<std::string>& at);

} // namespace kestrio
