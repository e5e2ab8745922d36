// What a person can do on this host when something cannot be read: there is no place in the settings to send them to.
// Pure; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

struct PrivacyRemedy {
    std::string text;
    /// To be run in a terminal, by the person or on their word. Absent where no command helps.
    std::optional<std::string> command;

    friend bool operator==(const PrivacyRemedy&, const PrivacyRemedy&) = default;
};

/// By the name of the place that other hosts have for it, "Privacy_Accessibility" or "Privacy_Automation". Absent for
/// any other name.
std::optional<PrivacyRemedy> privacyRemedy(std::string_view anchor);

} // namespace kestrio
