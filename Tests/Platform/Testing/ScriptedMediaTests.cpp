#include "Kestrio/Platform/Testing/ScriptedMedia.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ScriptedMedia, answersNothingAtFirst) {
    ScriptedAudioUse audio;
    ScriptedSleepInhibitors inhibitors;
    ScriptedScreens screens;
    EXPECT_TRUE(audio.playing().empty());
    EXPECT_TRUE(audio.recording().empty());
    EXPECT_TRUE(inhibitors.held().empty());
    EXPECT_EQ(screens.layout(), ScreenLayout());
}

TEST(ScriptedMedia, answersWhatTheTestPutInAndCountsTheQuestions) {
    ScriptedAudioUse audio;
    audio.players = {{7}};
    audio.recorders = {{std::nullopt, "recorder"}};
    EXPECT_EQ(audio.playing(), audio.players);
    EXPECT_EQ(audio.recording(), audio.recorders);
    EXPECT_EQ(audio.asked, 2);

    ScriptedSleepInhibitors inhibitors;
    inhibitors.inhibitors = {{{7}, assertion::preventSystemSleep}};
    EXPECT_EQ(inhibitors.held(), inhibitors.inhibitors);
    EXPECT_EQ(inhibitors.asked, 1);

    ScriptedScreens screens;
    screens.screens = {{{0, 0, 800, 600}}, {{7, {0, 0, 400, 300}}}};
    EXPECT_EQ(screens.layout(), screens.screens);
    EXPECT_EQ(screens.asked, 1);
}

} // namespace
} // namespace kestrio
