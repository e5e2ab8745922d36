#include "Kestrio/Resources/Slowness.h"
#include "TindraCore/ResourceMath.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Behaviour = tindra::BehaviourAccumulator;

constexpr std::uint64_t mebibyte = 1 << 20;
constexpr Date noon{1'700'049'600}; // 2023-11-15, 12:00 UTC
constexpr Date at = noon + Seconds(20);

SystemMinute minute(Date start = noon) {
    return {.minute = start, .cpu = 0.23, .pressure = 1, .frontApp = "org.example.editor", .activeSeconds = 60};
}

SystemSecond second(double offset) {
    return {.at = noon + Seconds(offset), .cpu = 0.2, .pressure = 1, .frontApp = "org.example.editor"};
}

AppMinute app(const char* id, const char* name, std::uint64_t memory, double cpu) {
    return {.minute = noon, .appID = id, .name = name, .cpu = cpu, .memory = memory * mebibyte};
}

const std::vector<AppMinute> twoApps{app("org.example.browser", "Browser", 6000, 0.4),
                                     app("org.example.editor", "Editor", 900, 3.4)};

std::string told(const LogAroundMoment& log) {
    std::string text;
    for (const auto& sentence : sentences(slowness(log), Calendar("en_GB", "UTC")))
        text += (text.empty() ? "" : "|") + sentence;
    return text;
}

template <class Change>
LogAroundMoment with(Change change) {
    LogAroundMoment log{.at = at, .minutes = {minute()}, .apps = twoApps};
    change(log);
    return log;
}

TEST(Slowness, isToldWithItsEvidence) {
    const std::string apps = "Browser held the most memory (5.86 GB), Editor was the busiest (3.4 cores) and ";
    const std::string usual = apps + "you were using Editor.";
    const std::string quiet =
        "The Mac was not slow at 12:00: memory was under no pressure, nothing had to be read back "
        "from the SSD and the cores were 23% busy.|";
    struct Row {
        LogAroundMoment log;
        std::string text;
    };
    const Row rows[] = {
        {with([](auto&) {}), quiet + usual},
        {with([](auto& log) { log.minutes[0].lagMilliseconds = 499; }),
         "The Mac was not slow at 12:00: memory was under no pressure, nothing had to be read back from the SSD, the "
         "longest stall took 499 ms and the cores were 23% busy.|" +
             usual},
        {with([](auto& log) { log.minutes[0].lagMilliseconds = 500; }),
         "The Mac was slow at 12:00: it stood still for 500 ms.|" + usual},
        {with([](auto& log) { log.minutes[0].lagMilliseconds = 1840; }),
         "The Mac was slow at 12:00: it stood still for 1.8 s.|" + usual},
        {with([](auto& log) {
             log.seconds = {second(19), second(20), second(21)};
             log.seconds[1].lagMilliseconds = log.minutes[0].lagMilliseconds = 2500;
         }),
         "The Mac was slow at 12:00: it stood still for 2.5 s at 12:00:20.|" + usual},
        {with([](auto& log) { log.minutes[0].pressure = 2; }),
         "The Mac was not slow at 12:00: memory was under some pressure, nothing had to be read back from the SSD and "
         "the cores were 23% busy.|" +
             usual},
        {with([](auto& log) { log.minutes[0].pressure = 4; }),
         "The Mac was slow at 12:00: its memory was full (critical pressure).|" + usual},
        {with([](auto& log) { log.minutes[0].swapIn = 256 * mebibyte - 1; }),
         "The Mac was not slow at 12:00: memory was under no pressure, 256 MB came back from the SSD and the cores "
         "were "
         "23% busy.|" +
             usual},
        {with([](auto& log) { log.minutes[0].swapIn = 256 * mebibyte; }),
         "The Mac was slow at 12:00: 256 MB had to be read back from the SSD within a minute.|" + usual},
        {with([](auto& log) { log.minutes[0].cpu = 0.9; }),
         "The Mac was slow at 12:00: its cores were all busy (90%).|" + usual},
        {with([](auto& log) { log.minutes[0].thermal = 2; }),
         "The Mac was slow at 12:00: it was hot and slowed itself down to cool off.|" + usual},
        {with([](auto& log) {
             log.minutes[0].ssdWaitMicroseconds = 9'999;
             log.minutes[0].ssdWrite = 500e6;
             log.apps[1].diskWritten = 30e9;
         }),
         quiet + usual},
        {with([](auto& log) {
             log.minutes[0].ssdWaitMicroseconds = 50'000; // of a drive that has hardly anything to do
             log.minutes[0].ssdWrite = 999'999;
         }),
         quiet + usual},
        {with([](auto& log) {
             log.minutes[0].ssdWaitMicroseconds = 10'000;
             log.minutes[0].ssdRead = 100e6;
             log.minutes[0].ssdWrite = 400e6;
             log.apps[0].diskRead = 2e9;
             log.apps[1].diskWritten = 30e9;
         }),
         "The Mac was slow at 12:00: its SSD could not keep up (a request waited 10 ms, at 500 MB/s).|Browser held the "
         "most memory (5.86 GB), Editor was the busiest (3.4 cores), Editor read and wrote the most (30 GB) and you "
         "were using Editor."},
        {with([](auto& log) {
             log.minutes[0].ssdWaitMicroseconds = 14'600;
             log.minutes[0].ssdWrite = 1e6;
             log.apps[1].diskWritten = mebibyte - 1;
         }),
         "The Mac was slow at 12:00: its SSD could not keep up (a request waited 15 ms, at 1 MB/s).|" + usual},
        {with([](auto& log) {
             log.minutes[0].lagMilliseconds = 12'900;
             log.minutes[0].pressure = 2;
         }),
         "The Mac was slow at 12:00: it stood still for 12 s and memory was under some pressure.|" + usual},
        {with([](auto& log) {
             log.minutes[0].lagMilliseconds = 700;
             log.minutes[0].pressure = 4;
             log.minutes[0].swapIn = 1024 * mebibyte;
             log.minutes[0].cpu = 1;
             log.minutes[0].thermal = 3;
         }),
         "The Mac was slow at 12:00: it stood still for 700 ms, its memory was full (critical pressure), 1 GB had to "
         "be "
         "read back from the SSD within a minute, its cores were all busy (100%) and it was hot and slowed itself down "
         "to cool off.|" +
             usual},
        // Applications.
        {with([](auto& log) { log.apps.clear(); }), quiet + "You were using org.example.editor."},
        {with([](auto& log) {
             log.apps.clear();
             log.otherNames = {{"org.example.editor", "Writer"}, {"org.example.browser", "Browser"}};
         }),
         quiet + "You were using Writer."},
        {with([](auto& log) {
             log.otherNames = {{"org.example.editor", "Writer"}};
         }),
         quiet + usual},
        {with([](auto& log) {
             log.apps.clear();
             log.minutes[0].frontApp.reset();
         }),
         quiet + "You were at the Mac."},
        {with([](auto& log) { log.apps = {app("org.example.editor", "Editor", 900, 0.5)}; }),
         quiet + "Editor held the most memory (900 MB) and was the busiest (50% of a core) and you were using Editor."},
        {with([](auto& log) { log.apps = {app("org.example.editor", "Editor", 900, 0.04)}; }),
         quiet + "Editor held the most memory (900 MB) and you were using Editor."},
        // What the person did.
        {with([](auto& log) {
             log.minutes[0].activeSeconds = 20;
             log.minutes[0].idleSeconds = 40;
         }),
         quiet + apps + "you were idle with Editor in front."},
        {with([](auto& log) {
             log.minutes[0].activeSeconds = 0;
             log.minutes[0].idleSeconds = 60;
             log.minutes[0].frontApp.reset();
         }),
         quiet + apps + "you were idle."},
        {with([](auto& log) {
             log.minutes[0].activeSeconds = 0;
             log.minutes[0].awaySeconds = 60;
         }),
         quiet + apps + "you were away."},
        {with([](auto& log) {
             log.minutes[0].activeSeconds = 0;
             log.minutes[0].pausedSeconds = 60;
         }),
         quiet + apps + "recording of what you did was paused."},
        {with([](auto& log) { log.minutes[0].activeSeconds = 0; }), quiet + apps + "Editor was in front."},
        {with([](auto& log) {
             log.minutes[0].activeSeconds = 0;
             log.minutes[0].frontApp.reset();
             log.apps.clear();
         }),
         "The Mac was not slow at 12:00: memory was under no pressure, nothing had to be read back from the SSD and "
         "the "
         "cores were 23% busy."},
        // Nothing.
        {{.at = at}, "Nothing is logged of 15 Nov 2023, 12:00."},
        {{.at = at, .events = {{.at = noon - Seconds(600), .kind = ResourceEventKind::macSlept}}},
         "Nothing is logged of 15 Nov 2023, 12:00: the Mac was asleep."},
        {{.at = at,
          .events = {{.at = noon - Seconds(600), .kind = ResourceEventKind::macSlept},
                     {.at = noon - Seconds(60), .kind = ResourceEventKind::macWoke},
                     {.at = noon, .kind = ResourceEventKind::appOpened}}},
         "Nothing is logged of 15 Nov 2023, 12:00."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(told(row.log), row.text);
}

TEST(Slowness, isThatOfTheMinuteAroundTheMoment) {
    auto slow = minute(noon + Seconds(60));
    slow.lagMilliseconds = 900;
    const auto isSlow = [&](double offset) {
        return slowness({.at = noon + Seconds(offset), .minutes = {minute(), slow, minute(noon + Seconds(120))}})
                   .verdict == Slowness::Verdict::slow;
    };
    EXPECT_FALSE(isSlow(59.9));
    EXPECT_TRUE(isSlow(60));
    EXPECT_TRUE(isSlow(119.9));
    EXPECT_FALSE(isSlow(120));
}

TEST(Slowness, isThatOfTheLastMinuteWhileTheNextIsInTheMaking) {
    using enum Slowness::Verdict;
    LogAroundMoment log{.at = noon + Seconds(119), .minutes = {minute()}};
    EXPECT_EQ(slowness(log).verdict, smooth);
    log.at = noon + Seconds(120);
    EXPECT_EQ(slowness(log).verdict, unlogged);
    log.at = noon + Seconds(90);
    log.events = {{.at = noon + Seconds(61), .kind = ResourceEventKind::macSlept}};
    EXPECT_EQ(slowness(log).verdict, unlogged);
    EXPECT_TRUE(slowness(log).wasAsleep);
    log.events.clear();
    log.minutes.push_back(minute(noon + Seconds(120))); // so the one between was never logged
    EXPECT_EQ(slowness(log).verdict, unlogged);
}

TEST(Slowness, isThatOfTheSecondsWhereNoMinuteIsLoggedYet) {
    LogAroundMoment log{.at = at};
    for (int i = 0; i < 40; ++i)
        log.seconds.push_back(second(i));
    log.seconds[21].swapInRate = 300e6;
    log.seconds[22].state = Behaviour::idle;
    log.seconds[20].state = Behaviour::idle;
    log.seconds[20].frontApp = "org.example.player";
    const auto found = slowness(log);
    EXPECT_EQ(found.verdict, Slowness::Verdict::slow);
    EXPECT_EQ(found.readBack, 300'000'000u);
    EXPECT_EQ(found.front, "org.example.player");
    EXPECT_EQ(found.activity, Behaviour::idle);
    EXPECT_EQ(found.lagAt, std::nullopt);
}

TEST(Slowness, secondsFarFromTheMomentSayNothing) {
    LogAroundMoment log{.at = at, .seconds = {second(-11), second(51)}};
    EXPECT_EQ(slowness(log).verdict, Slowness::Verdict::unlogged);
    log.seconds = {second(-10), second(50)};
    EXPECT_EQ(slowness(log).verdict, Slowness::Verdict::smooth);
}

TEST(Slowness, aGapBetweenSecondsIsNotFilledWithWhatWasReadBack) {
    LogAroundMoment log{.at = at, .seconds = {second(0), second(40)}};
    log.seconds[1].swapInRate = 1e6;
    EXPECT_EQ(slowness(log).readBack, 10'000'000u);
}

} // namespace
} // namespace kestrio
