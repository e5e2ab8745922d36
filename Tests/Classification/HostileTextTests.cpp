// What the text tools must survive: other programs and web pages choose these texts.
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

namespace kestrio {
namespace {

std::string times(std::size_t count, std::string_view piece) {
    std::string text;
    text.reserve(count * piece.size());
    for (std::size_t at = 0; at < count; ++at)
        text += piece;
    return text;
}

void useEverything(const std::string& text) {
    (void)TitleCleaner::removingAppName(TitleCleaner::clean(text), text);
    (void)TitleCleaner::removingAppName(text + " - " + text, text);
    (void)URLTools::domain(text);
    (void)YouTube::videoID(text);
    (void)YouTube::searchQuery(text);
    (void)YouTube::cleanTitle(text);
}

constexpr std::size_t megabytes = 1024 * 1024;

TEST(HostileText, titlesOfManyMegabytesAreCleanedInOnePass) {
    EXPECT_EQ(TitleCleaner::clean(times(4 * megabytes, "*")), "");
    EXPECT_EQ(TitleCleaner::clean(times(megabytes, "\u200B")), "");
    EXPECT_EQ(TitleCleaner::clean("(" + times(4 * megabytes, "1") + ") a"), "a");
    EXPECT_EQ(TitleCleaner::clean("(" + times(4 * megabytes, "1")).size(), TitleCleaner::longestTitle);
    EXPECT_EQ(TitleCleaner::clean("(1)" + times(4 * megabytes, " ")), "");
    EXPECT_EQ(TitleCleaner::clean(times(megabytes, "字")), times(400, "字"));
    EXPECT_EQ(TitleCleaner::clean("a" + times(megabytes, "\u0301")).size(), 1 + 2 * megabytes); // one character
    EXPECT_EQ(TitleCleaner::removingAppName(times(megabytes, " - "), "é"), times(megabytes, " - "));
    EXPECT_EQ(TitleCleaner::removingAppName(times(megabytes, " - é") + " - e\u0301", "é"), times(megabytes, " - é"));
}

TEST(HostileText, addressesOfManyMegabytesComeApartInOnePass) {
    for (const std::string_view front : {"", "http://", "http://a/", "http://a/?v=", "http://youtu.be/", "http://[",
                                         "http://a:", "http://a@", "https://www.youtube.com/watch?", "/results?"})
        for (const std::string_view piece :
             {"a", "/", "?", "&", "%", "%25", "%41", "@", ":", "1", "[", ".", " ", "ü", "v="})
            useEverything(std::string(front) + times(megabytes, piece));
    EXPECT_EQ(URLTools::domain("http://" + times(megabytes, "a") + "/"), times(megabytes, "a"));
    EXPECT_EQ(URLTools::domain("http://a/" + times(megabytes, "/")), "a");
    EXPECT_EQ(YouTube::videoID("https://youtu.be" + times(megabytes, "/") + "abc"), "abc");
}

TEST(HostileText, nestedPercentSignsAreTakenAwayOnce) {
    std::string nested = "%";
    for (int depth = 0; depth < 1000; ++depth)
        nested.insert(1, "25");
    EXPECT_EQ(YouTube::searchQuery("/results?search_query=" + nested), nested.substr(0, nested.size() - 2));
    EXPECT_EQ(URLTools::domain("http://%2525252541.example/"), "%25252541.example");
}

TEST(HostileText, controlCharactersPassThroughTitlesUnchanged) {
    using namespace std::string_view_literals;
    EXPECT_EQ(TitleCleaner::clean("a\0b\x1B[31m\x7F"sv), "a\0b\x1B[31m\x7F"sv);
    EXPECT_EQ(TitleCleaner::clean("\x1F(3) a"), "\x1F(3) a");
}

TEST(HostileText, illFormedBytesAreNeitherDecorationNorCountersNorFatal) {
    EXPECT_EQ(TitleCleaner::clean("\xFF* a"), "\xFF* a");
    EXPECT_EQ(TitleCleaner::clean("* \xE2\x97"), "\xE2\x97");
    EXPECT_EQ(TitleCleaner::clean("(\xE0) a"), "(\xE0) a");
    EXPECT_EQ(TitleCleaner::removingAppName("a - \xFF", "\xFF"), "a");
}

TEST(HostileText, anyBytesAreSurvived) {
    rc::check([](const std::string& bytes) { useEverything(bytes); });
}

TEST(HostileText, anyPutTogetherAddressIsSurvived) {
    const auto piece = rc::gen::element<std::string>(
        "http", "https", ":", "//", "/", "?", "#", "&", "=", "%", "%4", "%41", "%FF", "www.", "m.", "mobile.",
        "youtube.com", "youtu.be", "watch", "results", "search_query", "v", "shorts", "localhost", "127.0.0.1", ":80",
        "@", "[", "]", "::1", " ", "ü", "\xFF", "+", "a", "(1)", "*");
    rc::check([&] {
        std::string text;
        for (const auto& part : *rc::gen::container<std::vector<std::string>>(piece))
            text += part;
        useEverything(text);
        if (const auto domain = URLTools::domain(text)) {
            RC_ASSERT(!domain->empty());
            RC_ASSERT(text::lowercased(*domain) == *domain);
        }
        if (const auto id = YouTube::videoID(text))
            RC_ASSERT(!id->empty());
        if (const auto query = YouTube::searchQuery(text))
            RC_ASSERT(text::trimmedOfBlanks(*query) == *query && !query->empty());
    });
}

TEST(HostileText, aCleanTitleIsShortAndHoldsNoInvisibleMark) {
    rc::check([](const std::vector<std::uint32_t>& numbers) {
        std::string title;
        for (const auto number : numbers) {
            const std::string_view pieces[] = {"*",      "(", "1",  ")",       " ", "\u200B",
                                               "\u200D", "😀", "字", "e\u0301", "a", "●"};
            title += pieces[number % std::size(pieces)];
        }
        const auto clean = TitleCleaner::clean(title + title + title);
        RC_ASSERT(text::characterCount(clean) <= TitleCleaner::longestTitle);
        RC_ASSERT(text::withoutInvisibleMarks(clean) == clean);
        RC_ASSERT(!clean.starts_with(" "));
    });
}

} // namespace
} // namespace kestrio
