// The agent's optimizer on the session bus, an object beside that of the agent itself:
//
//   Status() -> s, Plan() -> s    as JSON
//   SetEnabled(b)                 SetTuning(s json), SetRules(s json)     in the form of the settings
//   SetTier(s app, s tier)        "alwaysOn", "checkPeriodically", "canWait", or "" for no word about it any more
//   SetOverride(s app, s tier, d hours)        RemoveOverride(s app)
//   Freeze(s app), Slow(s app), Resume(s app), Quit(s app), ResumeAll()   by hand
//
// Belongs to the queue whose loop serves the connection; dropped before that.
#pragma once

#include "Kestrio/Link/OptimizerLink.h"

#include <memory>

namespace sdbus {
class IConnection;
class IObject;
} // namespace sdbus

namespace kestrio {

class OptimizerService {
public:
    /// Called where sending may fail. The optimizer must outlive the service.
    OptimizerService(sdbus::IConnection& connection, OptimizerLink& optimizer);
    ~OptimizerService();
    OptimizerService(const OptimizerService&) = delete;
    OptimizerService& operator=(const OptimizerService&) = delete;

private:
    void registerReadings();
    void registerSettings();
    void registerActions();

    OptimizerLink& optimizer_;
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace kestrio
