#include "Kestrio/Activity/PackedSessions.h"

#include <algorithm>

namespace kestrio {
namespace {

std::optional<std::string> unpacked(const std::string* text) {
    return text ? std::optional(*text) : std::nullopt;
}

} // namespace

void PackedSessions::add(const ActivitySession& session) {
    rows_.push_back({session.start, session.end, kept(session.bundleID), kept(session.appName), kept(session.title),
                     kept(session.url), kept(session.domain), kept(session.project), session.kind});
}

void PackedSessions::sortByStart() {
    const auto isEarlier = [](const Row& a, const Row& b) { return a.start < b.start; };
    if (!std::is_sorted(rows_.begin(), rows_.end(), isEarlier))
        std::stable_sort(rows_.begin(), rows_.end(), isEarlier);
}

ActivitySession PackedSessions::session(const Row& row) {
    return {0,
            row.start,
            row.end,
            *row.bundleID,
            *row.appName,
            *row.title,
            unpacked(row.url),
            unpacked(row.domain),
            unpacked(row.project),
            row.kind};
}

const std::string* PackedSessions::kept(const std::string& text) {
    return &*texts_.insert(text).first;
}

} // namespace kestrio
