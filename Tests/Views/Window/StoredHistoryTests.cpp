#include "Kestrio/Base/VirtualQueue.h"
#include "Programs/Window/StoredHistory.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Link/ScriptedAgent.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr Date noon{1'700'000'000};
constexpr DateInterval day{noon, noon + Seconds(86'400)};
constexpr auto cannotOpen = "Kestrio: Could not open database: unable to open database file";

/// A history beside an agent that comes and goes.
class StoredHistoryTest : public testing::Test {
protected:
    StoredHistoryTest() { meetAgent(false); }

    void meetAgent(bool isThere) {
        isAgentThere = isThere;
        agent.start();
        time.runPending();
    }

    /// As an agent does, in place of whatever is there.
    void record(const fs::path& to, int sessions) {
        Database database(to, writing);
        for (int i = 0; i < sessions; ++i)
            database.insert({"org.example.app", "App", "Title", {}, {}, {}, SessionKind::focus}, noon + Seconds(i),
                            noon + Seconds(i + 1));
    }

    /// How many sessions there are; nothing while they cannot be read.
    std::optional<std::size_t> count() {
        const auto found = history.sessions(day);
        const auto* const sessions = std::get_if<std::vector<ActivitySession>>(&found);
        return sessions ? std::optional(sessions->size()) : std::nullopt;
    }
    DatabaseTrouble trouble() { return std::get<DatabaseTrouble>(history.sessions(day)); }

    TemporaryFolder folder;
    const fs::path file = folder.path() / "Kestrio" / "activity.sqlite";
    VirtualTime time{noon};
    VirtualQueue main{time, "main"};
    VirtualQueue worker{time, "agent"};
    VirtualQueue writing{time, "Kestrio.database"};
    bool isAgentThere = false;
    AgentScript script;
    AgentLink agent{main, worker, [this](auto) -> std::optional<AgentConnection> {
                        if (!isAgentThere)
                            return std::nullopt;
                        AgentConnection connection;
                        connection.background = std::make_unique<ScriptedAgent>(script);
                        connection.deliver = [] {};
                        return connection;
                    }};
    StoredHistory history{file, agent};
};

TEST_F(StoredHistoryTest, isEmptyBeforeAnythingWasEverRecorded) {
    EXPECT_EQ(count(), 0U);
    record(file, 3);
    EXPECT_EQ(count(), 3U);
}

TEST_F(StoredHistoryTest, aFileThatVanishesIsNoEmptyHistory) {
    record(file, 3);
    EXPECT_EQ(count(), 3U);
    const ExpectedLog log;
    fs::remove_all(file.parent_path());
    EXPECT_EQ(trouble(), DatabaseTrouble::missing);
    EXPECT_EQ(trouble(), DatabaseTrouble::missing);
    EXPECT_EQ(log.lines(), std::vector<std::string>{cannotOpen}) << "once";
    record(file, 2);
    EXPECT_EQ(count(), 2U);
}

TEST_F(StoredHistoryTest, aFileThatAnAgentWouldHaveIsGone) {
    meetAgent(true);
    const ExpectedLog log;
    EXPECT_EQ(trouble(), DatabaseTrouble::missing);
    EXPECT_EQ(log.lines(), std::vector<std::string>{cannotOpen});
}

TEST_F(StoredHistoryTest, anotherFileInItsPlaceIsTheOneThatIsRead) {
    record(file, 3);
    EXPECT_EQ(count(), 3U);
    const auto other = folder.path() / "other.sqlite";
    record(other, 5);
    fs::rename(other, file);
    EXPECT_EQ(count(), 5U);
}

TEST_F(StoredHistoryTest, aDamagedFileIsSaidAndOneThatIsRightAgainIsRead) {
    record(file, 3);
    const auto whole = fileText(file);
    const ExpectedLog log;
    writeFile(file, std::string(whole.size(), 'x'));
    EXPECT_EQ(trouble(), DatabaseTrouble::damaged);
    writeFile(file, whole);
    EXPECT_EQ(count(), 3U);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Kestrio: Database error: file is not a database"});
}

TEST_F(StoredHistoryTest, seesWhatIsWrittenWhileItIsLookedAt) {
    Database database(file, writing);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(count(), i);
        database.insert({"org.example.app", "App", "Title", {}, {}, {}, SessionKind::focus}, noon,
                        noon + Seconds(static_cast<double>(i) + 1));
    }
    EXPECT_EQ(count(), 3U);
}

TEST_F(StoredHistoryTest, whatIsOpenInTheAgentCountsToo) {
    record(file, 1);
    LiveActivity live;
    live.sample = {"org.example.other", "Other", "Now", {}, {}, {}, SessionKind::focus};
    live.start = noon + Seconds(60);
    live.lastSeen = noon + Seconds(90);
    script.status.live = live;
    meetAgent(true);
    EXPECT_EQ(count(), 2U);
}

} // namespace
} // namespace kestrio
