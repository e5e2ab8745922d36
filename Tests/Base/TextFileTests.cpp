#include "Kestrio/Base/Text.h"
#include "Kestrio/Base/TextFile.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

Descriptor opened(const fs::path& file) {
    return Descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
}

std::vector<std::string> names(const fs::path& folder) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder))
        found.push_back(entry.path().filename());
    return found;
}

TEST(WellFormedLength, endsBeforeTheFirstByteThatIsNoText) {
    struct Row {
        std::string bytes;
        std::size_t length;
    };
    const Row table[] = {
        {"", 0},
        {"plain ASCII, longer than eight bytes", 36},
        {"é", 2},
        {"12345678é", 10},
        {"😀", 4},
        {"12345678\xFF", 8},
        {"12\xC3", 2},               // cut off
        {"12\xE2\x82", 2},           // cut off
        {"\xF0\x9F\x98", 0},         // cut off
        {"\xC0\x80", 0},             // overlong
        {"ab\xED\xA0\x80", 2},       // a surrogate
        {"\xF4\x90\x80\x80", 0},     // beyond Unicode
        {std::string("a\0b", 3), 3}, // U+0000 is a character
    };
    for (const auto& row : table)
        EXPECT_EQ(text::wellFormedLength(row.bytes), row.length) << row.bytes;
}

TEST(ReadText, deliversWholeCharactersHoweverThePiecesFall) {
    const TemporaryFolder folder;
    for (const std::size_t lead : {0u, 1u, 2u, 3u}) {
        std::string text(lead, 'x');
        while (text.size() < 3'000'000)
            text += "€😀é";
        const auto file = folder.write("text", text);
        std::string found;
        std::size_t pieces = 0;
        const auto error = readText(opened(file), [&](std::string_view piece) {
            EXPECT_EQ(text::wellFormedLength(piece), piece.size());
            found += piece;
            ++pieces;
        });
        EXPECT_FALSE(error) << error.message();
        EXPECT_EQ(found, text);
        EXPECT_GT(pieces, 2u);
    }
}

TEST(ReadText, refusesWhatIsNoText) {
    const TemporaryFolder folder;
    for (const std::string tail : {"\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xFF and more after it"}) {
        const auto file = folder.write("text", std::string(2'000'000, 'x') + tail);
        EXPECT_EQ(readText(opened(file), [](std::string_view) {}), std::errc::illegal_byte_sequence);
    }
}

TEST(ReadText, saysWhatTheSystemSays) {
    const TemporaryFolder folder;
    EXPECT_EQ(readText(opened(folder.path()), [](std::string_view) {}), std::errc::is_a_directory);
    EXPECT_EQ(readText(Descriptor(), [](std::string_view) {}), std::errc::bad_file_descriptor);
}

TEST(ReadText, doesNotWaitForAPipeWhenItIsStopped) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    ASSERT_FALSE(writeAll(writing, "begun"));
    std::stop_source stop;
    const auto error = readText(
        reading, [&](std::string_view) { stop.request_stop(); }, stop.get_token());
    EXPECT_EQ(error, std::errc::operation_canceled);
}

TEST(ReplacementFile, takesTheFilesPlaceAtTheEnd) {
    const TemporaryFolder folder;
    const auto file = folder.write("report.csv", "old");
    ReplacementFile replacement(file, 0640);
    const std::string line(1000, 'x');
    for (int i = 0; i < 5000; ++i)
        replacement.write(line);
    EXPECT_EQ(fileText(file), "old");
    EXPECT_EQ(names(folder.path()).size(), 2u);
    EXPECT_FALSE(replacement.commit());
    EXPECT_EQ(fileText(file).size(), 5'000'000u);
    EXPECT_EQ(names(folder.path()), std::vector<std::string>{"report.csv"});
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(ReplacementFile, leavesNothingWhenItIsGivenUp) {
    const TemporaryFolder folder;
    const auto file = folder.write("report.csv", "old");
    { ReplacementFile(file, 0600).write("new"); }
    EXPECT_EQ(fileText(file), "old");
    EXPECT_EQ(names(folder.path()), std::vector<std::string>{"report.csv"});
}

TEST(ReplacementFile, thatCannotBeMadeSaysSoAtTheEnd) {
    const TemporaryFolder folder;
    ReplacementFile replacement(folder.path() / "missing" / "report.csv", 0600);
    replacement.write("new");
    EXPECT_EQ(replacement.commit(), std::errc::no_such_file_or_directory);
    ReplacementFile onFolder(folder.path(), 0600);
    EXPECT_EQ(onFolder.commit(), std::errc::is_a_directory);
}

} // namespace
} // namespace kestrio
