// The stretches of a report: sessions of one application that follow one another closely are a block, those on one
// title within it an entry. Grows at its end; the texts are copied once, when it is finished.
#pragma once

#include "Kestrio/Reports/Report.h"
#include "Kestrio/Reports/TextNumbers.h"

namespace kestrio {

class Timeline {
public:
    /// `gap`: sessions that are less than this apart belong together.
    explicit Timeline(Seconds gap) : gap_(gap) {}

    /// Makes room for so many sessions at once.
    void reserve(std::size_t sessions) {
        blocks_.reserve(sessions);
        entries_.reserve(sessions);
    }

    /// Adds the session, which begins no earlier than the one before, with the numbers of its texts. It must stay where
    /// it is until the timeline is finished.
    void add(const ClassifiedSession& session, TextNumber bundleID, TextNumber title, TextNumber url);

    /// The blocks of both in the order of their starts, those in front before those alongside where they start at once.
    static std::vector<TimelineBlock> merged(const Timeline& focus, const Timeline& alongside);

private:
    struct Entry {
        const ClassifiedSession* first;
        Date end;
        Seconds active;
    };
    struct Block {
        const ClassifiedSession* first;
        std::size_t firstEntry;
        std::size_t entryCount;
        Date end;
        Seconds active;
        CategoryTimes categoryTimes;
    };

    bool continuesBlock(const ClassifiedSession& session, TextNumber bundleID) const;
    bool continuesEntry(const ClassifiedSession& session, TextNumber title, TextNumber url) const;
    TimelineBlock finished(const Block& block) const;

    const Seconds gap_;
    std::vector<Block> blocks_;
    std::vector<Entry> entries_;
    // Of the latest block and the latest entry.
    TextNumber bundleID_ = TextNumber::absent;
    TextNumber title_ = TextNumber::absent;
    TextNumber url_ = TextNumber::absent;
};

} // namespace kestrio
