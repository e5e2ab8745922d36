#include "Kestrio/Link/OptimizerService.h"

#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <nlohmann/json.hpp>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

constexpr auto interface = busNames::optimizerInterface;

/// What an application calls itself may hold any bytes.
template <class Value>
std::string text(const std::optional<Value>& value) {
    return value ? toJSON(*value).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                 : std::string();
}

void require(const OptimizerLink::Failure& failure, const char* name = busNames::errorFailed) {
    if (failure)
        throw sdbus::Error(name, *failure);
}

template <class Value>
Value understood(std::optional<Value> value, const char* what) {
    return value ? std::move(*value) : throw sdbus::Error(busNames::errorInvalid, std::string("that is no ") + what);
}

tindra::AppTier tierOf(const std::string& text) {
    return understood(tindra::appTier(text), "tier: alwaysOn, checkPeriodically or canWait");
}

} // namespace

OptimizerService::OptimizerService(sdbus::IConnection& connection, OptimizerLink& optimizer)
    : optimizer_(optimizer), object_(sdbus::createObject(connection, busNames::optimizerObject)) {
    registerReadings();
    registerSettings();
    registerActions();
    object_->finishRegistration();
}

OptimizerService::~OptimizerService() = default;

void OptimizerService::registerReadings() {
    object_->registerMethod("Status").onInterface(interface).withOutputParamNames("json").implementedAs(
        [this] { return text(optimizer_.status()); });
    object_->registerMethod("Plan").onInterface(interface).withOutputParamNames("json").implementedAs(
        [this] { return text(optimizer_.plan()); });
}

void OptimizerService::registerSettings() {
    object_->registerMethod("SetEnabled")
        .onInterface(interface)
        .withInputParamNames("enabled")
        .implementedAs([this](bool enabled) { require(optimizer_.setEnabled(enabled)); });
    object_->registerMethod("SetTuning")
        .onInterface(interface)
        .withInputParamNames("json")
        .implementedAs([this](const std::string& json) {
            require(optimizer_.setTuning(understood(decodedTuning(json), "tuning")), busNames::errorInvalid);
        });
    object_->registerMethod("SetRules")
        .onInterface(interface)
        .withInputParamNames("json")
        .implementedAs([this](const std::string& json) {
            require(optimizer_.setRules(understood(decodedRules(json), "set of rules")), busNames::errorInvalid);
        });
    object_->registerMethod("SetTier")
        .onInterface(interface)
        .withInputParamNames("app", "tier")
        .implementedAs([this](const std::string& app, const std::string& tier) {
            require(optimizer_.setTier(app, tier.empty() ? std::nullopt : std::optional(tierOf(tier))));
        });
    object_->registerMethod("SetOverride")
        .onInterface(interface)
        .withInputParamNames("app", "tier", "hours")
        .implementedAs([this](const std::string& app, const std::string& tier, double hours) {
            require(optimizer_.setOverride(app, tierOf(tier), hours), busNames::errorInvalid);
        });
    object_->registerMethod("RemoveOverride")
        .onInterface(interface)
        .withInputParamNames("app")
        .implementedAs([this](const std::string& app) { require(optimizer_.removeOverride(app)); });
}

void OptimizerService::registerActions() {
    using Action = OptimizerLink::Failure (OptimizerLink::*)(const std::string&);
    const auto add = [this](const char* name, Action action) {
        object_->registerMethod(name).onInterface(interface).withInputParamNames("app").implementedAs(
            [this, action](const std::string& app) { require((optimizer_.*action)(app)); });
    };
    add("Freeze", &OptimizerLink::freeze);
    add("Slow", &OptimizerLink::slow);
    add("Resume", &OptimizerLink::resume);
    add("Quit", &OptimizerLink::quit);
    object_->registerMethod("ResumeAll").onInterface(interface).implementedAs([this] {
        require(optimizer_.resumeAll());
    });
}

} // namespace kestrio
