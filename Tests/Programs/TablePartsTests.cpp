#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/LiveScreen.h"
#include "Programs/CommandLine/TableParts.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(TableParts, aBarIsDrawnInEighths) {
    const std::pair<double, const char*> rows[] = {{0, "    "},   {1e-9, "▏   "},    {0.25, "█   "}, {0.28125, "█▏  "},
                                                   {0.5, "██  "}, {0.96875, "███▉"}, {1, "████"},    {7, "████"}};
    for (const auto& [share, text] : rows) {
        EXPECT_EQ(bar(share, 4), text) << share;
        EXPECT_EQ(text::columns(bar(share, 4)), 4u) << share;
    }
}

TEST(TableParts, textIsPaddedByColumnsAndNotByBytes) {
    EXPECT_EQ(padded("é", 3), "é  ");
    EXPECT_EQ(paddedLeft("日本", 5), " 日本");
    EXPECT_EQ(padded("long", 2), "long");
    EXPECT_EQ(paddedLeft("long", 2), "long");
}

TEST(TableParts, colourIsLeftOutWhereItIsNotWanted) {
    EXPECT_EQ(Painter(true).bold("x"), "\x1B[1mx\x1B[0m");
    EXPECT_EQ(Painter(true).bold(""), "");
    EXPECT_EQ(Painter(false).shade(3, "x"), "x");
}

TEST(LiveScreen, aFrameIsPutOverTheOneBefore) {
    EXPECT_EQ(frameOf("one\ntwo\n"), "\x1B[Hone\x1B[K\r\ntwo\x1B[K\x1B[J");
    EXPECT_EQ(frameOf("one\n\nthree"), "\x1B[Hone\x1B[K\r\n\x1B[K\r\nthree\x1B[K\x1B[J");
    EXPECT_EQ(frameOf(""), "\x1B[H\x1B[J");
}

} // namespace
} // namespace kestrio
