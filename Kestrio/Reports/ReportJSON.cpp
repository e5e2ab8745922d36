#include "Kestrio/Reports/ReportJSON.h"

#include "Kestrio/Reports/ReportFields.h"

#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

template <class Value>
requires std::same_as<Value, std::string> || std::same_as<Value, std::int64_t> || std::same_as<Value, bool>
    JSON json(const Value& value) {
    return value;
}

JSON json(Date date) {
    return date.seconds();
}

JSON json(Seconds seconds) {
    return seconds.count();
}

template <class Case>
requires std::is_enum_v<Case> JSON json(Case one) {
    return rawValue(one);
}

template <ReportRecord Record>
JSON json(const Record& record);

template <class Value>
JSON json(const std::optional<Value>& value) {
    return value ? json(*value) : JSON();
}

template <class Value>
JSON json(const std::vector<Value>& values) {
    auto array = JSON::array();
    for (const auto& value : values)
        array.push_back(json(value));
    return array;
}

template <class Case, std::size_t count>
JSON json(const TimeBy<Case, count>& times) {
    auto object = JSON::object();
    times.forEach([&](Case one, Seconds time) { object[std::string(rawValue(one))] = time.count(); });
    return object;
}

template <ReportRecord Record>
JSON json(const Record& record) {
    JSON object;
    visitFields(record, [&](const char* name, const auto& value) { object[name] = json(value); });
    return object;
}

} // namespace

JSON toJSON(const ActivityReport& report) {
    return json(report);
}

} // namespace kestrio
