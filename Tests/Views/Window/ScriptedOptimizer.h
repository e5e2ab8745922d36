// An optimizer within the test: keeps what it is told where the real one keeps it, and remembers what that was.
#pragma once

#include "Kestrio/Link/OptimizerLink.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"
#include "Kestrio/Pages/Settings/OptimizationSettings.h"

namespace kestrio {

class ScriptedOptimizer final : public OptimizerLink {
public:
    /// The settings must outlive it.
    explicit ScriptedOptimizer(KeyValueStore& settings) : settings_(settings) {}

    std::vector<PlannedApp> apps; // that run
    Failure failure;              // of every action, which then does nothing

    std::optional<OptimizerStatus> status() override {
        const auto choices = storedOptimizerChoices(settings_);
        return OptimizerStatus{choices.isEnabled, choices.tuning, choices.rules};
    }
    std::optional<std::vector<PlannedApp>> plan() override { return apps; }
    Failure setEnabled(bool enabled) override { return store(settingKey::optimizerEnabled, enabled); }
    Failure setTuning(const tindra::OptimizerTuning& tuning) override {
        return store(settingKey::optimizerTuning, SettingBytes{*encoded(tuning)});
    }
    Failure setRules(const tindra::OptimizerRules& rules) override {
        return store(settingKey::optimizerRules, SettingBytes{*encoded(rules)});
    }
    Failure setTier(const std::string& appID, std::optional<tindra::AppTier> tier) override {
        auto rules = storedOptimizerChoices(settings_).rules;
        rules.tiers.erase(appID);
        if (tier)
            rules.tiers.emplace(appID, *tier);
        return setRules(rules);
    }
    Failure setOverride(const std::string& /*appID*/, tindra::AppTier /*tier*/, double /*hours*/) override {
        return failure;
    }
    Failure removeOverride(const std::string& /*appID*/) override { return failure; }
    Failure freeze(const std::string& /*appID*/) override { return failure; }
    Failure slow(const std::string& /*appID*/) override { return failure; }
    Failure resume(const std::string& /*appID*/) override { return failure; }
    Failure quit(const std::string& /*appID*/) override { return failure; }
    Failure resumeAll() override { return failure; }

private:
    Failure store(const char* key, SettingValue value) {
        if (!failure)
            settings_.set(key, std::move(value));
        return failure;
    }

    KeyValueStore& settings_;
};

} // namespace kestrio
