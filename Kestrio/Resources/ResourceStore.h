// The single owner of `resources.sqlite`, the log of how the machine performed: minutes and applications for months,
// seconds for days, events as long as minutes.
//
// One connection, one serial queue. Writing does not wait and cannot fail for the caller: what the disk refuses is
// logged and dropped. Reading waits on the queue, so that a reader sees all that was written before; it answers with
// what it has when a statement fails. Long texts (keys of applications and of setups) are kept once and referred to by
// number. Any thread, but not the queue itself, may call.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/DatabaseFile.h"
#include "Kestrio/Base/Queue.h"
#include "Kestrio/Resources/ResourceRecords.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrio {

class ResourceStore {
public:
    static constexpr auto fileName = "resources.sqlite";
    static constexpr auto queueLabel = "Kestrio.resourceStore";

    /// Opens the file; made, with its folder, when missing, or brought up to date. Throws `DatabaseError`. Queue and
    /// clock must outlive the store.
    ResourceStore(const std::filesystem::path& file, Queue& queue, const Clock& clock,
                  DatabaseAccess access = DatabaseAccess::readWrite);

    /// The same, but absent after a line in the log when the file cannot be opened: everything that would use the log
    /// then does nothing.
    static std::unique_ptr<ResourceStore> openOrLog(const std::filesystem::path& file, Queue& queue, const Clock& clock,
                                                    DatabaseAccess access = DatabaseAccess::readWrite);

    /// Waits until everything is written.
    ~ResourceStore();
    ResourceStore(const ResourceStore&) = delete;
    ResourceStore& operator=(const ResourceStore&) = delete;

    // Writing.

    /// The same minute written twice is the later one.
    void write(SystemMinute minute, std::vector<AppMinute> apps);
    void write(std::vector<SystemSecond> seconds);
    void add(ResourceEventKind kind, std::optional<AppReference> app, std::string detail,
             std::optional<std::uint64_t> bytes, Date at);
    /// Removes minutes and events from before a date and, with the second one, seconds from before that. The file
    /// shrinks.
    void prune(Date before, std::optional<Date> seconds);
    void deleteAll();

    // Reading; the start of a range is in it, the end is not.

    std::vector<SystemMinute> systemMinutes(DateInterval range);
    /// By minute, and within it the largest first.
    std::vector<AppMinute> appMinutes(DateInterval range);
    /// The largest average memory first.
    std::vector<AppResourceSummary> appSummaries(DateInterval range);
    /// The latest first. A kind that this version does not know is left out.
    std::vector<ResourceEvent> events(DateInterval range, std::int64_t limit);
    /// Periods of `bucket` seconds, at least 60, aligned to 1970.
    std::vector<SystemBucket> systemSeries(DateInterval range, std::int64_t bucket);
    /// Hours without a minute are left out.
    std::vector<HourProfile> hourProfiles(DateInterval range);
    /// The switched-off setup first, then by first use.
    std::vector<ConfigGroup> configGroups(DateInterval range);
    /// Periods of `bucket` seconds, at least 1, aligned to 1970.
    std::vector<SecondBucket> secondsSeries(DateInterval range, std::int64_t bucket);
    /// For reading a long range in pieces: those strictly after the last one of the piece before.
    std::vector<SystemSecond> seconds(DateInterval range, std::optional<Date> after, std::int64_t limit);
    enum class SecondMeasure { lag, disk, memory, cpu };
    std::vector<SystemSecond> worstSeconds(DateInterval range, SecondMeasure by, std::int64_t limit);
    std::int64_t secondsCount(DateInterval range);
    /// Periods of `bucket` seconds, at least 60.
    std::vector<AppMemoryPoint> appMemorySeries(DateInterval range, std::int64_t bucket,
                                                std::span<const std::string> keys);
    /// Absent when nothing is logged.
    std::optional<Date> earliestMinute();
    LogContents contents();
    /// A consistent copy in one file for its owner alone, in place of what is there, while recording goes on.
    bool copyDatabase(const std::filesystem::path& destination);
    /// Bytes of the file and its two sidecars. Does not wait.
    std::int64_t fileSize() const;

private:
    void migrate();
    void addColumns(const std::string& table, std::span<const std::pair<const char*, const char*>> definitions);
    void backFillConfigs();
    std::vector<DateInterval> recordedOptimizerSpans();

    void sumUpHours();
    void sumUpHours(std::int64_t from, std::int64_t to);
    void sumUpHourBefore(Date minute);
    std::vector<SystemBucket> wholeHours(DateInterval range, std::int64_t period);

    void writeMinute(const SystemMinute& minute);
    void writeApps(const std::vector<AppMinute>& apps);
    void writeSeconds(const std::vector<SystemSecond>& seconds);
    void forgetIdentifiers();

    std::optional<std::int64_t> appID(const std::string& key, const std::optional<std::string>& name);
    std::optional<std::int64_t> appID(const std::optional<std::string>& key);
    std::optional<std::int64_t> configID(const std::string& key, const std::string& label);

    sqlite::Statement prepare(std::string_view sql);
    void run(sqlite::Statement& statement);
    void execute(const char* sql);
    template <class Record, class Decode>
    std::vector<Record> collect(sqlite::Statement& statement, Decode decode);

    const std::filesystem::path file_;
    Queue& queue_;
    const Clock& clock_;

    // On the queue.
    sqlite::Connection connection_;
    std::unordered_map<std::string, std::int64_t> appIDs_;
    std::unordered_map<std::string, std::string> appNames_; // as last stored
    std::unordered_map<std::string, std::int64_t> configIDs_;
    bool hasHours_ = false;                // a file that an earlier version alone has written has none
    std::optional<std::int64_t> openHour_; // of the minute that was written last
};

} // namespace kestrio
