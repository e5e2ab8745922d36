#include "Kestrio/Activity/MediaInspector.h"

#include <utility>

namespace kestrio {
namespace {

/// Several streams or assertions of one process ask for their owner once.
std::set<ApplicationTrace> distinct(std::vector<ApplicationTrace> traces) {
    return {std::make_move_iterator(traces.begin()), std::make_move_iterator(traces.end())};
}

} // namespace

const std::set<std::string>& MediaInspector::displayAssertionTypes() {
    static const std::set<std::string> types{assertion::preventUserIdleDisplaySleep, assertion::noDisplaySleep};
    return types;
}

MediaInspector::MediaInspector(AudioUse& audio, SleepInhibitors& inhibitors, Owner owner, std::string ownBundleID)
    : audio_(audio), inhibitors_(inhibitors), owner_(std::move(owner)), ownBundleID_(std::move(ownBundleID)) {}

std::set<std::string> MediaInspector::appsPlayingAudio() {
    return owners(distinct(audio_.playing()));
}

std::set<std::string> MediaInspector::appsRecordingAudio() {
    return owners(distinct(audio_.recording()));
}

std::set<std::string> MediaInspector::apps(const std::set<std::string>& holding) {
    std::set<ApplicationTrace> holders;
    for (auto& inhibitor : inhibitors_.held())
        if (holding.contains(inhibitor.type))
            holders.insert(std::move(inhibitor.holder));
    return owners(holders);
}

std::set<std::string> MediaInspector::owners(const std::set<ApplicationTrace>& traces) const {
    std::set<std::string> result;
    for (const auto& trace : traces)
        if (auto identifier = owner_(trace); identifier && *identifier != ownBundleID_)
            result.insert(std::move(*identifier));
    return result;
}

} // namespace kestrio
