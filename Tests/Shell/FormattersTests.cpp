#include "Kestrio/Shell/Formatters.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(Fmt, durationsHaveTheirTwoLargestUnits) {
    struct Row {
        double seconds;
        const char* text;
    };
    const Row rows[] = {
        {0, "0s"},          {0.4, "0s"},       {0.5, "1s"},     {1, "1s"},        {59, "59s"},     {59.4, "59s"},
        {59.5, "1m"},       {60, "1m"},        {119, "1m"},     {120, "2m"},      {3599.4, "59m"}, {3599.5, "1h"},
        {3600, "1h"},       {3659, "1h"},      {3660, "1h 1m"}, {7199, "1h 59m"}, {7200, "2h"},    {86'400, "24h"},
        {90'061, "25h 1m"}, {360'000, "100h"}, {-5, "-5s"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Fmt::duration(Seconds(row.seconds)), row.text) << row.seconds;
}

} // namespace
} // namespace kestrio
