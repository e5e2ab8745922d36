// A store that forwards to a real one, and fails the calls that the test breaks.
#pragma once

#include "Kestrio/Activity/SessionStore.h"

#include <functional>

namespace kestrio {

class FaultyStore final : public SessionStore {
public:
    explicit FaultyStore(SessionStore& real) : real_(real) {}

    bool failInserts = false;
    bool failUpdates = false;
    int inserts = 0;
    int updates = 0;
    std::function<void(Date start, Date end)> inserting = [](Date, Date) {};

    std::optional<std::int64_t> insert(const ActivitySample& sample, Date start, Date end) override {
        if (failInserts)
            return std::nullopt;
        ++inserts;
        inserting(start, end);
        return real_.insert(sample, start, end);
    }
    bool updateEnd(std::int64_t id, Date end) override {
        if (failUpdates)
            return false;
        ++updates;
        return real_.updateEnd(id, end);
    }
    std::vector<ActivitySession> sessions(Date from, Date to) override { return real_.sessions(from, to); }
    std::string lastError() override { return "database or disk is full"; }

private:
    SessionStore& real_;
};

} // namespace kestrio
