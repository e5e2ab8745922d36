// The file that the drive's speed is measured by, on real file systems.
#include "Kestrio/Platform/Linux/LinuxDisks.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <memory>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// A folder of the build, which lies on a drive more often than the temporary one does.
class DriveFolder {
public:
    DriveFolder() { fs::create_directories(path); }
    ~DriveFolder() { fs::remove_all(path); }
    const fs::path path = fs::current_path() / ("speed-test-" + std::to_string(getpid()));
};

struct Block {
    alignas(SpeedTestFile::alignment) std::byte bytes[1 << 20];
};

bool isInMemory(const fs::path& folder) {
    struct statfs system {};
    return statfs(folder.c_str(), &system) != 0 || system.f_type == TMPFS_MAGIC || system.f_type == RAMFS_MAGIC;
}

TEST(SpeedTestFile, givesBackWhatWasWritten) {
    const DriveFolder folder;
    if (isInMemory(folder.path))
        GTEST_SKIP() << "the build lies in memory";
    const auto file = makeSpeedTestFile(folder.path);
    ASSERT_TRUE(file);
    const auto block = std::make_unique<Block>();
    std::fill(std::begin(block->bytes), std::end(block->bytes), std::byte{7});
    EXPECT_TRUE(file->write(block->bytes));
    std::fill(std::begin(block->bytes), std::end(block->bytes), std::byte{8});
    EXPECT_TRUE(file->write(block->bytes));
    EXPECT_TRUE(file->flush());
    EXPECT_TRUE(file->rewind());
    EXPECT_TRUE(file->read(block->bytes));
    EXPECT_EQ(block->bytes[12345], std::byte{7});
    EXPECT_TRUE(file->read(block->bytes));
    EXPECT_EQ(block->bytes[12345], std::byte{8});
    EXPECT_FALSE(file->read(block->bytes)) << "there is no more";
}

TEST(SpeedTestFile, hasNoNameWhileItIsThereAndLeavesNothing) {
    const DriveFolder folder;
    if (isInMemory(folder.path))
        GTEST_SKIP() << "the build lies in memory";
    auto file = makeSpeedTestFile(folder.path);
    const auto block = std::make_unique<Block>();
    ASSERT_TRUE(file && file->write(block->bytes));
    EXPECT_TRUE(fs::is_empty(folder.path));
    file.reset();
    EXPECT_TRUE(fs::is_empty(folder.path));
}

TEST(SpeedTestFile, isGoneWhenItsProgramIsKilledInTheMiddle) {
    const DriveFolder folder;
    if (isInMemory(folder.path))
        GTEST_SKIP() << "the build lies in memory";
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    if (child == 0) {
        const auto file = makeSpeedTestFile(folder.path);
        const auto block = std::make_unique<Block>();
        const bool isWritten = file && file->write(block->bytes);
        if (write(channel[1], isWritten ? "y" : "n", 1) == 1)
            pause();
        _exit(0);
    }
    char answer = 0;
    ASSERT_EQ(read(channel[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(fs::is_empty(folder.path));
    close(channel[0]);
    close(channel[1]);
}

TEST(SpeedTestFile, isNotMadeInMemoryNorWhereNothingCanBeMade) {
    EXPECT_FALSE(makeSpeedTestFile("/nonexistent"));
    EXPECT_FALSE(makeSpeedTestFile("/proc"));
    if (isInMemory("/dev/shm")) {
        EXPECT_FALSE(makeSpeedTestFile("/dev/shm"));
    }
}

TEST(LinuxDisks, putTheTestFileIntoTheFirstFolderThatTakesIt) {
    const DriveFolder folder;
    if (isInMemory(folder.path))
        GTEST_SKIP() << "the build lies in memory";
    EXPECT_TRUE(LinuxDisks({"/nonexistent", "/proc", folder.path}).makeSpeedTestFile());
    EXPECT_FALSE(LinuxDisks({"/nonexistent"}).makeSpeedTestFile());
}

} // namespace
} // namespace kestrio
