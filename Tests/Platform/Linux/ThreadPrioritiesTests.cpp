#include "Kestrio/Platform/Linux/CoreClasses.h"
#include "Kestrio/Platform/Linux/ThreadPriorities.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <set>

namespace kestrio {
namespace {

const ThreadPriorities example{1234,
                               {6, 7},
                               ThreadPriority{{0, 1, 2, 3, 4, 5, 6, 7}, 0, 0},
                               {{41, 900, {{0}, 2, 16388}}, {42, 901, {{0, 1, 4}, 0x40000000, 24576}}}};
const std::string exampleWords = "since=1234 to=6-7 0-7/0/0 41@900/0/2/16388 42@901/0-1,4/1073741824/24576";

TEST(ThreadPriorities, areWords) {
    EXPECT_EQ(words(example), exampleWords);
    EXPECT_EQ(words({}), "");
}

TEST(ThreadPriorities, areReadAsTheyWereWritten) {
    EXPECT_EQ(parsedPriorities(exampleWords), example);
    EXPECT_EQ(parsedPriorities(""), ThreadPriorities());
}

TEST(ThreadPriorities, areThoseOfTheThreadOrOfAllTogether) {
    EXPECT_EQ(example.of(41, 900), example.exceptions[0].priority);
    EXPECT_EQ(example.of(41, 999), example.common); // a later thread of the same number
    EXPECT_EQ(example.of(77, 900), example.common);
    EXPECT_EQ(ThreadPriorities().of(41, 900), std::nullopt);
}

TEST(ThreadPriorities, passOverDamagedWords) {
    for (const auto* text : {"x", "0-7/0", "0-7//0", "/0/0", "a/0/0", "0-7/0/0/0", "@", "41@/0/0/0", "41@9", "@9/0/0/0",
                             "0@9/0/0/0", "-3@9/0/0/0", "41@9/0/0", "since=", "since=x", "to=", "to=x", "later=1"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parsedPriorities(text), ThreadPriorities());
        EXPECT_EQ(parsedPriorities(std::string(text) + "  0-3/0/0").common, (ThreadPriority{{0, 1, 2, 3}, 0, 0}));
    }
}

TEST(ThreadPriorities, takeTheFirstOfTwoThatAreForAll) {
    EXPECT_EQ(parsedPriorities("0/0/0 1/3/0").common, (ThreadPriority{{0}, 0, 0}));
}

RC_GTEST_PROP(ThreadPriorities, areReadAsTheyWereWrittenWhateverTheyAre, ()) {
    const auto cores = rc::gen::map(rc::gen::nonEmpty(rc::gen::container<std::set<int>>(rc::gen::inRange(0, 1024))),
                                    [](const auto& set) { return std::vector<int>(set.begin(), set.end()); });
    const auto priority = [&] {
        return ThreadPriority{*cores, *rc::gen::arbitrary<int>(), *rc::gen::arbitrary<int>()};
    };
    ThreadPriorities priorities;
    priorities.since = *rc::gen::arbitrary<std::uint64_t>();
    priorities.slowCores = *cores;
    priorities.common = priority();
    for (auto count = *rc::gen::inRange(0, 5); count > 0; --count)
        priorities.exceptions.push_back({*rc::gen::positive<int>(), *rc::gen::arbitrary<std::uint64_t>(), priority()});
    RC_ASSERT(parsedPriorities(words(priorities)) == priorities);
}

RC_GTEST_PROP(CoreList, isReadAsItWasWritten, (const std::set<std::uint16_t>& numbers)) {
    std::vector<int> cores(numbers.begin(), numbers.end());
    RC_PRE(cores.size() <= 4096U);
    RC_ASSERT(parseCoreList(coreList(cores)) == cores);
}

} // namespace
} // namespace kestrio
