#include "Kestrio/Activity/SessionMerge.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>

namespace kestrio {

bool SessionMerge::Key::operator==(const Key& other) const {
    return kind == other.kind && text::equivalent(bundleID, other.bundleID) && text::equivalent(title, other.title) &&
           text::equivalent(url, other.url);
}

std::size_t SessionMerge::Hash::operator()(const Key& key) const {
    auto hash = static_cast<std::size_t>(rawValue(key.kind));
    for (const auto part : {key.bundleID, key.title, key.url})
        hash = hash * 0x9E37'79B9'7F4A'7C15 + text::hash(part);
    return hash;
}

SessionMerge::SessionMerge(const PackedSessions& incoming) : rows_(incoming.rows()) {
    spansOfRow_.reserve(rows_.size());
    for (const auto& row : rows_)
        spansOfRow_.push_back(&spans_[key(row)]);
}

/// By the title as it will read from the store, so that a session is known again once it is there.
SessionMerge::Key SessionMerge::key(const PackedSessions::Row& row) {
    std::string_view title = *row.title;
    if (auto cleaned = text::withoutInvisibleMarks(title); cleaned != title)
        title = cleanedTitles_.emplace_back(std::move(cleaned));
    return {row.kind, *row.bundleID, title, row.url ? *row.url : std::string_view()};
}

void SessionMerge::addStored(const ActivitySession& session) {
    const auto found =
        spans_.find({session.kind, session.bundleID, session.title, session.url ? *session.url : std::string_view()});
    if (found != spans_.end())
        found->second.push_back({session.id, session.start, session.end});
}

SessionMerge::Decision SessionMerge::decide(std::size_t position) {
    const auto& row = rows_[position];
    auto* span = match(*spansOfRow_[position], row);
    if (!span)
        return Add{};
    if (row.end - span->end <= sameEnd)
        return Ignore{};
    span->end = row.end;
    return Extend{span->id};
}

/// Only the two that start last before the session's end are looked at: in what this program records sessions of one
/// key hardly overlap.
SessionMerge::Span* SessionMerge::match(Spans& spans, const PackedSessions::Row& row) {
    const auto end = std::lower_bound(spans.begin(), spans.end(), row.end + sameEnd,
                                      [](const Span& span, Date date) { return span.start < date; });
    const auto count = end - spans.begin();
    for (auto back = 1; back <= std::min<std::ptrdiff_t>(count, 2); ++back)
        if (isSame(*(end - back), row))
            return &*(end - back);
    return nullptr;
}

bool SessionMerge::isSame(const Span& span, const PackedSessions::Row& row) {
    if (std::chrono::abs(span.start - row.start) <= sameStart)
        return true;
    const auto overlap = std::min(span.end, row.end) - std::max(span.start, row.start);
    const auto shorter = std::min(span.end - span.start, row.end - row.start);
    return overlap > Seconds(0) && overlap >= shorter / 2;
}

void SessionMerge::added(std::size_t position, std::int64_t id) {
    const auto& row = rows_[position];
    auto& spans = *spansOfRow_[position];
    const auto after = std::upper_bound(spans.begin(), spans.end(), row.start,
                                        [](Date date, const Span& span) { return date < span.start; });
    spans.insert(after, {id, row.start, row.end});
}

} // namespace kestrio
