#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/FileKeyValueStore.h"
#include "Kestrio/Platform/Linux/SafeFiles.h"
#include "Kestrio/Platform/Linux/SettingsDocument.h"
#include "Tests/ExpectedLog.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using Keys = std::vector<std::string>;

struct FileKeyValueStoreTest : testing::Test {
    TemporaryFolder top;
    const fs::path folder = top.path() / "config" / "Kestrio";
    const fs::path file = folder / "settings.json";

    void write(const std::string& text) {
        fs::create_directories(folder);
        writeFile(file, text);
    }
    /// Lets the file look as if it was last touched `seconds` ago; in the future when that is negative.
    void touch(int seconds) const {
        fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::seconds(seconds));
    }
    void writeLongAgo(const std::string& text) {
        write(text);
        touch(10);
    }
    std::vector<fs::path> keptAside() const {
        std::vector<fs::path> found;
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.path().filename().string().starts_with("settings.damaged-"))
                found.push_back(entry.path());
        return found;
    }
};

constexpr auto readOnlyForAll = fs::perms(0555);

unsigned permissions(const fs::path& path) {
    return static_cast<unsigned>(fs::status(path).permissions());
}

/// The text with every digit as a zero.
std::string shape(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    return text;
}

/// What a queue's observers heard, from any thread.
struct Heard {
    std::mutex mutex;
    Keys keys;

    std::function<void(const std::string&)> listener() {
        return [this](const std::string& key) {
            const std::lock_guard guard(mutex);
            keys.push_back(key);
        };
    }
    Keys soFar() {
        const std::lock_guard guard(mutex);
        return keys;
    }
    bool eventuallyIs(const Keys& wanted) {
        return eventually([&] { return soFar() == wanted; });
    }
};

TEST_F(FileKeyValueStoreTest, readingAFreshInstallMakesNothing) {
    const FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(FileKeyValueStoreTest, filesAreTheOwnersOnly) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", true));
    EXPECT_EQ(permissions(folder), 0700U);
    EXPECT_EQ(permissions(file), 0600U);
    EXPECT_EQ(permissions(folder / "settings.lock"), 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2);
}

TEST_F(FileKeyValueStoreTest, registeredValuesAreNeverWritten) {
    FileKeyValueStore store(file);
    store.registerDefaults({{"idleMinutes", std::int64_t{3}}});
    EXPECT_FALSE(fs::exists(file));
    ASSERT_TRUE(store.set("k", true));
    EXPECT_EQ(fileText(file), "{\n  \"k\": true\n}\n");
}

TEST_F(FileKeyValueStoreTest, aReadSeesWhatAnotherStoreWroteWithoutALoop) {
    FileKeyValueStore one(file);
    const FileKeyValueStore other(file);
    for (std::int64_t value = 0; value < 50; ++value) {
        ASSERT_TRUE(one.set("k", value));
        ASSERT_EQ(other.integer("k"), value);
    }
    fs::remove(file);
    EXPECT_EQ(other.value("k"), std::nullopt);
}

TEST_F(FileKeyValueStoreTest, aReadSeesAnEditInPlaceOfTheSameSize) {
    write(R"({"k":1})");
    const FileKeyValueStore store(file);
    EXPECT_EQ(store.integer("k"), 1);
    write(R"({"k":2})");
    EXPECT_EQ(store.integer("k"), 2);
}

TEST_F(FileKeyValueStoreTest, writersOfSeveralThreadsAndStoresLoseNothing) {
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer)
        writers.emplace_back([this, writer] {
            FileKeyValueStore store(file);
            for (int i = 0; i < 10; ++i)
                EXPECT_TRUE(store.set(std::to_string(writer) + "-" + std::to_string(i), true));
        });
    for (auto& writer : writers)
        writer.join();
    EXPECT_EQ(FileKeyValueStore(file).storedKeys().size(), 40U);
}

TEST_F(FileKeyValueStoreTest, whatThisVersionDoesNotUnderstandSurvivesAWrite) {
    write(R"({"float":0.25,"nothing":null,"nested":{"a":[1,{"b":2}]},"list":["x","y","z"]})");
    FileKeyValueStore store(file);
    EXPECT_EQ(store.value("float"), std::nullopt);
    EXPECT_EQ(store.storedKeys(), (Keys{"float", "list", "nested", "nothing"}));
    ASSERT_TRUE(store.set("k", std::int64_t{1}));
    EXPECT_EQ(nlohmann::json::parse(fileText(file)),
              nlohmann::json::parse(
                  R"({"float":0.25,"k":1,"nothing":null,"nested":{"a":[1,{"b":2}]},"list":["x","y","z"]})"));
}

TEST_F(FileKeyValueStoreTest, aDamagedFileIsKeptAsideAndSaidOnce) {
    const std::string damages[] = {"", "{\"k\": tr", "[1]",
                                   "{\"k\":" + std::string(20, '[') + std::string(20, ']') + "}",
                                   std::string(SettingsDocument::largestSize + 1, ' ')};
    std::size_t count = 0;
    for (const auto& damage : damages) {
        writeLongAgo(damage);
        const ExpectedLog log;
        FileKeyValueStore store(file);
        store.registerDefaults({{"k", std::int64_t{3}}});
        EXPECT_EQ(store.integer("k"), 3) << damage.substr(0, 40);
        EXPECT_EQ(FileKeyValueStore(file).value("k"), std::nullopt);
        EXPECT_FALSE(fs::exists(file));
        const auto aside = keptAside();
        ASSERT_EQ(aside.size(), ++count) << "an earlier one was overwritten";
        ASSERT_EQ(log.lines().size(), 1U);
        const std::string beginning = "Kestrio: the settings file was damaged; it is kept as ";
        const auto line = log.lines().front();
        ASSERT_TRUE(line.starts_with(beginning)) << line;
        const fs::path kept = line.substr(beginning.size());
        EXPECT_EQ(fileText(kept), damage);
        EXPECT_EQ(kept.parent_path(), folder);
        EXPECT_EQ(shape(kept.filename().string()).substr(0, 32), "settings.damaged-00000000-000000") << kept;
        EXPECT_EQ(kept.extension(), ".json");
        ASSERT_TRUE(store.set("k", std::int64_t{4}));
        EXPECT_EQ(store.integer("k"), 4);
    }
}

TEST_F(FileKeyValueStoreTest, aWriterThatFindsDamageKeepsItAsideToo) {
    FileKeyValueStore store(file);
    writeLongAgo("broken");
    const ExpectedLog log;
    ASSERT_TRUE(store.set("k", true));
    EXPECT_EQ(log.lines().size(), 1U);
    ASSERT_EQ(keptAside().size(), 1U);
    EXPECT_EQ(fileText(keptAside().front()), "broken");
    EXPECT_TRUE(store.boolean("k"));
}

TEST_F(FileKeyValueStoreTest, damageIsLeftToWhoeverHoldsTheLock) {
    writeLongAgo("broken");
    const auto held = lockFile(folder / "settings.lock", Seconds(0));
    const FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    EXPECT_EQ(fileText(file), "broken");
    write(R"({"k":true})");
    EXPECT_TRUE(store.boolean("k"));
    EXPECT_TRUE(keptAside().empty());
}

TEST_F(FileKeyValueStoreTest, aFileThatSomebodyIsWritingIsNotDamaged) {
    write(R"({"k":1})");
    const FileKeyValueStore store(file);
    ASSERT_EQ(store.integer("k"), 1);
    for (const char* half : {"", "{", R"({"k":)"}) {
        write(half);
        EXPECT_EQ(store.integer("k"), 1) << half;
        EXPECT_EQ(fileText(file), half);
        FileKeyValueStore starting(file);
        starting.registerDefaults({{"k", std::int64_t{3}}});
        EXPECT_EQ(starting.integer("k"), 3) << half;
    }
    write(R"({"k":2})");
    EXPECT_EQ(store.integer("k"), 2);
    EXPECT_TRUE(keptAside().empty());
}

TEST_F(FileKeyValueStoreTest, halfAFileBecomesDamageOnceItIsAtRestInEitherDirectionOfTheClock) {
    for (const int seconds : {3, -3600, 1'000'000}) {
        write(R"({"k":1})");
        const FileKeyValueStore store(file);
        ASSERT_EQ(store.integer("k"), 1);
        write("{");
        EXPECT_EQ(store.integer("k"), 1) << seconds;
        const auto before = keptAside().size();
        touch(seconds);
        const ExpectedLog log;
        EXPECT_EQ(store.value("k"), std::nullopt) << seconds;
        EXPECT_EQ(log.lines().size(), 1U) << seconds;
        EXPECT_EQ(keptAside().size(), before + 1) << seconds;
    }
}

TEST_F(FileKeyValueStoreTest, aSetWaitsForWhoeverIsWriting) {
    write("{");
    FileKeyValueStore store(file);
    bool kept = false;
    std::thread setter([&] { kept = store.set("mine", true); });
    EXPECT_TRUE(eventually([&] { return !lockFile(folder / "settings.lock", Seconds(0)).descriptor; }));
    write(R"({"theirs":true})");
    setter.join();
    EXPECT_TRUE(kept);
    EXPECT_EQ(FileKeyValueStore(file).storedKeys(), (Keys{"mine", "theirs"}));
    EXPECT_TRUE(keptAside().empty());
}

TEST_F(FileKeyValueStoreTest, aSetIsRefusedInTheEndByAWriterWhoGoesOn) {
    write(R"({"k":1})");
    FileKeyValueStore store(file);
    ASSERT_EQ(store.integer("k"), 1);
    write("{");
    std::atomic<bool> over = false;
    std::thread writer([&] {
        while (!over)
            touch(0);
    });
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", std::int64_t{2}));
    over = true;
    writer.join();
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: another program is writing the settings file"});
    EXPECT_EQ(fileText(file), "{");
    EXPECT_EQ(store.integer("k"), 1);
    EXPECT_TRUE(keptAside().empty());
}

TEST_F(FileKeyValueStoreTest, aLinkStaysALink) {
    const auto target = top.write("dotfiles/kestrio.json", R"({"k":1})");
    fs::create_directories(folder);
    fs::create_symlink("../../dotfiles/kestrio.json", folder / "second.json");
    fs::create_symlink("second.json", file);
    FileKeyValueStore store(file);
    EXPECT_EQ(store.integer("k"), 1);
    ASSERT_TRUE(store.set("k", std::int64_t{2}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(folder / "second.json"));
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_EQ(fileText(target), "{\n  \"k\": 2\n}\n");
    EXPECT_EQ(permissions(target), 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(target.parent_path()), fs::directory_iterator()), 1);
}

TEST_F(FileKeyValueStoreTest, aLinkToNothingGetsItsFile) {
    const auto target = top.path() / "kestrio.json";
    fs::create_directories(folder);
    fs::create_symlink(target, file);
    FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    ASSERT_TRUE(store.set("k", true));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(fileText(target), "{\n  \"k\": true\n}\n");
}

TEST_F(FileKeyValueStoreTest, damageBehindALinkIsKeptAsideWhereItLies) {
    const auto target = top.path() / "kestrio.json";
    fs::create_directories(folder);
    fs::create_symlink(target, file);
    writeLongAgo("broken");
    const ExpectedLog log;
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", true));
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_NE(log.lines().front().find((top.path() / "kestrio.damaged-").string()), std::string::npos);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(store.boolean("k"));
}

TEST_F(FileKeyValueStoreTest, aLinkThatGoesRoundInACircleMakesSettingFail) {
    fs::create_directories(folder);
    fs::create_symlink("settings.json", file);
    FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", true));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(fs::is_symlink(file));
}

TEST_F(FileKeyValueStoreTest, aFolderInTheFilesPlaceIsLeftAlone) {
    fs::create_directories(file / "precious");
    FileKeyValueStore store(file);
    store.registerDefaults({{"k", std::int64_t{3}}});
    EXPECT_EQ(store.integer("k"), 3);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", std::int64_t{4}));
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: the settings file can't be read: not a file"});
    EXPECT_EQ(store.integer("k"), 3);
    EXPECT_TRUE(fs::exists(file / "precious"));
}

TEST_F(FileKeyValueStoreTest, aPipeInTheFilesPlaceHoldsNobodyUp) {
    fs::create_directories(folder);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", true));
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(FileKeyValueStoreTest, aFileInTheFoldersPlaceMakesSettingFail) {
    fs::create_directories(folder.parent_path());
    writeFile(folder, "a file");
    FileKeyValueStore store(file);
    EXPECT_EQ(store.value("k"), std::nullopt);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", true));
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(fileText(folder), "a file");
}

/// Runs the rest of a scope as a user whom permissions bind, when the tests run as root.
struct AsOrdinaryUser {
    AsOrdinaryUser() {
        if (root) {
            EXPECT_EQ(seteuid(65534), 0);
        }
    }
    ~AsOrdinaryUser() {
        if (root) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;
    const bool root = geteuid() == 0;
};

TEST_F(FileKeyValueStoreTest, withoutTheRightToReadDefaultsAreInForceAndNothingIsLost) {
    write(R"({"k":5})");
    fs::permissions(top.path(), fs::perms::all);
    fs::permissions(folder, fs::perms::all);
    fs::permissions(file, fs::perms::none);
    {
        const AsOrdinaryUser user;
        FileKeyValueStore store(file);
        store.registerDefaults({{"k", std::int64_t{3}}});
        EXPECT_EQ(store.integer("k"), 3);
        const ExpectedLog log;
        EXPECT_FALSE(store.set("k", std::int64_t{4}));
        EXPECT_EQ(log.lines(),
                  Keys{"Kestrio: couldn't save a setting: the settings file can't be read: Permission denied"});
    }
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_EQ(FileKeyValueStore(file).integer("k"), 5);
}

TEST_F(FileKeyValueStoreTest, valuesStayInForceWhileTheFileCannotBeRead) {
    write(R"({"k":5})");
    const FileKeyValueStore store(file);
    EXPECT_EQ(store.integer("k"), 5);
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(store.integer("k"), 5);
    fs::remove(file);
    write(R"({"k":6})");
    EXPECT_EQ(store.integer("k"), 6);
}

TEST_F(FileKeyValueStoreTest, inAReadOnlyFolderTheOldValuesStay) {
    write(R"({"k":5})");
    fs::permissions(top.path(), fs::perms::all);
    fs::permissions(folder.parent_path(), fs::perms::all);
    fs::permissions(file, fs::perms::all);
    fs::permissions(folder, readOnlyForAll);
    {
        const AsOrdinaryUser user;
        FileKeyValueStore store(file);
        const ExpectedLog log;
        EXPECT_FALSE(store.set("k", std::int64_t{4}));
        EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: Permission denied"});
        EXPECT_EQ(store.integer("k"), 5);
    }
    fs::permissions(folder, fs::perms::owner_all);
}

TEST_F(FileKeyValueStoreTest, damageInAReadOnlyFolderIsSaidOnceAndLeftInPlace) {
    writeLongAgo("broken");
    fs::permissions(top.path(), fs::perms::all);
    fs::permissions(folder.parent_path(), fs::perms::all);
    fs::permissions(folder, readOnlyForAll);
    fs::permissions(file, fs::perms::all);
    {
        const AsOrdinaryUser user;
        const ExpectedLog log;
        const FileKeyValueStore store(file);
        EXPECT_EQ(store.value("k"), std::nullopt);
        EXPECT_EQ(store.value("k"), std::nullopt);
        EXPECT_EQ(log.lines(), Keys{"Kestrio: the settings file is damaged and can't be put aside: Permission denied"});
    }
    EXPECT_EQ(fileText(file), "broken");
    fs::permissions(folder, fs::perms::owner_all);
}

TEST_F(FileKeyValueStoreTest, aFullDiskLeavesTheOldFileWhole) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", std::int64_t{1}));
    const auto before = fileText(file);

    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldAction = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit tiny{10, old.rlim_max};
    const ExpectedLog log;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
    const bool kept = store.set("k", std::int64_t{2});
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, oldAction);

    EXPECT_FALSE(kept);
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: File too large"});
    EXPECT_EQ(fileText(file), before);
    EXPECT_EQ(store.integer("k"), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2);
}

TEST_F(FileKeyValueStoreTest, theNextWriterRemovesWhatAKilledOneLeft) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", true));
    writeFile(folder / ".settings.json.new-abcdef", "half a fi");
    writeFile(folder / "settings.json.mine", "somebody's copy");
    ASSERT_TRUE(store.set("k", false));
    EXPECT_FALSE(fs::exists(folder / ".settings.json.new-abcdef"));
    EXPECT_TRUE(fs::exists(folder / "settings.json.mine"));
}

TEST_F(FileKeyValueStoreTest, writersKilledAtAnyMomentLeaveAWholeFile) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("base", true));
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            FileKeyValueStore own(file);
            for (std::int64_t i = 0;; ++i)
                own.set("k", i);
        }
        const auto before = store.integer("k");
        EXPECT_TRUE(eventually([&] { return store.integer("k") != before; }));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        ASSERT_TRUE(SettingsDocument::parse(fileText(file)));
        ASSERT_TRUE(store.boolean("base"));
        ASSERT_TRUE(store.set("round", std::int64_t{round}));
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2);
}

TEST_F(FileKeyValueStoreTest, aLockThatStaysHeldMakesSettingFailInTheEnd) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", std::int64_t{1}));
    const auto held = lockFile(folder / "settings.lock", Seconds(0));
    ASSERT_TRUE(held.descriptor);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", std::int64_t{2}));
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: the file stays locked by another process"});
    EXPECT_EQ(store.integer("k"), 1);
}

TEST_F(FileKeyValueStoreTest, aTextThatIsNotUtf8IsNotKept) {
    FileKeyValueStore store(file);
    const ExpectedLog log;
    EXPECT_FALSE(store.set("k", std::string("\xff")));
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: its text isn't valid UTF-8"});
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(FileKeyValueStoreTest, aFileThatWouldBecomeTooLargeIsNotWritten) {
    FileKeyValueStore store(file);
    ASSERT_TRUE(store.set("k", true));
    const ExpectedLog log;
    EXPECT_FALSE(store.set("large", std::string(SettingsDocument::largestSize, 'a')));
    EXPECT_EQ(log.lines(), Keys{"Kestrio: couldn't save a setting: the settings file would become too large"});
    EXPECT_TRUE(store.boolean("k"));
}

TEST_F(FileKeyValueStoreTest, observersHearOfAnotherProcesssChangesOnTheirQueue) {
    WorkerQueue queue("settings");
    FileKeyValueStore store(file, &queue);
    store.registerDefaults({{"idleMinutes", std::int64_t{3}}});
    Heard heard;
    std::atomic<bool> onQueue = true;
    const auto token = store.observe([&, listener = heard.listener()](const std::string& key) {
        onQueue = onQueue && queue.isCurrent();
        listener(key);
    });
    const pid_t child = fork();
    if (child == 0) {
        FileKeyValueStore other(file);
        other.set("idleMinutes", std::int64_t{3}); // the registered value here: nothing changes
        other.set("idleMinutes", std::int64_t{5});
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(heard.eventuallyIs({"idleMinutes"}));
    EXPECT_TRUE(onQueue);
    FileKeyValueStore(file).set("idleMinutes", std::nullopt);
    EXPECT_TRUE(heard.eventuallyIs({"idleMinutes", "idleMinutes"}));
    // An editor writes in place.
    write(R"({"other": true})");
    EXPECT_TRUE(heard.eventuallyIs({"idleMinutes", "idleMinutes", "other"}));
    fs::remove(file);
    EXPECT_TRUE(heard.eventuallyIs({"idleMinutes", "idleMinutes", "other", "other"}));
}

TEST_F(FileKeyValueStoreTest, aChangeThatAReadFoundFirstIsStillTold) {
    WorkerQueue queue("settings");
    FileKeyValueStore store(file, &queue);
    Heard heard;
    const auto token = store.observe(heard.listener());
    queue.sync([&] { // the notice can't come in between
        FileKeyValueStore(file).set("k", true);
        EXPECT_TRUE(store.boolean("k"));
    });
    EXPECT_TRUE(heard.eventuallyIs({"k"}));
}

TEST_F(FileKeyValueStoreTest, watchingSurvivesTheFoldersRemoval) {
    WorkerQueue queue("settings");
    FileKeyValueStore store(file, &queue);
    ASSERT_TRUE(store.set("k", true));
    Heard heard;
    const auto token = store.observe(heard.listener());
    fs::remove_all(folder);
    EXPECT_TRUE(heard.eventuallyIs({"k"}));
    EXPECT_FALSE(store.boolean("k"));
    EXPECT_TRUE(eventually([&] {
        queue.sync([] {});
        return store.set("k", std::int64_t{2});
    }));
    EXPECT_TRUE(heard.eventuallyIs({"k", "k"}));
    FileKeyValueStore(file).set("k", std::int64_t{3});
    EXPECT_TRUE(heard.eventuallyIs({"k", "k", "k"}));
}

TEST_F(FileKeyValueStoreTest, withoutAQueueObserversHearOnlyThisStoresOwnSets) {
    FileKeyValueStore store(file);
    Keys heard;
    const auto token = store.observe([&](const std::string& key) { heard.push_back(key); });
    FileKeyValueStore(file).set("foreign", true);
    EXPECT_TRUE(store.boolean("foreign"));
    ASSERT_TRUE(store.set("own", true));
    EXPECT_EQ(heard, Keys{"own"});
}

TEST_F(FileKeyValueStoreTest, tokensMayOutliveTheStore) {
    WorkerQueue queue("settings");
    Subscription token;
    {
        FileKeyValueStore store(file, &queue);
        token = store.observe([](const std::string&) {});
        ASSERT_TRUE(store.set("k", true));
    }
    FileKeyValueStore(file).set("k", false);
    queue.sync([] {});
}

} // namespace
} // namespace kestrio
