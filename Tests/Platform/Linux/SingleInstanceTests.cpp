#include "Kestrio/Platform/Linux/SingleInstance.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

TEST(SingleInstance, theFirstHoldsItAndTheSecondLearnsWhoDoes) {
    const TemporaryFolder top;
    const auto folder = top.path() / "data" / "Kestrio";
    const auto first = SingleInstance::acquire(folder);
    ASSERT_TRUE(std::holds_alternative<SingleInstance>(first));
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder).permissions()), 0700U);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "agent.lock").permissions()), 0600U);
    const auto second = SingleInstance::acquire(folder);
    const auto* taken = std::get_if<SingleInstance::Taken>(&second);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->processIdentifier, getpid());
}

TEST(SingleInstance, lettingGoFreesItAndLeavesTheFile) {
    const TemporaryFolder top;
    { const auto held = SingleInstance::acquire(top.path()); }
    EXPECT_TRUE(fs::exists(top.path() / "agent.lock"));
    EXPECT_TRUE(std::holds_alternative<SingleInstance>(SingleInstance::acquire(top.path())));
}

TEST(SingleInstance, aKilledHolderHoldsNothingAnyMore) {
    const TemporaryFolder top;
    const pid_t child = fork();
    if (child == 0) {
        const auto held = SingleInstance::acquire(top.path());
        while (true)
            pause();
    }
    EXPECT_TRUE(eventually([&] { return fileText(top.path() / "agent.lock") == std::to_string(child) + "\n"; }));
    {
        const auto answer = SingleInstance::acquire(top.path());
        const auto* taken = std::get_if<SingleInstance::Taken>(&answer);
        EXPECT_TRUE(taken && taken->processIdentifier == child);
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(std::holds_alternative<SingleInstance>(SingleInstance::acquire(top.path())));
    EXPECT_EQ(fileText(top.path() / "agent.lock"), std::to_string(getpid()) + "\n");
}

TEST(SingleInstance, saysWhyItCannotTell) {
    const TemporaryFolder top;
    writeFile(top.path() / "data", "a file");
    const auto answer = SingleInstance::acquire(top.path() / "data");
    const auto* failed = std::get_if<SingleInstance::Failed>(&answer);
    ASSERT_TRUE(failed);
    EXPECT_NE(failed->reason.find("Not a directory"), std::string::npos) << failed->reason;
}

TEST(SingleInstance, anUnreadableProcessNumberIsAbsent) {
    const TemporaryFolder top;
    const auto held = SingleInstance::acquire(top.path());
    writeFile(top.path() / "agent.lock", "nonsense");
    const auto answer = SingleInstance::acquire(top.path());
    const auto* taken = std::get_if<SingleInstance::Taken>(&answer);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->processIdentifier, std::nullopt);
}

} // namespace
} // namespace kestrio
