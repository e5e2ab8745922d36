#include "Kestrio/Platform/Linux/ProcessTexts.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrio {
namespace {

using std::string_literals::operator""s;

/// A line of `stat` as a kernel of our days writes it, with this name.
std::string statOf(const std::string& name) {
    return "4711 (" + name +
           ") S 4700 4711 4711 0 -1 4194304 1234 55 66 77 120 30 8 9 20 0 12 0 987654 53841920 5253 " +
           "18446744073709551615 94000000000000 94000000100000 140720000000000 0 0 0 0 4096 1256 0 0 0 17 3 0 0 0 0 "
           "0 " +
           "0 0 0 0 0 0 0 0\n";
}

TEST(ProcessStat, isReadFieldByField) {
    const auto text = statOf("firefox-esr");
    EXPECT_EQ(parseProcessStat(text), (ProcessStat{.name = "firefox-esr",
                                                   .state = 'S',
                                                   .parent = 4700,
                                                   .isKernelThread = false,
                                                   .majorFaults = 66,
                                                   .cpuTicks = 150,
                                                   .startTicks = 987654,
                                                   .startCode = 94000000000000,
                                                   .startStack = 140720000000000,
                                                   .processor = 3}));
}

TEST(ProcessStat, isReadWhateverTheProcessCallsItself) {
    const auto plain = parseProcessStat(statOf("x")).value();
    for (const auto& name : {"a b"s, "a) S 1 (b"s, "((("s, ")))"s, ""s, "two\nlines"s, "\xFF\xFE\x80"s, ") R 9 9 9"s,
                             "nul\0byte"s, "17 18 19"s}) {
        const auto text = statOf(name);
        const auto stat = parseProcessStat(text);
        ASSERT_TRUE(stat) << name;
        EXPECT_EQ(stat->name, name);
        EXPECT_EQ(stat->parent, plain.parent) << name;
        EXPECT_EQ(stat->startTicks, plain.startTicks) << name;
        EXPECT_EQ(stat->processor, plain.processor) << name;
    }
}

TEST(ProcessStat, knowsTheKernelsOwnThreads) {
    const auto text = "2 (kthreadd) S 0 0 0 0 -1 2129984 0 0 0 0 0 1 0 0 20 0 1 0 2 0 0 18446744073709551615 0 0 0 0 0 "
                      "0 0 2147483647 0 0 0 0 0 1 0 0 0 0 0 0 0 0 0 0 0 0 0\n";
    EXPECT_TRUE(parseProcessStat(text).value().isKernelThread);
    EXPECT_FALSE(parseProcessStat(statOf("x")).value().isKernelThread);
}

TEST(ProcessStat, passesOverTheSignOfFieldsThatHaveOne) {
    const auto text = "1 (x) S 1 2 3 -1 -1 0 0 0 7 0 10 20 -5 -6 -20 -2 1 0 99 0 0 0 5 0 6";
    const auto stat = parseProcessStat(text);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->cpuTicks, 30u);
    EXPECT_EQ(stat->startTicks, 99u);
    EXPECT_EQ(stat->startStack, 6u);
}

TEST(ProcessStat, lacksTheProcessorUnderKernelsThatDoNotTellIt) {
    const auto stat = parseProcessStat("1 (x) S 1 2 3 0 0 0 0 0 7 0 10 20 0 0 20 0 1 0 99 0 0 0 5 0 6 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->processor, std::nullopt);
}

TEST(ProcessStat, isAbsentWhereAFieldIsMissingOrNoNumber) {
    for (const auto& text : {""s, "1"s, "1 x S 1"s, "1 (x"s, "1 x)"s, ")("s, "1 (x)"s, "1 (x) S"s, "1 (x) SS 1 2 3"s,
                             "1 (x) S 1 2 3 0 0 0 0 0 7 0 10 20 0 0 20 0 1 0 99 0 0 0 5 0\n"s,
                             "1 (x) S 1 2 3 0 0 0 0 0 7 0 ten 20 0 0 20 0 1 0 99 0 0 0 5 0 6\n"s,
                             "1 (x) S 1 2 3 0 0 0 0 0 7 0 10 20\n0 0 20 0 1 0 99 0 0 0 5 0 6\n"s})
        EXPECT_EQ(parseProcessStat(text), std::nullopt) << text;
}

TEST(ProcessStatus, isReadInBytes) {
    const auto status = parseProcessStatus("Name:\tfirefox-esr\nUmask:\t0022\nState:\tS (sleeping)\nVmSize:\t 3060 kB\n"
                                           "VmHWM:\t    1712 kB\nVmRSS:\t    1000 kB\nRssAnon:\t     600 kB\n"
                                           "RssFile:\t    300 kB\nRssShmem:\t       100 kB\nVmSwap:\t      50 kB\n"
                                           "Threads:\t1\nvoluntary_ctxt_switches:\t12\n"
                                           "nonvoluntary_ctxt_switches:\t7\n");
    EXPECT_EQ(status, (ProcessStatus{1000 * 1024, 600 * 1024, 100 * 1024, 50 * 1024, 12}));
    EXPECT_EQ(status.footprint(), 750u * 1024);
}

TEST(ProcessStatus, ofAProcessWithoutMemoryIsZero) {
    EXPECT_EQ(parseProcessStatus("Name:\tzombie\nState:\tZ (zombie)\nvoluntary_ctxt_switches:\t3\n"),
              (ProcessStatus{0, 0, 0, 0, 3}));
    EXPECT_EQ(parseProcessStatus(""), ProcessStatus());
}

TEST(ProcessStatus, doesNotBelieveWhatStandsInTheName) {
    EXPECT_EQ(parseProcessStatus("Name:\tVmRSS: 5 kB\nVmRSS:\t 1 kB\n").resident, 1024u);
    EXPECT_EQ(parseProcessStatus("Name:\ta\\nVmRSS: 5 kB\n").resident, 0u);
}

TEST(ProcessPages, areReadFromThreeNumbers) {
    EXPECT_EQ(parseProcessPages("765 428 399 5 0 90 0\n"), (ProcessPages{765, 428, 399}));
    for (const auto* text : {"", "1", "1 2", "1 2 x", "\n"})
        EXPECT_EQ(parseProcessPages(text), std::nullopt) << text;
}

TEST(ProcessDiskUse, isWhatWentToAndCameFromDrives) {
    EXPECT_EQ(parseProcessDiskUse("rchar: 9999\nwchar: 8888\nsyscr: 1\nsyscw: 2\nread_bytes: 4096\nwrite_bytes: 8192\n"
                                  "cancelled_write_bytes: 77\n"),
              (ProcessDiskUse{4096, 8192}));
    for (const auto* text : {"", "read_bytes: 1\n", "write_bytes: 1\n", "read_bytes: x\nwrite_bytes: 1\n"})
        EXPECT_EQ(parseProcessDiskUse(text), std::nullopt) << text;
}

} // namespace
} // namespace kestrio
