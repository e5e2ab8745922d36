#include "Kestrio/Platform/Linux/TabFrames.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace kestrio {
namespace {

std::string announcing(std::uint32_t length) {
    std::string bytes(sizeof length, '\0');
    std::memcpy(bytes.data(), &length, sizeof length);
    return bytes;
}

std::vector<std::string> all(TabFrameReader& reader) {
    std::vector<std::string> texts;
    while (auto text = reader.next())
        texts.push_back(*text);
    return texts;
}

TEST(TabFrames, aTextComesOutAsItWentIn) {
    for (const auto& text : {std::string("{}"), std::string("\0\xFF", 2), std::string(longestTabFrame, 'x')}) {
        TabFrameReader reader;
        reader.add(tabFrame(text));
        EXPECT_EQ(all(reader), std::vector{text});
        EXPECT_FALSE(reader.isBroken());
    }
}

TEST(TabFrames, piecesOfAnySizeArePutTogether) {
    const auto stream = tabFrame("one") + tabFrame("two") + tabFrame(std::string(300, 'x')) + tabFrame("four");
    for (std::size_t size = 1; size <= stream.size(); ++size) {
        TabFrameReader reader;
        std::vector<std::string> texts;
        for (std::size_t at = 0; at < stream.size(); at += size) {
            reader.add(std::string_view(stream).substr(at, size));
            for (auto& text : all(reader))
                texts.push_back(std::move(text));
        }
        EXPECT_EQ(texts, (std::vector<std::string>{"one", "two", std::string(300, 'x'), "four"})) << size;
    }
}

TEST(TabFrames, aLengthThatNoMessageHasBreaksTheStreamForGood) {
    for (const auto length :
         {std::uint32_t{0}, static_cast<std::uint32_t>(longestTabFrame + 1), 64U * 1024 * 1024, UINT32_MAX}) {
        TabFrameReader reader;
        reader.add(tabFrame("before") + announcing(length));
        EXPECT_EQ(all(reader), std::vector<std::string>{"before"}) << length;
        EXPECT_TRUE(reader.isBroken()) << length;
        reader.add(tabFrame("after"));
        EXPECT_TRUE(all(reader).empty()) << length;
    }
}

TEST(TabFrames, aMessageThatIsNotThereWholeIsWaitedFor) {
    TabFrameReader reader;
    const auto frame = tabFrame("text");
    reader.add(frame.substr(0, frame.size() - 1));
    EXPECT_TRUE(all(reader).empty());
    EXPECT_FALSE(reader.isBroken());
}

} // namespace
} // namespace kestrio
