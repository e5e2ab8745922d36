// What plays, what keeps the display awake and what stands on the screens, for tests: each answers what the test last
// put into its fields, and counts how often it was asked. Belongs to the test's thread.
#pragma once

#include "Kestrio/Platform/AudioUse.h"
#include "Kestrio/Platform/Screens.h"
#include "Kestrio/Platform/SleepInhibitors.h"

namespace kestrio {

class ScriptedAudioUse final : public AudioUse {
public:
    std::vector<ApplicationTrace> players;
    std::vector<ApplicationTrace> recorders;
    int asked = 0;

    std::vector<ApplicationTrace> playing() override {
        ++asked;
        return players;
    }
    std::vector<ApplicationTrace> recording() override {
        ++asked;
        return recorders;
    }
};

class ScriptedSleepInhibitors final : public SleepInhibitors {
public:
    std::vector<SleepInhibitor> inhibitors;
    int asked = 0;

    std::vector<SleepInhibitor> held() override {
        ++asked;
        return inhibitors;
    }
};

class ScriptedScreens final : public Screens {
public:
    ScreenLayout screens;
    int asked = 0;

    ScreenLayout layout() override {
        ++asked;
        return screens;
    }
};

} // namespace kestrio
