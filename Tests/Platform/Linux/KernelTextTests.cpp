#include "Kestrio/Platform/Linux/Descriptor.h"
#include "Kestrio/Platform/Linux/KernelText.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(KernelText, takesNumbersThatStandAlone) {
    EXPECT_EQ(parsedNumber<int>("17"), 17);
    EXPECT_EQ(parsedNumber<int>("-17"), -17);
    EXPECT_EQ(parsedNumber<std::uint64_t>("ff", 16), 255u);
    EXPECT_EQ(parsedDecimal("6.25e-2"), 0.0625);
    for (const auto* text : {"", " 1", "1 ", "1x", "x", "99999999999999999999999"})
        EXPECT_EQ(parsedNumber<std::uint64_t>(text), std::nullopt) << text;
    for (const auto* text : {"", "x", "1.0x"})
        EXPECT_EQ(parsedDecimal(text), std::nullopt) << text;
}

TEST(KernelText, givesWordByWord) {
    std::string_view text = "  one\ttwo   three";
    EXPECT_EQ(nextWord(text), "one");
    EXPECT_EQ(nextWord(text), "two");
    EXPECT_EQ(nextWord(text), "three");
    EXPECT_EQ(nextWord(text), "");
    EXPECT_EQ(nextWord(text), "");
}

TEST(KernelText, givesLineByLineWhetherTheLastOneEndsOrNot) {
    for (std::string_view text : {"one\n\nthree", "one\n\nthree\n"}) {
        EXPECT_EQ(nextLine(text), "one");
        EXPECT_EQ(nextLine(text), "");
        EXPECT_EQ(nextLine(text), "three");
        EXPECT_EQ(nextLine(text), std::nullopt);
    }
}

TEST(KernelText, findsTheNumberThatATextBeginsWith) {
    EXPECT_EQ(leadingNumber("\t  1234 kB"), 1234u);
    EXPECT_EQ(leadingNumber("18446744073709551615"), UINT64_MAX);
    for (const auto* text : {"", "  ", "kB", "-1", "18446744073709551616"})
        EXPECT_EQ(leadingNumber(text), std::nullopt) << text;
}

TEST(KernelText, readsATextOfAnyLengthAgainAndAgain) {
    const TemporaryFolder folder;
    KernelTextBuffer buffer;
    for (const std::size_t length : {0u, 1u, 8191u, 8192u, 8193u, 100'000u, 3u}) {
        const std::string text(length, 'x');
        const auto file = folder.write("text", text);
        EXPECT_EQ(buffer.read(file.c_str()), text) << length;
    }
    EXPECT_EQ(buffer.read((folder.path() / "none").c_str()), std::nullopt);
    EXPECT_EQ(buffer.read(folder.path().c_str()), std::nullopt) << "a folder is no text";
}

TEST(KernelText, readsAListThatTheKernelGivesInPieces) {
    KernelTextBuffer buffer;
    const auto* file = "/proc/kallsyms"; // megabytes, in pieces of a page
    const auto text = buffer.read(file);
    if (!text || text->empty())
        GTEST_SKIP() << "this kernel does not list its names";
    EXPECT_EQ(text->size(), 262'144u);
}

TEST(KernelText, readsOnePieceAgainAndAgainFromAFileThatStaysOpen) {
    const TemporaryFolder folder;
    const auto path = folder.write("text", "one");
    KernelTextBuffer buffer;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(buffer.readPiece(file.number()), "one");
    EXPECT_EQ(buffer.readPiece(file.number()), "one");
    writeFile(path, "two more");
    EXPECT_EQ(buffer.readPiece(file.number()), "two more");
    EXPECT_EQ(buffer.readPiece(path.c_str()), "two more");
    EXPECT_EQ(buffer.readPiece(-1), std::nullopt);
}

TEST(KernelText, endsAtAQuarterOfAMebibyte) {
    const TemporaryFolder folder;
    const auto file = folder.write("text", std::string(2'000'000, 'x'));
    KernelTextBuffer buffer;
    EXPECT_EQ(buffer.read(file.c_str())->size(), 262'144u);
}

TEST(KernelText, aValueIsTheTextWithoutItsEnd) {
    const TemporaryFolder folder;
    EXPECT_EQ(kernelValue(folder.write("a", "0-7\n")), "0-7");
    EXPECT_EQ(kernelValue(folder.write("b", "\n")), "");
    EXPECT_EQ(kernelValue(folder.path() / "none"), std::nullopt);
}

} // namespace
} // namespace kestrio
