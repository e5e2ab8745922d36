// What a report says: the records that are made from the sessions of a range, once, and then only read. Plain values
// without storage behind them, copied freely between threads.
//
// Two measures of time run side by side and are never added up into "active time": durations count the sessions in
// front of the person, at most one at any moment; what played alongside overlaps those and is counted apart.
//
// In lists that are ordered by duration, equal durations stand in the order of their keys. Texts that say which thing
// a row is about (its key) group by canonical equivalence, and show as they first came.
#pragma once

#include "Kestrio/Model/Models.h"
#include "Kestrio/Reports/TimeBy.h"

#include <vector>

namespace kestrio {

/// The width of a chart's bucket.
enum class Granularity { hour, day };
std::string_view rawValue(Granularity granularity);

using CategoryTimes = TimeBy<ActivityCategory, allActivityCategories.size()>;
using ProductivityTimes = TimeBy<Productivity, allProductivities.size()>;

/// A session with its category, clipped to the report's interval. `id` is its identity in lists.
struct ClassifiedSession {
    std::int64_t id = 0;
    Date start;
    Date end;
    std::string bundleID;
    std::string appName;
    std::string title;
    std::optional<std::string> url;
    std::optional<std::string> domain;
    std::optional<std::string> project; // the one that counts after the person's rules
    ActivityCategory category = ActivityCategory::other;
    SessionKind kind = SessionKind::focus;

    Seconds duration() const { return end - start; }

    friend bool operator==(const ClassifiedSession&, const ClassifiedSession&) = default;
};

/// The general row of every detail list. `id` is its key within the list.
struct UsageItem {
    std::string id;
    std::string title;
    std::optional<std::string> subtitle;
    std::optional<std::string> url;
    Seconds duration{};
    std::int64_t count = 0; // sessions that were added in
    Date lastSeen;          // the latest end

    friend bool operator==(const UsageItem&, const UsageItem&) = default;
};

/// One thing played alongside. `id` is "{kind}|{bundleID}|{url or title}", with the number of the kind.
struct AlongsideItem {
    std::string id;
    SessionKind kind = SessionKind::watching;
    std::string bundleID;
    std::string appName;               // at first sight
    std::string title;                 // the latest that is not empty
    std::optional<std::string> url;    // at first sight
    std::optional<std::string> domain; // at first sight
    Seconds duration{};
    Date lastSeen;

    friend bool operator==(const AlongsideItem&, const AlongsideItem&) = default;
};

struct CategoryUsage {
    ActivityCategory category = ActivityCategory::other;
    Seconds duration{};

    friend bool operator==(const CategoryUsage&, const CategoryUsage&) = default;
};

struct AppUsage {
    std::string bundleID;
    std::string name;                                    // that of the latest session in front
    ActivityCategory category = ActivityCategory::other; // of the application itself, whatever site it showed
    Seconds duration{};
    Seconds alongside{};
    std::int64_t visits = 0; // runs of consecutive sessions in front
    std::vector<UsageItem> items;
    std::vector<UsageItem> alongsideItems;

    friend bool operator==(const AppUsage&, const AppUsage&) = default;
};

struct DomainUsage {
    std::string domain;
    ActivityCategory category = ActivityCategory::other; // of the first session on it
    Seconds duration{};
    Seconds alongside{};
    std::int64_t visits = 0;
    std::vector<UsageItem> pages;

    friend bool operator==(const DomainUsage&, const DomainUsage&) = default;
};

struct VideoUsage {
    std::string videoID;
    std::string title; // the latest that says anything, else one that stands for it
    std::string url;   // the address that stands for the video
    Seconds duration{};
    Seconds alongside{};    // the part of `duration` that was not in front
    std::int64_t views = 0; // separate times
    bool isShort = false;
    Date firstWatched;
    Date lastWatched;

    friend bool operator==(const VideoUsage&, const VideoUsage&) = default;
};

struct ProjectUsage {
    std::string name;
    Seconds duration{};
    std::vector<UsageItem> apps;
    std::vector<UsageItem> items;
    Date firstSeen;
    Date lastSeen;

    friend bool operator==(const ProjectUsage&, const ProjectUsage&) = default;
};

/// What one hour or day of a chart holds of one category.
struct TimeBucket {
    Date start;
    ActivityCategory category = ActivityCategory::other;
    Seconds duration{};

    /// Its identity in lists: "{seconds since 1970}-{raw text of the category}".
    std::string id() const;

    friend bool operator==(const TimeBucket&, const TimeBucket&) = default;
};

/// A bucket of a chart that does not tell categories apart.
struct SimpleBucket {
    Date start;
    Seconds duration{};

    friend bool operator==(const SimpleBucket&, const SimpleBucket&) = default;
};

/// A stretch on one title within a block. `id` is that of its first session.
struct TimelineEntry {
    std::int64_t id = 0;
    Date start;
    Date end;
    Seconds active{}; // of its sessions; less than from start to end where there were pauses
    std::string title;
    std::optional<std::string> url;
    std::optional<std::string> domain;

    friend bool operator==(const TimelineEntry&, const TimelineEntry&) = default;
};

/// A stretch in one application. `id` is that of its first session.
struct TimelineBlock {
    std::int64_t id = 0;
    std::string bundleID;
    std::string appName; // of its first session
    Date start;
    Date end;
    Seconds active{};
    std::vector<TimelineEntry> entries; // in order of time
    CategoryTimes categoryTimes;
    SessionKind kind = SessionKind::focus;
    ActivityCategory category = ActivityCategory::other; // the one with the most time
    std::string headline;                                // the line that stands for the block

    /// What a search in a timeline looks through: the application, and each entry's title and site.
    std::string searchText() const;

    friend bool operator==(const TimelineBlock&, const TimelineBlock&) = default;
};

struct ActivityReport {
    DateInterval interval{};
    Granularity granularity = Granularity::day;
    std::vector<ClassifiedSession> sessions;          // in front, ascending by start
    std::vector<ClassifiedSession> alongsideSessions; // ascending by start
    Seconds watchingTime{};
    Seconds listeningTime{};
    std::vector<AlongsideItem> alongsideItems; // longest first
    Seconds youtubeAlongsideTime{};
    Seconds total{}; // active time
    ProductivityTimes productivity;
    std::vector<CategoryUsage> categories; // longest first; none without time
    std::vector<AppUsage> apps;            // longest first, with what ran alongside
    std::vector<DomainUsage> domains;      // longest first, with what ran alongside
    std::vector<VideoUsage> videos;        // longest first
    Seconds youtubeTime{};
    std::vector<UsageItem> youtubeSearches; // longest first
    std::vector<ProjectUsage> projects;     // longest first
    std::vector<TimeBucket> buckets;        // ascending by start, then by the category's raw text
    std::vector<TimelineBlock> blocks;      // ascending by start
    std::optional<Date> firstActivity;
    std::optional<Date> lastActivity;
    std::int64_t activeDays = 0; // days on which a session in front begins
    std::int64_t switches = 0;   // between applications in front

    /// What is reported of a range in which nothing happened.
    static ActivityReport empty(DateInterval interval, Granularity granularity);

    friend bool operator==(const ActivityReport&, const ActivityReport&) = default;
};

} // namespace kestrio
