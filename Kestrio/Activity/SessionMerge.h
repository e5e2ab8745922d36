// Finds out which sessions of an import the store has already. Two sessions can be one only when their kind,
// application, title and address are the same to a reader; they then are when they start together or mostly overlap.
//
// Pure; one thread's. Used once: told the stored sessions first, then asked about the incoming ones in their order.
#pragma once

#include "Kestrio/Activity/PackedSessions.h"

#include <deque>
#include <unordered_map>
#include <variant>

namespace kestrio {

class SessionMerge {
public:
    /// Starts that differ by no more are the same.
    static constexpr Seconds sameStart{1.0};
    /// An end that is later by more was recorded further on.
    static constexpr Seconds sameEnd{1.0};

    /// What is to be done about an incoming session.
    struct Add {};
    struct Extend {
        std::int64_t id; // the row whose end moves to the session's
    };
    struct Ignore {};
    using Decision = std::variant<Add, Extend, Ignore>;

    /// `incoming` is sorted by start, and outlives this unchanged.
    explicit SessionMerge(const PackedSessions& incoming);

    /// Takes note of a row, in the order of the rows' starts.
    void addStored(const ActivitySession& session);

    /// About the incoming session at this position. One that extends a row counts as written.
    Decision decide(std::size_t position);

    /// The incoming session at this position now has a row. Later ones are compared with it too.
    void added(std::size_t position, std::int64_t id);

private:
    struct Span {
        std::int64_t id;
        Date start;
        Date end;
    };
    using Spans = std::vector<Span>; // ascending by start

    /// Points to texts that are kept elsewhere.
    struct Key {
        SessionKind kind;
        std::string_view bundleID;
        std::string_view title;
        std::string_view url; // empty when absent

        bool operator==(const Key& other) const;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const;
    };

    Key key(const PackedSessions::Row& row);
    static bool isSame(const Span& span, const PackedSessions::Row& row);
    static Span* match(Spans& spans, const PackedSessions::Row& row);

    const std::vector<PackedSessions::Row>& rows_;
    std::deque<std::string> cleanedTitles_; // those that differ from the incoming ones
    std::unordered_map<Key, Spans, Hash> spans_;
    std::vector<Spans*> spansOfRow_; // by position
};

} // namespace kestrio
