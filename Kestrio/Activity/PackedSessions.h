// Many sessions in little memory: a text that several of them have is kept once. Move-only; one thread's at a time.
#pragma once

#include "Kestrio/Model/Models.h"

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

namespace kestrio {

class PackedSessions {
public:
    /// One session; null for an absent text. The texts live as long as the whole.
    struct Row {
        Date start;
        Date end;
        const std::string* bundleID;
        const std::string* appName;
        const std::string* title;
        const std::string* url;
        const std::string* domain;
        const std::string* project;
        SessionKind kind;
    };

    PackedSessions() = default;
    PackedSessions(PackedSessions&&) = default;
    PackedSessions& operator=(PackedSessions&&) = default;

    /// Identifiers are not kept.
    void add(const ActivitySession& session);

    /// Ascending; those that start together stay in the order in which they were added.
    void sortByStart();

    const std::vector<Row>& rows() const { return rows_; }

    /// With the identifier 0.
    static ActivitySession session(const Row& row);

private:
    const std::string* kept(const std::string& text);
    const std::string* kept(const std::optional<std::string>& text) { return text ? kept(*text) : nullptr; }

    std::vector<Row> rows_;
    std::unordered_set<std::string> texts_; // its elements stay in their places
};

} // namespace kestrio
