#include "Kestrio/Base/TextFile.h"
#include "Kestrio/Link/BackgroundClient.h"
#include "Tests/Link/TestAgent.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

/// What the agent was asked to import, and the strings to pull.
struct ScriptedImport {
    std::vector<std::string> files; // "name: text"
    ImportReceiver receiver;
    int stops = 0;

    LocalBackground::ImportFiles importFiles() {
        return [this](std::vector<SessionFile> given, ImportReceiver hears) {
            for (const auto& file : given) {
                auto text = file.name + ": ";
                readText(file.content, [&](std::string_view piece) { text += piece; });
                files.push_back(text);
            }
            receiver = std::move(hears);
            return Subscription([this] {
                ++stops;
                receiver.ended(ImportStopped{});
            });
        };
    }
};

class ImportOnTheBus : public testing::Test {
protected:
    ImportOnTheBus() {
        agent->with([this](LinkBench& bench) { bench.importFiles = script.importFiles(); });
    }
    ~ImportOnTheBus() override { agent.reset(); }

    std::vector<SessionFile> files() {
        std::vector<SessionFile> all;
        for (const char* name : {"a.csv", "b.csv"})
            all.push_back({name, Descriptor(open(folder.write(name, std::string("text of ") + name).c_str(),
                                                 O_RDONLY | O_CLOEXEC))});
        return all;
    }

    /// Runs work on the agent's queue.
    template <class Work>
    auto there(Work work) {
        return agent->with([&](LinkBench&) { return work(); });
    }

    bool isAsked() {
        return eventually([&] { return there([&] { return !script.files.empty(); }); });
    }

    ImportReceiver receiver() {
        return {[this](double share) { shares.push_back(share); },
                [this](const ImportOutcome& ended) { outcome = ended; }};
    }

    /// Serves the client until the import has ended.
    std::optional<ImportOutcome> end(BackgroundClient& waiting) {
        for (int i = 0; i < 300 && !outcome; ++i)
            waiting.serve(Seconds(0.1));
        return outcome;
    }

    TemporaryFolder folder;
    PrivateBus bus;
    ScriptedImport script; // on the agent's queue
    std::unique_ptr<TestAgent> agent = std::make_unique<TestAgent>(bus.address());
    std::unique_ptr<BackgroundClient> client = BackgroundClient::connect(bus.address());
    std::vector<double> shares;
    std::optional<ImportOutcome> outcome;
};

TEST_F(ImportOnTheBus, handsOverTheFilesAndTellsHowFarItIs) {
    ASSERT_TRUE(client);
    int changes = 0;
    const auto data = client->observeData([&] { ++changes; });
    const auto import = client->importFiles(files(), receiver());
    ASSERT_TRUE(isAsked());
    there([&] {
        EXPECT_EQ(script.files, (std::vector<std::string>{"a.csv: text of a.csv", "b.csv: text of b.csv"}));
        script.receiver.progress(0.25);
        script.receiver.progress(0.5);
        script.receiver.ended(ImportReport{{1, 2, 3}, 4});
    });
    EXPECT_EQ(end(*client), ImportOutcome(ImportReport{{1, 2, 3}, 4}));
    EXPECT_EQ(shares, (std::vector<double>{0.25, 0.5}));
    EXPECT_TRUE(eventually([&] {
        client->serve(Seconds(0.01));
        return changes == 1;
    }));
}

TEST_F(ImportOnTheBus, saysWhatWentWrongAndThatNothingChanged) {
    ASSERT_TRUE(client);
    int changes = 0;
    const auto data = client->observeData([&] { ++changes; });
    const auto import = client->importFiles(files(), receiver());
    ASSERT_TRUE(isAsked());
    there([&] { script.receiver.ended(ImportFailure{"database or disk is full"}); });
    EXPECT_EQ(end(*client), ImportOutcome(ImportFailure{"database or disk is full"}));
    EXPECT_TRUE(client->status());
    client->serve(Seconds(0.01));
    EXPECT_EQ(changes, 0);
}

TEST_F(ImportOnTheBus, stopsWhenItsTokenIsDropped) {
    ASSERT_TRUE(client);
    auto import = client->importFiles(files(), receiver());
    ASSERT_TRUE(isAsked());
    import.cancel();
    EXPECT_EQ(end(*client), ImportOutcome(ImportStopped{}));
    there([&] { EXPECT_EQ(script.stops, 1); });
}

TEST_F(ImportOnTheBus, stopsWhenWhoAskedLeavesTheBus) {
    ASSERT_TRUE(client);
    auto import = client->importFiles(files(), receiver());
    ASSERT_TRUE(isAsked());
    client.reset();
    EXPECT_TRUE(eventually([&] { return there([&] { return script.stops == 1; }); }));
    import.cancel(); // of a client that is gone
}

TEST_F(ImportOnTheBus, ofASecondKindAtTheSameTimeIsRefused) {
    ASSERT_TRUE(client);
    const auto first = client->importFiles(files(), {.ended = [](const ImportOutcome&) {}});
    ASSERT_TRUE(isAsked());
    const auto second = client->importFiles(files(), receiver());
    EXPECT_EQ(end(*client), ImportOutcome(ImportFailure{"Another import is under way."}));
    there([&] { EXPECT_EQ(script.files.size(), 2u); });
}

TEST_F(ImportOnTheBus, mayFollowUponAnother) {
    ASSERT_TRUE(client);
    for (int i = 0; i < 2; ++i) {
        outcome.reset();
        there([&] { script.files.clear(); });
        const auto import = client->importFiles(files(), receiver());
        ASSERT_TRUE(isAsked());
        there([&] { script.receiver.ended(ImportReport{{i, 0, 0}, 0}); });
        EXPECT_EQ(end(*client), ImportOutcome(ImportReport{{i, 0, 0}, 0}));
    }
}

TEST_F(ImportOnTheBus, fromAnAgentThatEndsHasNoAnswer) {
    ASSERT_TRUE(client);
    const auto import = client->importFiles(files(), receiver());
    ASSERT_TRUE(isAsked());
    agent.reset();
    EXPECT_EQ(end(*client), ImportOutcome(ImportFailure{"Kestrio does not answer"}));
}

TEST_F(ImportOnTheBus, fromNobodyHasNoAnswer) {
    ASSERT_TRUE(client);
    agent.reset();
    const auto import = client->importFiles(files(), receiver());
    EXPECT_EQ(end(*client), ImportOutcome(ImportFailure{"Kestrio does not answer"}));
}

} // namespace
} // namespace kestrio
