// A login item in memory, for tests. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/LoginItem.h"

namespace kestrio {

class ScriptedLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled_; }
    std::optional<std::string> enable() override { return change(true); }
    std::optional<std::string> disable() override { return change(false); }

    /// From now on every change fails with this text; absent lets them work again.
    void failWith(std::optional<std::string> failure) { failure_ = std::move(failure); }

    /// How often a change was asked for, failed ones too.
    int changesAskedFor() const { return changesAskedFor_; }

private:
    std::optional<std::string> change(bool enabled) {
        ++changesAskedFor_;
        if (!failure_)
            enabled_ = enabled;
        return failure_;
    }

    bool enabled_ = false;
    int changesAskedFor_ = 0;
    std::optional<std::string> failure_;
};

} // namespace kestrio
