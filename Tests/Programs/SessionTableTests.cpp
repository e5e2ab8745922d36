#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/SessionTable.h"

#include <gtest/gtest.h>
#include <sstream>

namespace kestrio {
namespace {

const Calendar& calendar() {
    static const Calendar berlin("en_GB", "Europe/Berlin");
    return berlin;
}

/// A session that began so many seconds after 2026-11-20 22:00 and lasted for some.
ActivitySession session(const char* app, std::string title, double start, double length,
                        SessionKind kind = SessionKind::focus) {
    const auto begin = calendar().date(2026, 11, 20, 22) + Seconds(start);
    ActivitySession made;
    made.start = begin;
    made.end = begin + Seconds(length);
    made.bundleID = app;
    made.appName = app;
    made.title = std::move(title);
    made.kind = kind;
    return made;
}

std::string table(std::vector<ActivitySession> sessions, std::size_t width = 80, bool hasColour = false) {
    return "\n" + sessionTable(std::move(sessions), calendar(), {width, hasColour});
}

TEST(SessionTable, hasALineForEachSessionUnderItsDay) {
    EXPECT_EQ(table({
                  session("Calculator", "", 7200 + 60, 30), // past midnight, and out of order
                  session("Editor", "Letter to Ada", 0, 3600),
                  session("Terminal", "vi notes.md", 3600, 1800),
                  session("Editor", "Letter to Ada", 5460, 60),
              }),
              R"(
  Friday, 20 November 2026

  22:00:00  ████████       1h  Editor      Letter to Ada
  23:00:00  ████          30m  Terminal    vi notes.md
                           1m  nothing recorded
  23:31:00  ▏              1m  Editor      Letter to Ada

  Saturday, 21 November 2026

  00:01:00  ▏             30s  Calculator

  1h 31m focused in 4 sessions, 3 applications
)");
}

TEST(SessionTable, saysApartWhatWentOnAlongside) {
    EXPECT_EQ(table({
                  session("Editor", "Letter", 0, 60), session("Player", "Song", 10, 120, SessionKind::listening),
                  session("Browser", "", 20, 30, SessionKind::watching),
                  session("Editor", "Letter", 61.5, 8.5), // too short a gap to speak of
              }),
              R"(
  Friday, 20 November 2026

  22:00:00  ████           1m  Editor   Letter
  22:00:10  ████████       2m  Player   Listening: Song
  22:00:20  ██            30s  Browser  Watching
  22:01:01  ▋              9s  Editor   Letter

  1m focused in 4 sessions, 3 applications, 2m alongside
)");
}

TEST(SessionTable, countsInTheSingular) {
    EXPECT_EQ(table({session("Editor", "Letter", 0, 0)}), R"(
  Friday, 20 November 2026

  22:00:00  ▏              0s  Editor  Letter

  0s focused in 1 session, 1 application
)");
}

TEST(SessionTable, aSessionAcrossMidnightStandsWhereItBegan) {
    EXPECT_EQ(table({session("Editor", "Late", 7100, 300), session("Editor", "Early", 7400, 300)}), R"(
  Friday, 20 November 2026

  23:58:20  ████████       5m  Editor  Late

  Saturday, 21 November 2026

  00:03:20  ████████       5m  Editor  Early

  10m focused in 2 sessions, 1 application
)");
}

TEST(SessionTable, paintsEachApplicationInItsShade) {
    EXPECT_EQ(table({session("A", "x", 0, 60), session("B", "y", 90, 30), session("A", "z", 120, 60)}, 80, true),
              "\n  \x1B[1mFriday, 20 November 2026\x1B[0m\n\n"
              "  \x1B[2m22:00:00\x1B[0m  \x1B[38;5;33m████████\x1B[0m       1m  \x1B[38;5;33mA\x1B[0m  x\n"
              "  \x1B[2m                        30s  nothing recorded\x1B[0m\n"
              "  \x1B[2m22:01:30\x1B[0m  \x1B[38;5;37m████    \x1B[0m      30s  \x1B[38;5;37mB\x1B[0m  y\n"
              "  \x1B[2m22:02:00\x1B[0m  \x1B[38;5;33m████████\x1B[0m       1m  \x1B[38;5;33mA\x1B[0m  z\n"
              "\n  2m focused in 3 sessions, 2 applications\n");
}

TEST(SessionTable, fitsTheTerminal) {
    const auto wide = session("Editor", "写真の整理をしている写真の整理をしている写真の整理をしている", 0, 60);
    const auto longName = session("An application with a very long name indeed", std::string(300, 'w'), 100, 60);
    for (const std::size_t width : {0U, 10U, 40U, 55U, 56U, 60U, 80U, 120U, 200U}) {
        std::istringstream lines(table({wide, longName}, width));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(text::columns(line), std::max<std::size_t>(width, 45)) << line; // the sum is 44 wide
    }
    EXPECT_EQ(table({wide, longName}, 70), R"(
  Friday, 20 November 2026

  22:00:00  ████████       1m  Editor              写真の整理をしてい…
                          40s  nothing recorded
  22:01:40  ████████       1m  An application wi…  wwwwwwwwwwwwwwwwww…

  2m focused in 2 sessions, 2 applications
)");
    EXPECT_EQ(table({wide, longName}, 40), R"(
  Friday, 20 November 2026

  22:00:00       1m  Editor    写真の整…
                40s  nothing recorded
  22:01:40       1m  An appl…  wwwwwwww…

  2m focused in 2 sessions, 2 applications
)");
}

TEST(SessionTable, wideCharactersKeepTheColumnsStraight) {
    EXPECT_EQ(table({session("写真", "a", 0, 60), session("Foto", "b", 60, 60), session("e\u0301", "c", 120, 60)}),
              R"(
  Friday, 20 November 2026

  22:00:00  ████████       1m  写真  a
  22:01:00  ████████       1m  Foto  b
  22:02:00  ████████       1m  )"
              "e\u0301"
              R"(     c

  3m focused in 3 sessions, 3 applications
)");
}

TEST(SessionTable, nothingInATitleReachesTheTerminalAsACommand) {
    const auto text = table({
        session("Ev\x1B[2Jil",
                "a\x1B]0;owned\x07 b\r\nc\td\x9B"
                "31m",
                0, 60),
        session("Editor",
                "\u202Eright to left\u202C \u0085 \xC2\x9B"
                "2J \x7F",
                60, 60),
    });
    for (const char c : text)
        EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n') << static_cast<int>(c);
    EXPECT_EQ(text, R"(
  Friday, 20 November 2026

  22:00:00  ████████       1m  Ev [2Jil  a ]0;owned  b  c d�31m
  22:01:00  ████████       1m  Editor    right to left    2J

  2m focused in 2 sessions, 2 applications
)");
}

} // namespace
} // namespace kestrio
