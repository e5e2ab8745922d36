#include "Kestrio/Reports/VideoTally.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <algorithm>
#include <utility>

namespace kestrio {
namespace {

constexpr auto absent = TextNumber::absent;

/// Absent for a title that says nothing about the video.
std::optional<std::string> usableTitle(const std::string& title) {
    auto cleaned = YouTube::cleanTitle(title);
    if (cleaned.empty() || cleaned == "YouTube" || cleaned == "Shorts")
        return std::nullopt;
    return cleaned;
}

} // namespace

void VideoTally::addFocus(const ClassifiedSession& session, TextNumber url, TextNumber previousURL) {
    const bool isOnSite = YouTube::isYouTube(session.domain);
    const auto said = address(session, url, isOnSite);
    if (isOnSite) {
        focusTime_ += session.duration();
        if (said.video != absent)
            record(session, said.video, said.video != lastVideo_);
        if (said.query != absent)
            recordSearch(session, said, url == previousURL);
    }
    lastVideo_ = said.video;
}

void VideoTally::addAlongside(const ClassifiedSession& session, TextNumber url) {
    const bool isOnSite = YouTube::isYouTube(session.domain);
    const auto said = address(session, url, isOnSite);
    if (isOnSite) {
        alongsideTime_ += session.duration();
        if (said.video != absent)
            record(session, said.video, said.video != lastAlongsideVideo_);
    }
    lastAlongsideVideo_ = said.video;
}

VideoTally::Address VideoTally::address(const ClassifiedSession& session, TextNumber url, bool isOnSite) {
    if (!session.url)
        return {};
    const auto index = static_cast<std::size_t>(url);
    if (index >= addresses_.size())
        addresses_.resize(std::max(texts_.size(), 2 * addresses_.size()));
    auto& known = addresses_[index];
    if (!std::exchange(known.isRead, true))
        if (const auto id = YouTube::videoID(*session.url))
            known.video = texts_.numberKept(*id);
    if (isOnSite && !std::exchange(known.isSearched, true))
        if (const auto query = YouTube::searchQuery(*session.url)) {
            known.query = texts_.numberKept(*query);
            known.queryKey = texts_.numberKept(text::lowercased(*query));
        }
    return known;
}

void VideoTally::record(const ClassifiedSession& session, TextNumber video, bool isNewView) {
    const auto duration = session.duration();
    const auto alongside = session.kind == SessionKind::focus ? Seconds(0) : duration;
    auto title = usableTitle(session.title);
    const auto [number, isNew] = videoNumbers_.number({static_cast<std::uint32_t>(video)});
    if (isNew) {
        const auto id = texts_.text(video);
        const bool isShort = session.url->find("/shorts/") != std::string::npos;
        videos_.push_back({std::string(id), title.value_or(isShort ? "YouTube Short" : "YouTube video"),
                           YouTube::canonicalURL(id, isShort), duration, alongside, 1, isShort, session.start,
                           session.end});
        return;
    }
    auto& known = videos_[number];
    known.duration += duration;
    known.alongside += alongside;
    known.views += isNewView ? 1 : 0;
    known.firstWatched = std::min(known.firstWatched, session.start);
    known.lastWatched = std::max(known.lastWatched, session.end);
    if (title)
        known.title = std::move(*title);
}

void VideoTally::recordSearch(const ClassifiedSession& session, const Address& address, bool isSameAddress) {
    const auto [number, isNew] = searchNumbers_.number({static_cast<std::uint32_t>(address.queryKey)});
    if (isNew) {
        auto& made = searches_.emplace_back();
        made.id = texts_.text(address.queryKey);
        made.lastSeen = session.end;
    }
    auto& item = searches_[number];
    item.duration += session.duration();
    item.count += isNew || !isSameAddress ? 1 : 0; // paging through results is one search
    if (session.end < item.lastSeen)
        return;
    item.lastSeen = session.end;
    item.title = texts_.text(address.query);
    item.url = session.url;
}

} // namespace kestrio
