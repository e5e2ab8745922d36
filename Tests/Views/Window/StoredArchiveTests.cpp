#include "Programs/Window/StoredArchive.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

constexpr Date noon{1'700'000'000};

struct StoredArchiveTest : testing::Test {
    void record() {
        Database database(file, queue);
        database.insert({"org.example.app", "App", "Title", {}, {}, {}, SessionKind::focus}, noon, noon + Seconds(60));
    }

    TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "Kestrio" / "activity.sqlite";
    WorkerQueue queue{"Kestrio.database"};
    AgentLink agent{queue, queue, [](auto) -> std::optional<AgentConnection> { return std::nullopt; }};
    StoredHistory history{file, agent};
    StoredArchive archive{file, history};
};

TEST_F(StoredArchiveTest, tellsWhatIsStored) {
    record();
    const auto stored = archive.stored();
    EXPECT_EQ(stored.fileName, "activity.sqlite");
    EXPECT_GT(stored.bytes, 0U);
    EXPECT_EQ(stored.sessions, 1);
    EXPECT_EQ(stored.since, noon);
    EXPECT_EQ(stored.trouble, std::nullopt);
    ASSERT_EQ(archive.appTotals().size(), 1U);
    EXPECT_TRUE(archive.domainTotals().empty());
}

TEST_F(StoredArchiveTest, whatCannotBeReadIsToldAndLooksLikeNothingElse) {
    EXPECT_EQ(archive.stored().trouble, DatabaseTrouble::missing);
    record();
    std::ofstream(file, std::ios::trunc) << std::string(4096, 'x');
    for (const auto* const sidecar : {"-wal", "-shm"})
        std::filesystem::remove(file.string() + sidecar);
    EXPECT_EQ(archive.stored().trouble, DatabaseTrouble::damaged);
    EXPECT_TRUE(archive.appTotals().empty());
}

} // namespace
} // namespace kestrio
