#include "Kestrio/Reports/KeyNumbers.h"
#include "Kestrio/Reports/TextNumbers.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

TEST(KeyNumbers, countInTheOrderOfFirstSight) {
    KeyNumbers numbers;
    constexpr std::uint32_t count = 5000; // the table grows several times
    for (int round = 0; round < 2; ++round)
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto found = numbers.number({i % 70, i / 70, i % 3});
            EXPECT_EQ(found.number, i);
            EXPECT_EQ(found.isNew, round == 0);
        }
    EXPECT_EQ(numbers.size(), count);
}

TEST(KeyNumbers, everyPartOfAKeyCounts) {
    KeyNumbers numbers;
    EXPECT_EQ(numbers.number({}).number, 0u); // the empty key is a key
    EXPECT_EQ(numbers.number({1, 0, 0}).number, 1u);
    EXPECT_EQ(numbers.number({0, 1, 0}).number, 2u);
    EXPECT_EQ(numbers.number({0, 0, 1}).number, 3u);
    EXPECT_EQ(numbers.number({}).number, 0u);
}

TEST(TextNumbers, equivalentTextsHaveOneNumberAndTheFirstSpelling) {
    TextNumbers numbers;
    const auto composed = numbers.number("\u00e9t\u00e9");
    EXPECT_EQ(numbers.number("e\u0301te\u0301"), composed);
    EXPECT_EQ(numbers.number("\u00e9te\u0301"), composed);
    EXPECT_EQ(numbers.text(composed), "\u00e9t\u00e9");
    EXPECT_NE(numbers.number("ete"), composed);
    EXPECT_NE(numbers.number("\u00c9T\u00c9"), composed);
}

TEST(TextNumbers, anEmptyTextIsNotAnAbsentOne) {
    TextNumbers numbers;
    EXPECT_NE(numbers.number(""), TextNumber::absent);
    EXPECT_EQ(numbers.number(""), numbers.numberKept(""));
    EXPECT_EQ(numbers.text(TextNumber::absent), "");
}

TEST(TextNumbers, holdThroughGrowth) {
    TextNumbers numbers;
    std::vector<std::string> texts;
    for (int i = 0; i < 3000; ++i)
        texts.push_back((i % 2 == 0 ? "title " : "Überschrift ") + std::to_string(i));
    std::vector<TextNumber> first;
    for (const auto& text : texts)
        first.push_back(numbers.number(text));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(numbers.number(texts[i]), first[i]);
        EXPECT_EQ(numbers.text(first[i]), texts[i]);
    }
    EXPECT_EQ(numbers.size(), texts.size() + 1);
}

TEST(TextNumbers, keepWhatTheyAreToldToKeep) {
    TextNumbers numbers;
    const auto number = numbers.numberKept(std::string("a text that goes away, longer than a small one"));
    EXPECT_EQ(numbers.text(number), "a text that goes away, longer than a small one");
}

} // namespace
} // namespace kestrio
