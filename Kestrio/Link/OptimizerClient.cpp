#include "Kestrio/Link/OptimizerClient.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Link/Background.h"
#include "Kestrio/Link/BusNames.h"
#include "Kestrio/Link/BusWords.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

#include <chrono>
#include <nlohmann/json.hpp>
#include <sdbus-c++/sdbus-c++.h>

namespace kestrio {
namespace {

constexpr auto interface = busNames::optimizerInterface;

std::chrono::microseconds deadline() {
    return std::chrono::duration_cast<std::chrono::microseconds>(Background::callDeadline);
}

nlohmann::ordered_json parsed(const std::optional<std::string>& json) {
    return nlohmann::ordered_json::parse(json.value_or(""), nullptr, false);
}

} // namespace

OptimizerClient::OptimizerClient(sdbus::IConnection& connection)
    : proxy_(sdbus::createProxy(connection, busNames::service, busNames::optimizerObject)) {}

OptimizerClient::~OptimizerClient() = default;

std::optional<std::string> OptimizerClient::reading(const char* method) {
    try {
        std::string json;
        proxy_->callMethod(method).onInterface(interface).withTimeout(deadline()).storeResultsTo(json);
        return json;
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

template <class... Arguments>
OptimizerLink::Failure OptimizerClient::call(const char* method, const Arguments&... arguments) {
    try {
        auto request = proxy_->createMethodCall(interface, method);
        (void)(request << ... << arguments);
        proxy_->callMethod(request, static_cast<std::uint64_t>(deadline().count()));
        return std::nullopt;
    } catch (const sdbus::Error& error) {
        return busWords(error);
    }
}

std::optional<OptimizerStatus> OptimizerClient::status() {
    return optimizerStatusFromJSON(parsed(reading("Status")));
}

std::optional<std::vector<PlannedApp>> OptimizerClient::plan() {
    return optimizerPlanFromJSON(parsed(reading("Plan")));
}

OptimizerLink::Failure OptimizerClient::setEnabled(bool enabled) {
    return call("SetEnabled", enabled);
}

OptimizerLink::Failure OptimizerClient::setTuning(const tindra::OptimizerTuning& tuning) {
    return call("SetTuning", encoded(tuning).value_or(""));
}

OptimizerLink::Failure OptimizerClient::setRules(const tindra::OptimizerRules& rules) {
    return call("SetRules", encoded(rules).value_or(""));
}

OptimizerLink::Failure OptimizerClient::setTier(const std::string& appID, std::optional<tindra::AppTier> tier) {
    return call("SetTier", text::fromUntrustedBytes(appID), std::string(tier ? tindra::rawValue(*tier) : ""));
}

OptimizerLink::Failure OptimizerClient::setOverride(const std::string& appID, tindra::AppTier tier, double hours) {
    return call("SetOverride", text::fromUntrustedBytes(appID), std::string(tindra::rawValue(tier)), hours);
}

OptimizerLink::Failure OptimizerClient::removeOverride(const std::string& appID) {
    return call("RemoveOverride", text::fromUntrustedBytes(appID));
}

OptimizerLink::Failure OptimizerClient::freeze(const std::string& appID) {
    return call("Freeze", text::fromUntrustedBytes(appID));
}

OptimizerLink::Failure OptimizerClient::slow(const std::string& appID) {
    return call("Slow", text::fromUntrustedBytes(appID));
}

OptimizerLink::Failure OptimizerClient::resume(const std::string& appID) {
    return call("Resume", text::fromUntrustedBytes(appID));
}

OptimizerLink::Failure OptimizerClient::quit(const std::string& appID) {
    return call("Quit", text::fromUntrustedBytes(appID));
}

OptimizerLink::Failure OptimizerClient::resumeAll() {
    return call("ResumeAll");
}

} // namespace kestrio
