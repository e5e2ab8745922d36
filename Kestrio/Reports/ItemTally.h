// The sums behind detail lists: per application, site or project the titles, pages and applications that were seen in
// it. One tally holds all lists of one sort; rows are made into texts only for what a list shows in the end.
#pragma once

#include "Kestrio/Reports/KeyNumbers.h"
#include "Kestrio/Reports/Report.h"
#include "Kestrio/Reports/TextNumbers.h"

#include <vector>

namespace kestrio {

class ItemTally {
public:
    /// A row's place: the list that it is in, and its key there: "{group}|{text}", or the text without a group.
    struct Key {
        std::uint32_t owner = 0;
        TextNumber group = TextNumber::absent;
        TextNumber text = TextNumber::absent;
    };

    struct Row {
        Key key;
        std::uint32_t count = 0;
        Seconds duration{};
        Date lastSeen;
        // What the row's texts come from: the latest session, the latest one with an address, with a site. The sessions
        // are the report's own and stay where they are. Null where no session had such a text.
        const ClassifiedSession* latest = nullptr;
        const ClassifiedSession* latestWithURL = nullptr;
        const ClassifiedSession* latestWithDomain = nullptr;
    };

    /// Adds a session in. Texts are those of the latest, by end; an absent text does not replace a present one.
    void add(const Key& key, const ClassifiedSession& session);

    /// The rows with the longest duration of each owner below `owners`, at most `limit` each, longest first; equal ones
    /// in the order of their keys.
    std::vector<std::vector<const Row*>> longest(std::size_t owners, std::size_t limit, const TextNumbers& texts) const;

private:
    KeyNumbers numbers_;
    std::vector<Row> rows_;
};

/// A row as it shows, but for its texts.
UsageItem usageItem(const ItemTally::Row& row, const TextNumbers& texts);

} // namespace kestrio
