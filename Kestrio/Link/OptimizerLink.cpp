#include "Kestrio/Link/OptimizerLink.h"

#include "Kestrio/Model/ModelsJSON.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace kestrio {

using JSON = nlohmann::ordered_json;
namespace control = tindra::control;
namespace decision = tindra::decision;
namespace source = tindra::source;

namespace {

/// Thrown and caught in this file: leads from any depth to the one answer that there is then.
struct OfAnotherVersion {};

template <class Value>
Value required(std::optional<Value> value) {
    return value ? std::move(*value) : throw OfAnotherVersion();
}

std::int64_t integer(const JSON& json) {
    return required(integerFromJSON(json));
}

pid_t process(const JSON& json) {
    const auto number = integer(json);
    return std::in_range<pid_t>(number) ? static_cast<pid_t>(number) : throw OfAnotherVersion();
}

std::uint64_t size(const JSON& json) {
    return json.is_number_unsigned() ? json.get<std::uint64_t>() : throw OfAnotherVersion();
}

bool boolean(const JSON& json) {
    return json.is_boolean() ? json.get<bool>() : throw OfAnotherVersion();
}

tindra::Date date(const JSON& json) {
    return {json.get<double>()};
}

template <class Value, class Read>
std::optional<Value> optional(const JSON& json, Read read) {
    return json.is_null() ? std::nullopt : std::optional<Value>(read(json));
}

// --- Control, source, decisions --------------------------------------------------------------------------------------

struct ControlJSON {
    JSON operator()(const control::Frozen& frozen) const {
        return {{"state", "frozen"},
                {"since", frozen.since.seconds},
                {"lastWake", frozen.lastWake ? JSON(frozen.lastWake->seconds) : JSON()}};
    }
    JSON operator()(const control::Waking& waking) const {
        return {{"state", "waking"}, {"until", waking.until.seconds}, {"frozenSince", waking.frozenSince.seconds}};
    }
    JSON operator()(const control::Running&) const { return {{"state", "running"}}; }
};

tindra::ControlState controlFrom(const JSON& json) {
    const auto state = json.at("state").get<std::string>();
    if (state == "frozen")
        return control::Frozen{date(json.at("since")), optional<tindra::Date>(json.at("lastWake"), date)};
    if (state == "waking")
        return control::Waking{date(json.at("until")), date(json.at("frozenSince"))};
    return state == "running" ? control::Running{} : throw OfAnotherVersion();
}

struct SourceJSON {
    JSON operator()(const source::Override& override_) const {
        return {{"kind", "override"}, {"until", override_.until.seconds}};
    }
    JSON operator()(const source::Schedule& schedule) const { return {{"kind", "schedule"}, {"name", schedule.name}}; }
    JSON operator()(const source::Usual&) const { return {{"kind", "usual"}}; }
    JSON operator()(const source::Unchosen&) const { return {{"kind", "unchosen"}}; }
};

tindra::OptimizerRules::Source sourceFrom(const JSON& json) {
    const auto kind = json.at("kind").get<std::string>();
    if (kind == "override")
        return source::Override{date(json.at("until"))};
    if (kind == "schedule")
        return source::Schedule{json.at("name").get<std::string>()};
    if (kind == "usual")
        return source::Usual{};
    return kind == "unchosen" ? source::Unchosen{} : throw OfAnotherVersion();
}

struct DecisionJSON {
    JSON operator()(const decision::Thaw& thaw) const {
        return {{"action", "thaw"}, {"reason", tindra::rawValue(thaw.reason)}};
    }
    JSON operator()(const decision::Wake& wake) const { return {{"action", "wake"}, {"until", wake.until.seconds}}; }
    JSON operator()(const decision::Freeze&) const { return {{"action", "freeze"}}; }
    JSON operator()(const decision::Refreeze&) const { return {{"action", "refreeze"}}; }
    JSON operator()(const decision::MakeEfficient&) const { return {{"action", "makeEfficient"}}; }
    JSON operator()(const decision::RestorePriority&) const { return {{"action", "restorePriority"}}; }
};

tindra::Decision decisionFrom(const JSON& json) {
    const auto action = json.at("action").get<std::string>();
    if (action == "thaw")
        return decision::Thaw{required(tindra::thawReason(json.at("reason").get<std::string>()))};
    if (action == "wake")
        return decision::Wake{date(json.at("until"))};
    if (action == "freeze")
        return decision::Freeze{};
    if (action == "refreeze")
        return decision::Refreeze{};
    if (action == "makeEfficient")
        return decision::MakeEfficient{};
    return action == "restorePriority" ? decision::RestorePriority{} : throw OfAnotherVersion();
}

// --- Records ---------------------------------------------------------------------------------------------------------

JSON recordJSON(const HeldApp& app) {
    return {{"id", app.id},
            {"name", app.name},
            {"pid", app.pid},
            {"control", std::visit(ControlJSON(), app.control)},
            {"frozen", app.frozen},
            {"slowed", app.slowed},
            {"footprint", app.footprint},
            {"isManual", app.isManual}};
}

HeldApp heldAppFrom(const JSON& json) {
    return {.id = json.at("id").get<std::string>(),
            .name = json.at("name").get<std::string>(),
            .pid = process(json.at("pid")),
            .control = controlFrom(json.at("control")),
            .frozen = integer(json.at("frozen")),
            .slowed = integer(json.at("slowed")),
            .footprint = size(json.at("footprint")),
            .isManual = boolean(json.at("isManual"))};
}

JSON recordJSON(const PlannedApp& app) {
    JSON json{{"id", app.id},
              {"name", app.name},
              {"tier", tindra::rawValue(app.tier)},
              {"source", std::visit(SourceJSON(), app.source)}};
    json["protection"] = app.protection ? JSON(tindra::rawValue(*app.protection)) : JSON();
    json["refusal"] = app.refusal ? JSON(*app.refusal) : JSON();
    json["control"] = std::visit(ControlJSON(), app.control);
    json["isSlowed"] = app.isSlowed;
    json["isManual"] = app.isManual;
    json["idle"] = app.idle ? JSON(app.idle->count()) : JSON();
    json["cpu"] = app.cpu;
    json["footprint"] = app.footprint;
    json["decisions"] = JSON::array();
    for (const auto& decision : app.decisions)
        json["decisions"].push_back(std::visit(DecisionJSON(), decision));
    return json;
}

PlannedApp plannedAppFrom(const JSON& json) {
    const auto text = [](const JSON& one) { return one.get<std::string>(); };
    PlannedApp app{.id = text(json.at("id")),
                   .name = text(json.at("name")),
                   .tier = required(tindra::appTier(text(json.at("tier")))),
                   .source = sourceFrom(json.at("source")),
                   .protection = optional<tindra::Protection>(
                       json.at("protection"), [&](const JSON& one) { return required(tindra::protection(text(one))); }),
                   .refusal = optional<std::string>(json.at("refusal"), text),
                   .control = controlFrom(json.at("control")),
                   .isSlowed = boolean(json.at("isSlowed")),
                   .isManual = boolean(json.at("isManual")),
                   .idle = optional<Seconds>(json.at("idle"), [](const JSON& one) { return one.get<double>(); }),
                   .cpu = json.at("cpu").get<double>(),
                   .footprint = size(json.at("footprint"))};
    for (const auto& one : json.at("decisions"))
        app.decisions.push_back(decisionFrom(one));
    return app;
}

/// The settings' form of tuning and rules, as an object within others.
JSON settingJSON(const std::optional<std::string>& encoded) {
    return encoded ? JSON::parse(*encoded) : JSON();
}

template <class Read>
auto readWhole(const JSON& json, Read read) -> std::optional<decltype(read(json))> {
    try {
        return read(json);
    } catch (const OfAnotherVersion&) {
        return std::nullopt;
    } catch (const JSON::exception&) {
        return std::nullopt;
    }
}

} // namespace

JSON toJSON(const OptimizerStatus& status) {
    JSON json{{"isEnabled", status.isEnabled}};
    json["tuning"] = settingJSON(encoded(status.tuning));
    json["rules"] = settingJSON(encoded(status.rules));
    json["held"] = JSON::array();
    for (const auto& app : status.held)
        json["held"].push_back(recordJSON(app));
    return json;
}

std::optional<OptimizerStatus> optimizerStatusFromJSON(const JSON& json) {
    return readWhole(json, [](const JSON& object) {
        OptimizerStatus status{.isEnabled = boolean(object.at("isEnabled")),
                               .tuning = required(decodedTuning(object.at("tuning").dump())),
                               .rules = required(decodedRules(object.at("rules").dump()))};
        for (const auto& app : object.at("held"))
            status.held.push_back(heldAppFrom(app));
        return status;
    });
}

JSON toJSON(const std::vector<PlannedApp>& plan) {
    auto json = JSON::array();
    for (const auto& app : plan)
        json.push_back(recordJSON(app));
    return json;
}

std::optional<std::vector<PlannedApp>> optimizerPlanFromJSON(const JSON& json) {
    return readWhole(json, [](const JSON& array) {
        if (!array.is_array())
            throw OfAnotherVersion();
        std::vector<PlannedApp> plan;
        for (const auto& app : array)
            plan.push_back(plannedAppFrom(app));
        return plan;
    });
}

} // namespace kestrio
