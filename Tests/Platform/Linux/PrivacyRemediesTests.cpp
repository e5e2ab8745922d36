#include "Kestrio/Platform/Linux/PrivacyRemedies.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(PrivacyRemedies, sayWhatToDoForEachPlaceThatThisHostLacks) {
    EXPECT_EQ(
        privacyRemedy("Privacy_Accessibility"),
        (PrivacyRemedy{"This desktop does not tell programs the titles of windows. Choose an X11 session when you log "
                       "in to have them recorded.",
                       std::nullopt}));
    EXPECT_EQ(privacyRemedy("Privacy_Automation"),
              (PrivacyRemedy{"Install Kestrio's extension in the browser. Without it, switch on accessibility for this "
                             "desktop and start the browser again; very large pages then take it longer to show.",
                             "gsettings set org.gnome.desktop.interface toolkit-accessibility true"}));
}

TEST(PrivacyRemedies, thereIsNoneForAnyOtherPlace) {
    for (const char* anchor : {"", "Privacy", "privacy_automation"})
        EXPECT_EQ(privacyRemedy(anchor), std::nullopt) << anchor;
}

} // namespace
} // namespace kestrio
