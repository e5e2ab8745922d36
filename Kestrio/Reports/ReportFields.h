// The fields of the reports' records by name and in order, told once: printing, JSON and hashing are made from it.
//
// `visitFields(record, visit)` calls `visit(name, value)` for each field of a record.
#pragma once

#include "Kestrio/Reports/Report.h"

namespace kestrio {

template <class Visitor>
void visitFields(const ClassifiedSession& record, Visitor&& visit) {
    visit("id", record.id);
    visit("start", record.start);
    visit("end", record.end);
    visit("bundleID", record.bundleID);
    visit("appName", record.appName);
    visit("title", record.title);
    visit("url", record.url);
    visit("domain", record.domain);
    visit("project", record.project);
    visit("category", record.category);
    visit("kind", record.kind);
}

template <class Visitor>
void visitFields(const UsageItem& record, Visitor&& visit) {
    visit("id", record.id);
    visit("title", record.title);
    visit("subtitle", record.subtitle);
    visit("url", record.url);
    visit("duration", record.duration);
    visit("count", record.count);
    visit("lastSeen", record.lastSeen);
}

template <class Visitor>
void visitFields(const AlongsideItem& record, Visitor&& visit) {
    visit("id", record.id);
    visit("kind", record.kind);
    visit("bundleID", record.bundleID);
    visit("appName", record.appName);
    visit("title", record.title);
    visit("url", record.url);
    visit("domain", record.domain);
    visit("duration", record.duration);
    visit("lastSeen", record.lastSeen);
}

template <class Visitor>
void visitFields(const CategoryUsage& record, Visitor&& visit) {
    visit("category", record.category);
    visit("duration", record.duration);
}

template <class Visitor>
void visitFields(const AppUsage& record, Visitor&& visit) {
    visit("bundleID", record.bundleID);
    visit("name", record.name);
    visit("category", record.category);
    visit("duration", record.duration);
    visit("alongside", record.alongside);
    visit("visits", record.visits);
    visit("items", record.items);
    visit("alongsideItems", record.alongsideItems);
}

template <class Visitor>
void visitFields(const DomainUsage& record, Visitor&& visit) {
    visit("domain", record.domain);
    visit("category", record.category);
    visit("duration", record.duration);
    visit("alongside", record.alongside);
    visit("visits", record.visits);
    visit("pages", record.pages);
}

template <class Visitor>
void visitFields(const VideoUsage& record, Visitor&& visit) {
    visit("videoID", record.videoID);
    visit("title", record.title);
    visit("url", record.url);
    visit("duration", record.duration);
    visit("alongside", record.alongside);
    visit("views", record.views);
    visit("isShort", record.isShort);
    visit("firstWatched", record.firstWatched);
    visit("lastWatched", record.lastWatched);
}

template <class Visitor>
void visitFields(const ProjectUsage& record, Visitor&& visit) {
    visit("name", record.name);
    visit("duration", record.duration);
    visit("apps", record.apps);
    visit("items", record.items);
    visit("firstSeen", record.firstSeen);
    visit("lastSeen", record.lastSeen);
}

template <class Visitor>
void visitFields(const TimeBucket& record, Visitor&& visit) {
    visit("start", record.start);
    visit("category", record.category);
    visit("duration", record.duration);
}

template <class Visitor>
void visitFields(const SimpleBucket& record, Visitor&& visit) {
    visit("start", record.start);
    visit("duration", record.duration);
}

template <class Visitor>
void visitFields(const TimelineEntry& record, Visitor&& visit) {
    visit("id", record.id);
    visit("start", record.start);
    visit("end", record.end);
    visit("active", record.active);
    visit("title", record.title);
    visit("url", record.url);
    visit("domain", record.domain);
}

template <class Visitor>
void visitFields(const TimelineBlock& record, Visitor&& visit) {
    visit("id", record.id);
    visit("bundleID", record.bundleID);
    visit("appName", record.appName);
    visit("start", record.start);
    visit("end", record.end);
    visit("active", record.active);
    visit("entries", record.entries);
    visit("categoryTimes", record.categoryTimes);
    visit("kind", record.kind);
    visit("category", record.category);
    visit("headline", record.headline);
}

template <class Visitor>
void visitFields(const DateInterval& record, Visitor&& visit) {
    visit("start", record.start);
    visit("end", record.end);
}

template <class Visitor>
void visitFields(const ActivityReport& record, Visitor&& visit) {
    visit("interval", record.interval);
    visit("granularity", record.granularity);
    visit("sessions", record.sessions);
    visit("alongsideSessions", record.alongsideSessions);
    visit("watchingTime", record.watchingTime);
    visit("listeningTime", record.listeningTime);
    visit("alongsideItems", record.alongsideItems);
    visit("youtubeAlongsideTime", record.youtubeAlongsideTime);
    visit("total", record.total);
    visit("productivity", record.productivity);
    visit("categories", record.categories);
    visit("apps", record.apps);
    visit("domains", record.domains);
    visit("videos", record.videos);
    visit("youtubeTime", record.youtubeTime);
    visit("youtubeSearches", record.youtubeSearches);
    visit("projects", record.projects);
    visit("buckets", record.buckets);
    visit("blocks", record.blocks);
    visit("firstActivity", record.firstActivity);
    visit("lastActivity", record.lastActivity);
    visit("activeDays", record.activeDays);
    visit("switches", record.switches);
}

namespace reportFields {
struct AnyVisitor {
    void operator()(const char* name, const auto& value) const;
};
} // namespace reportFields

/// A record of the report, of which the fields are told.
template <class Type>
concept ReportRecord = requires(const Type& record) {
    visitFields(record, reportFields::AnyVisitor{});
};

} // namespace kestrio
