#include "Kestrio/Reports/Timeline.h"

#include <algorithm>

namespace kestrio {
namespace {

ActivityCategory longestCategory(const CategoryTimes& times) {
    auto longest = ActivityCategory::other;
    Seconds most{};
    times.forEach([&](ActivityCategory category, Seconds time) {
        if (time > most) {
            most = time;
            longest = category;
        }
    });
    return longest;
}

/// The title of the entry with the most time, or what can be said in its place.
std::string headline(const TimelineBlock& block) {
    const auto longest = std::max_element(block.entries.begin(), block.entries.end(), [](const auto& a, const auto& b) {
        return a.active < b.active;
    }); // the earliest of equal ones
    if (longest == block.entries.end())
        return block.appName;
    return !longest->title.empty() ? longest->title : longest->domain.value_or(block.appName);
}

} // namespace

bool Timeline::continuesBlock(const ClassifiedSession& session, TextNumber bundleID) const {
    return !blocks_.empty() && bundleID_ == bundleID && blocks_.back().first->kind == session.kind &&
           session.start - blocks_.back().end < gap_;
}

bool Timeline::continuesEntry(const ClassifiedSession& session, TextNumber title, TextNumber url) const {
    return title_ == title && url_ == url && session.start - entries_.back().end < gap_;
}

void Timeline::add(const ClassifiedSession& session, TextNumber bundleID, TextNumber title, TextNumber url) {
    const auto duration = session.duration();
    const bool sameBlock = continuesBlock(session, bundleID);
    if (sameBlock) {
        auto& block = blocks_.back();
        block.end = std::max(block.end, session.end);
        block.active += duration;
    } else {
        blocks_.push_back({&session, entries_.size(), 0, session.end, duration, {}});
    }
    blocks_.back().categoryTimes.add(session.category, duration);
    if (sameBlock && continuesEntry(session, title, url)) {
        auto& entry = entries_.back();
        entry.end = std::max(entry.end, session.end);
        entry.active += duration;
    } else {
        entries_.push_back({&session, session.end, duration});
        ++blocks_.back().entryCount;
    }
    bundleID_ = bundleID;
    title_ = title;
    url_ = url;
}

TimelineBlock Timeline::finished(const Block& block) const {
    TimelineBlock made;
    made.id = block.first->id;
    made.bundleID = block.first->bundleID;
    made.appName = block.first->appName;
    made.start = block.first->start;
    made.end = block.end;
    made.active = block.active;
    made.categoryTimes = block.categoryTimes;
    made.kind = block.first->kind;
    made.category = longestCategory(block.categoryTimes);
    made.entries.reserve(block.entryCount);
    for (std::size_t i = block.firstEntry; i < block.firstEntry + block.entryCount; ++i) {
        const auto& entry = entries_[i];
        made.entries.push_back({entry.first->id, entry.first->start, entry.end, entry.active, entry.first->title,
                                entry.first->url, entry.first->domain});
    }
    made.headline = headline(made);
    return made;
}

std::vector<TimelineBlock> Timeline::merged(const Timeline& focus, const Timeline& alongside) {
    std::vector<TimelineBlock> blocks;
    blocks.reserve(focus.blocks_.size() + alongside.blocks_.size());
    auto beside = alongside.blocks_.begin();
    for (const auto& block : focus.blocks_) {
        for (; beside != alongside.blocks_.end() && beside->first->start < block.first->start; ++beside)
            blocks.push_back(alongside.finished(*beside));
        blocks.push_back(focus.finished(block));
    }
    for (; beside != alongside.blocks_.end(); ++beside)
        blocks.push_back(alongside.finished(*beside));
    return blocks;
}

} // namespace kestrio
