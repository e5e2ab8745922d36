#include "Kestrio/Optimizer/Protections.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using tindra::Protection;

constexpr Date now{1'700'000'000};
const std::string app = "org.example.app";

/// Facts under which every reason holds, from the one at `first` on in their order.
struct Facts {
    explicit Facts(std::size_t first) {
        if (first <= 0)
            front = app;
        if (first <= 1)
            essentials = {app};
        if (first <= 2)
            neverTouch = {app};
        if (first <= 3)
            media.recording = {app};
        if (first <= 4)
            media.playing = {app};
        if (first <= 5)
            media.keepDisplayAwake = {app};
        if (first <= 6)
            media.keepAwake = {app};
        if (first <= 7)
            launched = now;
    }
    std::optional<Protection> protection() const {
        return protectionOf(app, launched, {front, essentials, neverTouch, media, now});
    }
    std::optional<std::string> front;
    AppIDs essentials;
    AppIDs neverTouch;
    MediaUse media;
    std::optional<Date> launched;
};

TEST(Protections, theFirstReasonInTheirOrderCounts) {
    const std::optional<Protection> order[] = {
        Protection::frontmost,       Protection::essential,        Protection::neverTouch,
        Protection::usingMicrophone, Protection::playingAudio,     Protection::showingVideo,
        Protection::preventingSleep, Protection::recentlyLaunched, std::nullopt,
    };
    for (std::size_t first = 0; first < std::size(order); ++first)
        EXPECT_EQ(Facts(first).protection(), order[first]) << "from reason " << first << " on";
}

TEST(Protections, whatHoldsForOthersDoesNotProtect) {
    Facts facts(0);
    EXPECT_EQ(protectionOf("org.example.other", std::nullopt,
                           {facts.front, facts.essentials, facts.neverTouch, facts.media, now}),
              std::nullopt);
}

TEST(Protections, aLaunchProtectsForLessThanTwoMinutes) {
    Facts facts(8);
    facts.launched = now - Seconds(119.9);
    EXPECT_EQ(facts.protection(), Protection::recentlyLaunched);
    facts.launched = now - Seconds(120);
    EXPECT_EQ(facts.protection(), std::nullopt);
    facts.launched = now + Seconds(1e6); // the clock was set back
    EXPECT_EQ(facts.protection(), Protection::recentlyLaunched);
}

TEST(Protections, threeAssertionsKeepTheMachineAwake) {
    EXPECT_EQ(sleepAssertionTypes(),
              (std::set<std::string>{"NoIdleSleepAssertion", "PreventSystemSleep", "PreventUserIdleSystemSleep"}));
}

} // namespace
} // namespace kestrio
