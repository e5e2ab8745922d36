#include "Kestrio/Base/VirtualQueue.h"
#include "Programs/Agent/LatestMediaUse.h"

#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

MediaUse playing(const std::string& id) {
    MediaUse use;
    use.playing = {id};
    return use;
}

/// Readers that answer when the test says so.
struct SlowReaders {
    VirtualTime time{Date(1'700'000'000)};
    std::vector<std::function<void(MediaUse)>> asked;
    LatestMediaUse latest{time, [this](auto answer) { asked.push_back(std::move(answer)); }};
};

TEST(LatestMediaUse, isUnknownBeforeTheFirstAnswerWhichItSendsForAtOnce) {
    SlowReaders readers;
    EXPECT_EQ(readers.asked.size(), 1U);
    EXPECT_FALSE(readers.latest.isKnown());
    EXPECT_TRUE(readers.latest.value().playing.empty());
}

TEST(LatestMediaUse, isTheLastAnswerWhileTheNextIsOnItsWay) {
    SlowReaders readers;
    readers.asked[0](playing("music"));
    EXPECT_TRUE(readers.latest.isKnown());
    EXPECT_EQ(readers.latest.value().playing, std::set<std::string>{"music"});
    ASSERT_EQ(readers.asked.size(), 2U);
    readers.asked[1](playing("film"));
    EXPECT_EQ(readers.latest.value().playing, std::set<std::string>{"film"});
}

TEST(LatestMediaUse, doesNotAskReadersThatHangASecondTime) {
    SlowReaders readers;
    for (int question = 0; question < 5; ++question)
        readers.latest.value();
    EXPECT_EQ(readers.asked.size(), 1U);
}

TEST(LatestMediaUse, isUnknownAgainWhenTheLastAnswerIsOld) {
    SlowReaders readers;
    readers.asked[0]({});
    readers.time.advance(LatestMediaUse::lifetime - Seconds(1));
    EXPECT_TRUE(readers.latest.isKnown());
    readers.time.advance(Seconds(1));
    EXPECT_FALSE(readers.latest.isKnown());
}

TEST(LatestMediaUse, takesAnAnswerThatComesAfterItsEnd) {
    std::vector<std::function<void(MediaUse)>> asked;
    VirtualTime time{Date(1'700'000'000)};
    {
        const LatestMediaUse latest(time, [&](auto answer) { asked.push_back(std::move(answer)); });
    }
    asked.at(0)(playing("music"));
}

} // namespace
} // namespace kestrio
