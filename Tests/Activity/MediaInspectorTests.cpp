#include "Kestrio/Activity/MediaInspector.h"
#include "Kestrio/Platform/Testing/ScriptedMedia.h"

#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

using Identifiers = std::set<std::string>;

struct MediaInspectorTest : testing::Test {
    ScriptedAudioUse audio;
    ScriptedSleepInhibitors inhibitors;
    std::map<ApplicationTrace, std::string> owners;
    int walks = 0;

    MediaInspector make(const std::string& ownBundleID = "dev.example.own") {
        return {audio, inhibitors,
                [this](const ApplicationTrace& trace) -> std::optional<std::string> {
                    ++walks;
                    const auto found = owners.find(trace);
                    return found == owners.end() ? std::nullopt : std::optional(found->second);
                },
                ownBundleID};
    }
};

TEST_F(MediaInspectorTest, aHelpersSoundCountsAsItsOwners) {
    owners = {{{41}, "org.example.browser"}};
    audio.players = {{41}};
    EXPECT_EQ(make().appsPlayingAudio(), Identifiers{"org.example.browser"});
    EXPECT_TRUE(make().appsRecordingAudio().empty());
}

TEST_F(MediaInspectorTest, playingAndRecordingAreTwoQuestions) {
    owners = {{{41}, "org.example.player"}, {{42}, "org.example.recorder"}};
    audio.players = {{41}};
    audio.recorders = {{42}};
    EXPECT_EQ(make().appsPlayingAudio(), Identifiers{"org.example.player"});
    EXPECT_EQ(make().appsRecordingAudio(), Identifiers{"org.example.recorder"});
}

TEST_F(MediaInspectorTest, aSoundThatNobodyOwnsIsLeftOut) {
    owners = {{{41}, "org.example.player"}};
    audio.players = {{40}, {41}, {std::nullopt, "somebody"}};
    EXPECT_EQ(make().appsPlayingAudio(), Identifiers{"org.example.player"});
}

TEST_F(MediaInspectorTest, severalStreamsOfAProcessAreOneWalk) {
    owners = {{{41}, "org.example.player"}};
    audio.players = {{41}, {41}, {41}};
    EXPECT_EQ(make().appsPlayingAudio(), Identifiers{"org.example.player"});
    EXPECT_EQ(walks, 1);
}

TEST_F(MediaInspectorTest, theProgramItselfIsInNoAnswer) {
    owners = {{{41}, "dev.example.own"}, {{42}, "org.example.player"}};
    audio.players = audio.recorders = {{41}, {42}};
    inhibitors.inhibitors = {{{41}, assertion::preventUserIdleDisplaySleep},
                             {{42}, assertion::preventUserIdleDisplaySleep}};
    auto inspector = make();
    EXPECT_EQ(inspector.appsPlayingAudio(), Identifiers{"org.example.player"});
    EXPECT_EQ(inspector.appsRecordingAudio(), Identifiers{"org.example.player"});
    EXPECT_EQ(inspector.apps(MediaInspector::displayAssertionTypes()), Identifiers{"org.example.player"});
}

TEST_F(MediaInspectorTest, withoutAnIdentifierOfItsOwnTheProgramLeavesOutNobody) {
    owners = {{{42}, "org.example.player"}};
    audio.players = {{42}};
    EXPECT_EQ(make("").appsPlayingAudio(), Identifiers{"org.example.player"});
}

TEST_F(MediaInspectorTest, onlyTheAskedTypesOfAssertionCount) {
    const struct {
        const char* type;
        bool keepsDisplay;
    } rows[] = {
        {assertion::preventUserIdleDisplaySleep, true},
        {assertion::noDisplaySleep, true},
        {assertion::preventUserIdleSystemSleep, false},
        {assertion::preventSystemSleep, false},
        {assertion::noIdleSleep, false},
        {"", false},
    };
    owners = {{{41}, "org.example.player"}};
    for (const auto& row : rows) {
        inhibitors.inhibitors = {{{41}, row.type}};
        EXPECT_EQ(make().apps(MediaInspector::displayAssertionTypes()),
                  row.keepsDisplay ? Identifiers{"org.example.player"} : Identifiers{})
            << row.type;
    }
}

TEST_F(MediaInspectorTest, anyOfAProcessesAssertionsIsEnough) {
    owners = {{{41}, "org.example.player"}};
    inhibitors.inhibitors = {{{41}, assertion::preventSystemSleep}, {{41}, assertion::noDisplaySleep}};
    EXPECT_EQ(make().apps({assertion::noDisplaySleep}), Identifiers{"org.example.player"});
    EXPECT_TRUE(make().apps({}).empty());
}

TEST_F(MediaInspectorTest, theDisplaysAssertionsAreThoseTwo) {
    EXPECT_EQ(MediaInspector::displayAssertionTypes(),
              (Identifiers{"PreventUserIdleDisplaySleep", "NoDisplaySleepAssertion"}));
}

TEST_F(MediaInspectorTest, whatCannotBeReadReadsAsNothing) {
    auto inspector = make();
    EXPECT_TRUE(inspector.appsPlayingAudio().empty());
    EXPECT_TRUE(inspector.appsRecordingAudio().empty());
    EXPECT_TRUE(inspector.apps(MediaInspector::displayAssertionTypes()).empty());
    EXPECT_EQ(walks, 0) << "asked for owners of nothing";
}

} // namespace
} // namespace kestrio
