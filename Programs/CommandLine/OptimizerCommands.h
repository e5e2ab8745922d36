// The commands of `kestrioctl` about the optimizer, all of which ask the running agent. Each returns the exit status,
// as those in `Commands.h`. Applications are named by their identifiers, or by a name that they have on this host.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrio {

int switchOptimizer(bool on);
int optimizerStatus(bool json);
int optimizerPlan(bool json);

/// What is absent stays as it is.
struct TuningChanges {
    std::optional<std::string> mode;
    std::optional<double> idleMinutes;
    std::optional<double> focusIdleMinutes;
    std::optional<double> checkEveryMinutes;
    std::optional<double> wakeSeconds;
    std::optional<bool> useEfficiencyCores;
    std::optional<double> efficiencyThreshold;
};
int tuneOptimizer(const TuningChanges& changes);

int listTiers(bool json);
int setTier(const std::string& app, const std::string& tier);
int resetTier(const std::string& app);

/// For so many hours; without a tier the rule for now ends.
int setForNow(const std::string& app, const std::optional<std::string>& tier, double hours);

struct NewSchedule {
    std::string name;
    std::string hours; // "22:00-06:00"
    std::string days = "daily";
    std::vector<std::string> apps; // "APP=TIER"
};
int listSchedules(bool json);
int addSchedule(const NewSchedule& schedule);
// Numbers are those of the list, from 1.
int removeSchedule(std::int64_t number);
int enableSchedule(std::int64_t number, bool enabled);

int addNeverTouch(const std::string& app);
int removeNeverTouch(const std::string& app);

int freezeApp(const std::string& app);
int slowApp(const std::string& app);
int resumeApp(const std::string& app);
int quitApp(const std::string& app);
int resumeAllApps();

} // namespace kestrio
