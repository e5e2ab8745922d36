// Every record of a report in hashed containers: equal for equal records, over all their fields.
#pragma once

#include "Kestrio/Reports/ReportFields.h"

#include <functional>

namespace kestrio::reportHash {

inline void feed(std::size_t& hash, std::size_t value) {
    hash ^= value + 0x9E3779B97F4A7C15 + (hash << 6) + (hash >> 2);
}

template <class Value>
std::size_t of(const Value& value) {
    return std::hash<Value>()(value);
}

inline std::size_t of(Date date) {
    return of(date.seconds());
}

inline std::size_t of(Seconds seconds) {
    return of(seconds.count());
}

template <ReportRecord Record>
std::size_t of(const Record& record);

template <class Value>
std::size_t of(const std::optional<Value>& value) {
    std::size_t hash = value ? 1 : 0;
    if (value)
        feed(hash, of(*value));
    return hash;
}

template <class Value>
std::size_t of(const std::vector<Value>& values) {
    std::size_t hash = values.size();
    for (const auto& value : values)
        feed(hash, of(value));
    return hash;
}

template <class Case, std::size_t count>
std::size_t of(const TimeBy<Case, count>& times) {
    std::size_t hash = 0;
    times.forEach([&](Case one, Seconds time) {
        feed(hash, of(one));
        feed(hash, of(time));
    });
    return hash;
}

template <ReportRecord Record>
std::size_t of(const Record& record) {
    std::size_t hash = 0;
    visitFields(record, [&](const char*, const auto& value) { feed(hash, of(value)); });
    return hash;
}

} // namespace kestrio::reportHash

template <kestrio::ReportRecord Record>
struct std::hash<Record> {
    std::size_t operator()(const Record& record) const noexcept { return kestrio::reportHash::of(record); }
};
