#include "Kestrio/Resources/ResourceReport.h"
#include "Kestrio/Resources/Slowness.h"
#include "Kestrio/Shell/HostWords.h"
#include "Kestrio/Shell/Settings.h"
#include "Tests/Resources/ExampleSnapshot.h"

#include <gtest/gtest.h>
#include <regex>

namespace kestrio {
namespace {

/// The first foreign word of a text; empty when there is none.
std::string foreignWord(const std::string& text) {
    static const std::regex pattern("\\b(Macs?|macOS|Finder|Dock|Xcode|Activity Monitor|menu bar)\\b");
    std::smatch found;
    return std::regex_search(text, found, pattern) ? found.str() : "";
}

TEST(HostWords, takeTheirPlaceInTexts) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"Nothing to replace.", "Nothing to replace."},
        {"Everything stays on this Mac", "Everything stays on this computer"},
        {"Optimize my Mac", "Optimize my computer"},
        {"Your Mac is getting warm.", "Your computer is getting warm."},
        {"The Mac's readings", "The computer's readings"},
        {"Mac went to sleep", "Computer went to sleep"},
        {"Mac woke up", "Computer woke up"},
        {"Mac", "Computer"},
        {"At the Mac", "At the computer"},
        {"whole-Mac numbers only.", "whole-computer numbers only."},
        {"for the whole Mac (3 rows)", "for the whole computer (3 rows)"},
        {"(screen locked or Mac asleep)", "(screen locked or computer asleep)"},
        {"# Mac\n- Mac: 3\n", "# Computer\n- Computer: 3\n"},
        {"| Hour | Mac |", "| Hour | Computer |"},
        {"It slept. Mac and all.", "It slept. Computer and all."},
        {"that's how — Mac or not", "that's how — computer or not"},
        {"two Macs", "two computers"},
        {"on this Mac. (A Mac)", "on this computer. (A computer)"},
        {"so macOS moved memory", "so the system moved memory"},
        {"macOS isn't reporting RAM speed on this Mac.", "The system isn't reporting RAM speed on this computer."},
        {" use it. macOS chooses this itself:", " use it. The system chooses this itself:"},
        {"the app version, macOS version and chip", "the app version, system version and chip"},
        {"Show in Finder", "Show in Files"},
        {"Finder, the Dock, terminals, Xcode, Docker and Activity Monitor are always protected",
         "Files, the panel, terminals, Docker and System Monitor are always protected"},
        {"you can hide this menu bar icon there", "you can hide this tray icon there"},
        {"moves the app to the Trash", "moves the app to the Trash"},
    };
    for (const auto& [text, words] : rows)
        EXPECT_EQ(hostWords(text), words);
}

TEST(HostWords, leaveOtherWordsAndNamesAlone) {
    for (const char* text : {"MacBook Pro",
                             "Macro",
                             "a Macintosh",
                             "iMac",
                             "PathFinder",
                             "Finders",
                             "eMac",
                             "mac",
                             "macos",
                             "Macé",
                             "éMac",
                             "com.readdle.PDFExpert-Mac",
                             "com.example.Mac",
                             "com.Mac.example",
                             "Mac.app",
                             "/usr/share/Mac/icons",
                             "Mac_OS",
                             "https://example.org/Mac",
                             "menu bars",
                             "Mac-mini"})
        EXPECT_EQ(hostWords(text), text);
}

TEST(HostWords, leaveNamesAsTheyAre) {
    const std::vector<std::string> names{"Mac Cleaner", "Finder", "", "Editor", "Mac Cleaner Pro", "My Mac"};
    const struct {
        const char* text;
        const char* words;
    } rows[] = {
        {"Mac Cleaner was opened.", "Mac Cleaner was opened."},
        {"The Mac was slow: Mac Cleaner Pro held this Mac.",
         "The computer was slow: Mac Cleaner Pro held this computer."},
        {"My Mac and this Mac", "My Mac and this computer"},
        {"Show in Finder", "Show in Files"}, // a name that is no more than the word is taken for the word
        {"Editor on the Mac", "Editor on the computer"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(hostWords(row.text, names), row.words);
}

TEST(HostWords, areIdempotent) {
    const std::string text = "macOS parks it. Mac, Finder and the Dock of this Mac: macOS version.";
    EXPECT_EQ(hostWords(hostWords(text)), hostWords(text));
}

TEST(HostWords, leaveNoForeignWordInExportsAndReports) {
    auto surroundings = exampleSurroundings();
    surroundings.hostWords = [](const auto& text, auto names) { return hostWords(text, names); };
    surroundings.driveTest = SSDSpeedTest::Result{3e9, 2e9, exampleStart};
    surroundings.topRAMSpeed = 100e9;
    ResourceExporter::Snapshot snapshot;
    snapshot.interval = {exampleStart, exampleStart + Seconds(3600)};
    snapshot.system = {exampleMinute(0), exampleMinute(1)};
    snapshot.summaries = {{.id = "a", .name = "A", .minutes = 2}};
    snapshot.hours = {{.hour = 9, .minutes = 2}};
    snapshot.configs = {{.key = "off", .label = "Optimization off", .stats = {.minutes = 40}},
                        {.key = "on", .label = "Balanced", .stats = {.minutes = 50}}};
    snapshot.secondsLogged = 1;
    snapshot.worstStalls = {exampleSecond(0)};
    for (std::size_t i = 0; i < resourceEventKindCount; ++i)
        snapshot.events.push_back({.at = exampleStart, .kind = static_cast<ResourceEventKind>(i)});
    const auto report = ResourceExporter::report(snapshot, surroundings);
    EXPECT_NE(report.find("## How you used the computer"), std::string::npos) << report;
    EXPECT_NE(report.find("- Computer went to sleep: 1"), std::string::npos) << report;
    for (const auto& text : {report, ResourceExporter::readme(snapshot, surroundings, 3)})
        EXPECT_EQ(foreignWord(text), "") << text;
}

TEST(HostWords, leaveNoForeignWordInTitlesExplanationsAndSettings) {
    for (std::size_t i = 0; i < resourceEventKindCount; ++i)
        EXPECT_EQ(foreignWord(hostWords(title(static_cast<ResourceEventKind>(i)))), "");
    for (const auto& setting : knownSettings())
        EXPECT_EQ(foreignWord(hostWords(setting.meaning)), "") << setting.key;
    const Calendar calendar("en_GB", "UTC");
    LogAroundMoment log{.at = exampleStart, .minutes = {exampleMinute(0)}};
    log.minutes.front().frontApp.reset();
    for (const auto lag : {0, 600}) {
        log.minutes.front().lagMilliseconds = lag;
        for (const auto& sentence : sentences(slowness(log), calendar))
            EXPECT_EQ(foreignWord(hostWords(sentence)), "") << sentence;
    }
}

} // namespace
} // namespace kestrio
