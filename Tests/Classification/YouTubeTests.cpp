#include "Kestrio/Classification/TextTools.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

struct Row {
    std::string_view text;
    std::optional<std::string> found;
};

TEST(YouTube, theSiteAndItsShortLinksCountAndItsMusicDoesNot) {
    EXPECT_TRUE(YouTube::isYouTube("youtube.com"));
    EXPECT_TRUE(YouTube::isYouTube("youtu.be"));
    for (const auto* domain : {"music.youtube.com", "www.youtube.com", "YouTube.com", "notyoutube.com",
                               "youtube.com:80", "youtube-nocookie.com", ""})
        EXPECT_FALSE(YouTube::isYouTube(domain)) << domain;
    EXPECT_FALSE(YouTube::isYouTube(std::nullopt));
}

TEST(YouTube, theMobileSiteCountsByItsDomain) {
    EXPECT_TRUE(YouTube::isYouTube(URLTools::domain("https://m.youtube.com/watch?v=abc")));
    EXPECT_TRUE(YouTube::isYouTube(URLTools::domain("https://www.youtube.com/")));
    EXPECT_FALSE(YouTube::isYouTube(URLTools::domain("https://music.youtube.com/")));
}

TEST(YouTube, aVideoIsFoundInEachKindOfAddress) {
    const Row rows[] = {
        {"https://www.youtube.com/watch?v=dQw4w9WgXcQ", "dQw4w9WgXcQ"},
        {"https://youtube.com/watch?v=abc&t=10s", "abc"},
        {"https://youtube.com/watch?list=x&v=abc", "abc"},
        {"https://youtube.com/watch?v=abc#t=1", "abc"},
        {"https://m.youtube.com/watch?v=abc", "abc"},
        {"https://music.youtube.com/watch?v=abc", "abc"},
        {"HTTPS://WWW.YOUTUBE.COM/watch?v=abc", "abc"},
        {"https://www.youtube.com/%77atch?v=abc", "abc"},
        {"https://www.youtube.com/watch?%76=abc", "abc"},
        {"https://youtu.be/abc", "abc"},
        {"https://youtu.be/abc?t=10", "abc"},
        {"https://youtu.be//abc/def", "abc"},
        {"https://www.youtu.be/abc", "abc"},
        {"https://www.youtube.com/shorts/abc", "abc"},
        {"https://www.youtube.com/shorts/abc/more?x=y", "abc"},
        {"https://www.youtube.com//shorts//abc", "abc"},
        {"https://www.youtube.com/live/abc?feature=share", "abc"},
        {"https://www.youtube.com/embed/abc", "abc"},
        {"ftp://www.youtube.com/embed/abc", "abc"},
        {"//www.youtube.com/embed/abc", "abc"},
        {"https://www.youtube.com/watch?v=a%20b", "a b"},
        {"https://www.youtube.com/watch?v=a+b", "a+b"},
        {"https://www.youtube.com/watch?v=a=b", "a=b"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(YouTube::videoID(row.text), row.found) << row.text;
}

TEST(YouTube, theFirstItemNamedVDecidesWhateverItsValue) {
    const Row rows[] = {
        {"https://www.youtube.com/watch?v=first&v=second", "first"},
        {"https://www.youtube.com/watch?v=&v=second", std::nullopt},
        {"https://www.youtube.com/watch?v&v=second", std::nullopt},
        {"https://www.youtube.com/watch?v=%FF&v=second", std::nullopt},
        {"https://www.youtube.com/watch?V=other&v=abc", "abc"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(YouTube::videoID(row.text), row.found) << row.text;
}

TEST(YouTube, otherAddressesShowNoVideo) {
    for (const std::string_view url : {"https://www.youtube.com/",
                                       "https://www.youtube.com",
                                       "https://www.youtube.com/watch",
                                       "https://www.youtube.com/watch/",
                                       "https://www.youtube.com/watch/?v=abc",
                                       "https://www.youtube.com/watch?v=",
                                       "https://www.youtube.com/watch?",
                                       "https://www.youtube.com/Watch?v=abc",
                                       "https://www.youtube.com/shorts",
                                       "https://www.youtube.com/shorts/",
                                       "https://www.youtube.com/@channel/videos",
                                       "https://www.youtube.com/channel/abc",
                                       "https://www.youtube.com/playlist?list=abc",
                                       "https://youtu.be/",
                                       "https://youtu.be",
                                       "https://youtu.be/?v=abc",
                                       "https://youtube.com.example.org/watch?v=abc",
                                       "https://vimeo.com/123",
                                       "/watch?v=abc",
                                       "",
                                       "https://www.youtube.com/watch?v=a b",
                                       "https://www.youtube.com/watch?v=ü",
                                       "https://youtu.be/%FF"})
        EXPECT_EQ(YouTube::videoID(url), std::nullopt) << url;
}

TEST(YouTube, theHostIsComparedByItsEnding) {
    EXPECT_EQ(YouTube::videoID("https://gaming.youtube.com/watch?v=abc"), "abc");
    EXPECT_EQ(YouTube::videoID("https://notyoutube.com/watch?v=abc"), "abc");
    EXPECT_EQ(YouTube::videoID("https://youtube.com:8080/watch?v=abc"), "abc");
    EXPECT_EQ(YouTube::videoID("https://youtube.com./watch?v=abc"), std::nullopt);
}

TEST(YouTube, aResultsPageTellsWhatWasSearchedFor) {
    const Row rows[] = {
        {"https://www.youtube.com/results?search_query=two+words", "two words"},
        {"https://www.youtube.com/results?search_query=c%2B%2B+tutorial", "c++ tutorial"},
        {"https://www.youtube.com/results?search_query=%E6%9D%B1%E4%BA%AC", "東京"},
        {"https://www.youtube.com/results?sp=x&search_query=a&search_query=b", "a"},
        {"https://www.youtube.com/results?search_query=++a++", "a"},
        {"https://www.youtube.com/results?search_query=%09a%20%E3%80%80", "a"},
        {"https://www.youtube.com/results?search_query=%0Aa", "\na"},
        {"https://www.youtube.com/results?search_query=a=b", "a=b"},
        {"https://www.youtube.com/results?search_query=100%25", "100%"},
        {"https://example.com/results?search_query=a", "a"},
        {"/results?search_query=a", "a"},
        {"https://www.youtube.com/%72esults?search_query=a", "a"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(YouTube::searchQuery(row.text), row.found) << row.text;
}

TEST(YouTube, otherPagesWereNotSearchedFor) {
    for (const std::string_view url :
         {"https://www.youtube.com/results", "https://www.youtube.com/results?", "https://www.youtube.com/results?q=a",
          "https://www.youtube.com/results?search_query", "https://www.youtube.com/results?search_query=",
          "https://www.youtube.com/results?search_query=+%20+", "https://www.youtube.com/results?search_query=%FF",
          "https://www.youtube.com/results?search_query=&search_query=b",
          "https://www.youtube.com/results?%73earch_query=a", "https://www.youtube.com/results/?search_query=a",
          "https://www.youtube.com/watch?search_query=a", "https://www.youtube.com/results?search_query=ü", ""})
        EXPECT_EQ(YouTube::searchQuery(url), std::nullopt) << url;
}

TEST(YouTube, aTitleLosesTheSitesSignatureAndBlanksAround) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"Song - YouTube", "Song"},
        {"Song – YouTube", "Song"},
        {"Song — YouTube", "Song"},
        {"  Song \t", "Song"},
        {" Song  - YouTube", "Song"},
        {"Song - YouTube ", "Song - YouTube"},
        {"Song - YouTube - YouTube", "Song - YouTube"},
        {"Song — YouTube - YouTube", "Song — YouTube"},
        {"Song - YouTube Music", "Song - YouTube Music"},
        {"Song | YouTube", "Song | YouTube"},
        {" - YouTube", ""},
        {"YouTube", "YouTube"},
        {"\nSong", "\nSong"},
        {"", ""},
    };
    for (const auto& [title, becomes] : rows)
        EXPECT_EQ(YouTube::cleanTitle(title), becomes) << title;
}

TEST(YouTube, aVideoHasOneAddressInReports) {
    EXPECT_EQ(YouTube::canonicalURL("abc", false), "https://www.youtube.com/watch?v=abc");
    EXPECT_EQ(YouTube::canonicalURL("abc", true), "https://www.youtube.com/shorts/abc");
    EXPECT_EQ(YouTube::canonicalURL("a b&c", false), "https://www.youtube.com/watch?v=a b&c");
    EXPECT_EQ(YouTube::videoID(YouTube::canonicalURL("abc", true)), "abc");
    EXPECT_EQ(YouTube::videoID(YouTube::canonicalURL("abc", false)), "abc");
}

} // namespace
} // namespace kestrio
