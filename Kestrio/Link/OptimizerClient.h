// A face's side of `OptimizerLink`: asks the agent over the session bus. Single-threaded; the calls block up to their
// deadline.
#pragma once

#include "Kestrio/Link/OptimizerLink.h"

#include <memory>

namespace sdbus {
class IConnection;
class IProxy;
} // namespace sdbus

namespace kestrio {

class OptimizerClient final : public OptimizerLink {
public:
    /// The connection must outlive this.
    explicit OptimizerClient(sdbus::IConnection& connection);
    ~OptimizerClient() override;
    OptimizerClient(const OptimizerClient&) = delete;
    OptimizerClient& operator=(const OptimizerClient&) = delete;

    std::optional<OptimizerStatus> status() override;
    std::optional<std::vector<PlannedApp>> plan() override;
    Failure setEnabled(bool enabled) override;
    Failure setTuning(const tindra::OptimizerTuning& tuning) override;
    Failure setRules(const tindra::OptimizerRules& rules) override;
    Failure setTier(const std::string& appID, std::optional<tindra::AppTier> tier) override;
    Failure setOverride(const std::string& appID, tindra::AppTier tier, double hours) override;
    Failure removeOverride(const std::string& appID) override;
    Failure freeze(const std::string& appID) override;
    Failure slow(const std::string& appID) override;
    Failure resume(const std::string& appID) override;
    Failure quit(const std::string& appID) override;
    Failure resumeAll() override;

private:
    std::optional<std::string> reading(const char* method);
    template <class... Arguments>
    Failure call(const char* method, const Arguments&... arguments);

    std::unique_ptr<sdbus::IProxy> proxy_;
};

} // namespace kestrio
