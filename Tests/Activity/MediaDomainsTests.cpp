#include "Kestrio/Activity/MediaDomains.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace kestrio {
namespace {

TEST(MediaDomains, areThirtyThreePlainHosts) {
    EXPECT_EQ(mediaDomains.size(), 33u);
    EXPECT_EQ(std::set<std::string_view>(mediaDomains.begin(), mediaDomains.end()).size(), 33u);
    for (const auto domain : mediaDomains)
        EXPECT_TRUE(isMediaPage("https://" + std::string(domain) + "/x")) << domain;
}

TEST(MediaDomains, countAPartOfASiteButNotALookAlike) {
    struct Row {
        const char* url;
        bool isMedia;
    };
    const Row rows[] = {
        {"https://www.netflix.com/watch/1", true},
        {"https://help.netflix.com/", true},
        {"https://notnetflix.com/", false},
        {"https://netflix.com.example.org/", false},
        {"https://www.youtube.com/watch?v=abc", true},
        {"https://www.youtube.com/", false},
        {"https://music.youtube.com/", true},
        {"https://youtu.be/abc", true},
        {"https://spotify.com/", false},
        {"https://open.spotify.com/track/1", true},
        {"https://meet.google.com/abc", true},
        {"https://google.com/", false},
        {"about:blank", false},
        {"", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isMediaPage(row.url), row.isMedia) << row.url;
}

} // namespace
} // namespace kestrio
