#include "Kestrio/Model/ModelsJSON.h"

#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;

template <class Value>
JSON orNull(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON();
}

template <class Record>
void addSample(JSON& json, const Record& record) {
    json["bundleID"] = record.bundleID;
    json["appName"] = record.appName;
    json["title"] = record.title;
    json["url"] = orNull(record.url);
    json["domain"] = orNull(record.domain);
    json["project"] = orNull(record.project);
    json["kind"] = rawValue(record.kind);
}

std::optional<std::string> optionalText(const JSON& json, const char* key) {
    const auto found = json.find(key);
    return found == json.end() || found->is_null() ? std::nullopt : std::optional(found->get<std::string>());
}

} // namespace

JSON toJSON(const ActivitySample& sample) {
    JSON json;
    addSample(json, sample);
    return json;
}

JSON toJSON(const LiveActivity& live) {
    return {{"sample", toJSON(live.sample)},
            {"start", live.start.seconds()},
            {"lastSeen", live.lastSeen.seconds()},
            {"rowID", orNull(live.rowID)}};
}

JSON toJSON(const ActivitySession& session) {
    JSON json{{"id", session.id}, {"start", session.start.seconds()}, {"end", session.end.seconds()}};
    addSample(json, session);
    return json;
}

std::optional<std::int64_t> integerFromJSON(const JSON& json) {
    if (!json.is_number_integer())
        return std::nullopt;
    if (json.is_number_unsigned() && json.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX))
        return std::nullopt;
    return json.get<std::int64_t>();
}

std::optional<LiveActivity> liveActivityFromJSON(const JSON& json) {
    try {
        const auto& sample = json.at("sample");
        const auto rawKind = integerFromJSON(sample.at("kind"));
        const auto kind = rawKind ? sessionKind(*rawKind) : std::nullopt;
        if (!kind)
            return std::nullopt;
        LiveActivity live;
        live.sample = {sample.at("bundleID").get<std::string>(),
                       sample.at("appName").get<std::string>(),
                       sample.at("title").get<std::string>(),
                       optionalText(sample, "url"),
                       optionalText(sample, "domain"),
                       optionalText(sample, "project"),
                       *kind};
        live.start = Date(json.at("start").get<double>());
        live.lastSeen = Date(json.at("lastSeen").get<double>());
        if (const auto row = json.find("rowID"); row != json.end() && !row->is_null())
            if (!(live.rowID = integerFromJSON(*row)))
                return std::nullopt;
        return live;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace kestrio
