#include "Kestrio/Platform/Linux/PrivacyRemedies.h"

namespace kestrio {

std::optional<PrivacyRemedy> privacyRemedy(std::string_view anchor) {
    if (anchor == "Privacy_Accessibility")
        return PrivacyRemedy{"This desktop does not tell programs the titles of windows. Choose an X11 session when "
                             "you log in to have them recorded.",
                             std::nullopt};
    if (anchor == "Privacy_Automation")
        return PrivacyRemedy{"Install Kestrio's extension in the browser. Without it, switch on accessibility for this "
                             "desktop and start the browser again; very large pages then take it longer to show.",
                             "gsettings set org.gnome.desktop.interface toolkit-accessibility true"};
    return std::nullopt;
}

} // namespace kestrio
