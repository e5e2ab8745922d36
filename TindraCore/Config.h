// The identity of a setup of the optimizer, the figures gathered while it was in force, and the comparison of two such
// figures. It answers whether the optimizer helps. Plain values, usable from any thread.
#pragma once

#include "TindraCore/Decisions.h"
#include "TindraCore/Rules.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tindra {

/// A summary of switch, tuning and rules, with a fingerprint of everything in the rules that changes behaviour.
struct OptimizerConfig {
    OptimizerConfig(bool enabled, const OptimizerTuning& tuning, const OptimizerRules& rules);

    /// The switch off, default tuning, no rules.
    static OptimizerConfig off();
    /// The key of minutes that were recorded with the optimizer on before setups were stored.
    static constexpr std::string_view unrecordedOn = "on-unrecorded";

    bool enabled;
    OptimizerMode mode;
    // Whole numbers, halves rounded away from zero; beyond 64 bits the nearest that there is, and 0 for a NaN.
    std::int64_t freezeAfterMinutes;
    std::int64_t checkEveryMinutes;
    std::int64_t wakeSeconds;
    bool efficiencyCores;
    std::int64_t appRules;  // distinct applications that the rules or an enabled schedule speak of
    std::int64_t schedules; // enabled ones
    std::string fingerprint;

    /// Stands for the setup in storage: one key, one setup of the log.
    std::string key() const;
    /// The words that a person reads.
    std::string label() const;

    friend bool operator==(const OptimizerConfig&, const OptimizerConfig&) = default;
};

/// What was measured in the minutes of one setup.
struct ConfigStats {
    std::int64_t minutes = 0;
    std::int64_t pressureMinutes = 0;
    std::int64_t criticalMinutes = 0;
    std::uint64_t swapReadBytes = 0;
    std::int64_t slowdownMinutes = 0;
    std::int64_t stallMinutes = 0;

    /// From so many minutes on the figures say something.
    static constexpr std::int64_t reliableMinutes = 30;

    bool isReliable() const { return minutes >= reliableMinutes; }
    double hours() const;
    /// From 0 to 1; 0 where there are no minutes, like the rates below.
    double pressureShare() const;
    double readBackPerHour() const; // bytes
    double slowdownsPerHour() const;
    double stallsPerHour() const;

    friend bool operator==(const ConfigStats&, const ConfigStats&) = default;
};

/// One measured difference. Of everything that is measured less is better.
struct ConfigChange {
    enum class Verdict { better, worse, same };

    std::string name;
    double before = 0;
    double after = 0;

    /// The change relative to `before`, in percent; 0 where `before` is not above 0.
    double percent() const;
    /// Differences below five percent are none.
    Verdict verdict() const;

    friend bool operator==(const ConfigChange&, const ConfigChange&) = default;
};

/// The four measures, always in the same order.
std::array<ConfigChange, 4> compare(const ConfigStats& baseline, const ConfigStats& candidate);

} // namespace tindra
