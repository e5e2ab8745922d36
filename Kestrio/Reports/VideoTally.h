// What a report knows of the one video site whose addresses it understands: the time on it, the videos and how often
// each was come to, the searches. First all sessions in front, then all alongside, each in the order of time.
#pragma once

#include "Kestrio/Reports/KeyNumbers.h"
#include "Kestrio/Reports/Report.h"
#include "Kestrio/Reports/TextNumbers.h"

namespace kestrio {

class VideoTally {
public:
    /// `texts` must outlive the tally. It keeps what is read out of addresses.
    explicit VideoTally(TextNumbers& texts) : texts_(texts) {}

    /// Every session in front, with the numbers of its address and of the address before.
    void addFocus(const ClassifiedSession& session, TextNumber url, TextNumber previousURL);

    /// Every session alongside, with the number of its address.
    void addAlongside(const ClassifiedSession& session, TextNumber url);

    Seconds focusTime() const { return focusTime_; }
    Seconds alongsideTime() const { return alongsideTime_; }

    /// In the order of their first sight.
    std::vector<VideoUsage> takeVideos() { return std::move(videos_); }
    std::vector<UsageItem> takeSearches() { return std::move(searches_); }

private:
    /// What an address says, found out once.
    struct Address {
        bool isRead = false;
        bool isSearched = false; // only of sessions on the site
        TextNumber video = TextNumber::absent;
        TextNumber query = TextNumber::absent; // as it was typed
        TextNumber queryKey = TextNumber::absent;
    };

    /// Both without a session's address: nothing is said.
    Address address(const ClassifiedSession& session, TextNumber url, bool isOnSite);
    void record(const ClassifiedSession& session, TextNumber video, bool isNewView);
    void recordSearch(const ClassifiedSession& session, const Address& address, bool isSameAddress);

    TextNumbers& texts_;
    std::vector<Address> addresses_; // by the number of the address
    Seconds focusTime_{};
    Seconds alongsideTime_{};
    TextNumber lastVideo_ = TextNumber::absent;
    TextNumber lastAlongsideVideo_ = TextNumber::absent;
    KeyNumbers videoNumbers_;
    std::vector<VideoUsage> videos_;
    KeyNumbers searchNumbers_;
    std::vector<UsageItem> searches_;
};

} // namespace kestrio
