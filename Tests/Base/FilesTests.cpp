#include "Kestrio/Base/Files.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

mode_t mode(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST(Files, foldersAreMadeForTheOwnerAloneWithThoseAbove) {
    const TemporaryFolder base;
    fs::permissions(base.path(), fs::perms(0755));
    EXPECT_FALSE(makeFolder(base.path() / "a" / "b"));
    EXPECT_EQ(mode(base.path() / "a"), mode_t{0700});
    EXPECT_EQ(mode(base.path() / "a" / "b"), mode_t{0700});
    EXPECT_EQ(mode(base.path()), mode_t{0755});
}

TEST(Files, onlyThePrivateFolderItselfIsTightened) {
    struct Row {
        mode_t before, after;
    };
    const TemporaryFolder base;
    const auto folder = base.path() / "a";
    for (const auto& row : {Row{0755, 0700}, Row{0700, 0700}, Row{0777, 0700}, Row{0550, 0500}}) {
        fs::create_directories(folder);
        chmod(folder.c_str(), row.before);
        EXPECT_FALSE(makeFolder(folder));
        EXPECT_EQ(mode(folder), row.before);
        EXPECT_FALSE(makePrivateFolder(folder));
        EXPECT_EQ(mode(folder), row.after) << std::oct << row.before;
    }
}

TEST(Files, aPrivateFileKeepsItsContents) {
    const TemporaryFolder base;
    const auto file = base.write("notes", "mine");
    chmod(file.c_str(), 0644);
    EXPECT_FALSE(makePrivateFile(file));
    EXPECT_EQ(mode(file), mode_t{0600});
    EXPECT_EQ(fileText(file), "mine");
    EXPECT_FALSE(makePrivateFile(base.path() / "new"));
    EXPECT_EQ(mode(base.path() / "new"), mode_t{0600});
}

TEST(Files, whatStandsInTheWayIsSaid) {
    const TemporaryFolder base;
    base.write("file", "");
    EXPECT_EQ(makeFolder(base.path() / "file" / "folder"), std::errc::not_a_directory);
    EXPECT_EQ(makePrivateFolder(base.path() / "file"), std::errc::not_a_directory);
    EXPECT_EQ(makePrivateFile(base.path() / "none" / "file"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(makePrivateFile(base.path()), std::errc::is_a_directory);
}

} // namespace
} // namespace kestrio
