#include "Kestrio/Base/Log.h"
#include "Tests/ExpectedLog.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(Log, isOneLineWhateverTheText) {
    const ExpectedLog log;
    logLine("Kestrio: plain");
    logLine("Kestrio: two\nlines");
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"Kestrio: plain", "Kestrio: two lines"}));
}

TEST(Log, returnsTheReceiverItReplaces) {
    std::string first;
    std::string second;
    auto guard = setLogReceiver([&](std::string_view line) { first += line; });
    const auto replaced = setLogReceiver([&](std::string_view line) { second += line; });
    logLine("a");
    replaced("b");
    setLogReceiver(std::move(guard));
    EXPECT_EQ(first, "b");
    EXPECT_EQ(second, "a");
}

} // namespace
} // namespace kestrio
