#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/Doctor.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using State = Finding::State;

TEST(FindingsText, eachFindingIsALineWithItsRemedyBelow) {
    const std::vector<Finding> findings{
        {"Screen", State::fine, "X display :0"},
        {"Agent", State::missing, "not running", "Start it with: kestrio"},
        {"Data folder", State::broken, "readable by others", "chmod 700 it"},
    };
    EXPECT_EQ(findingsText(findings, {80, false}), "  ✓ Screen          X display :0\n"
                                                   "  ○ Agent           not running\n"
                                                   "                    Start it with: kestrio\n"
                                                   "  ✗ Data folder     readable by others\n"
                                                   "                    chmod 700 it\n"
                                                   "\n"
                                                   "  1 broken, 1 missing.\n");
    EXPECT_EQ(findingsText({findings.front()}, {80, true}),
              "  \x1B[32m✓\x1B[0m Screen          X display :0\n\n  Everything answers.\n");
    EXPECT_EQ(findingsText({}, {80, false}), "\n  Everything answers.\n");
}

TEST(FindingsText, answersAreCutToTheTerminalAndMadeHarmless) {
    const auto text = findingsText({{"Applications", State::fine, std::string(200, 'x')}}, {70, false});
    EXPECT_EQ(text::columns(text.substr(0, text.find('\n'))), 70U);
    EXPECT_EQ(findingsText({{"Applications", State::fine, "Bad\x1B]0;title\x07 app"}}, {80, false}),
              "  ✓ Applications    Bad ]0;title  app\n\n  Everything answers.\n");
}

TEST(FindingsText, asJSONWhatIsAbsentIsNull) {
    EXPECT_EQ(toJSON(Finding{"Screen", State::fine, "X display :0"}).dump(),
              R"({"name":"Screen","state":"fine","answer":"X display :0","remedy":null})");
    EXPECT_EQ(toJSON(Finding{"Agent", State::missing, "not running", "Start it"}).dump(),
              R"({"name":"Agent","state":"missing","answer":"not running","remedy":"Start it"})");
    EXPECT_EQ(rawValue(State::broken), "broken");
}

} // namespace
} // namespace kestrio
