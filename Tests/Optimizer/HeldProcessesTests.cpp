#include "Kestrio/Optimizer/HeldProcesses.h"
#include "Kestrio/Platform/Testing/ScriptedProcessSignals.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

namespace kestrio {
namespace {

const HeldJournal example{ProcessKey{42, 100},
                          {{{7, 11}, {8, 12}}, {{{7, 11}, {"usual since 3"}}, {{9, 13}, {"other since 3"}}}}};

const std::string exampleText = "owner 42 100\n"
                                "stop 7 11\n"
                                "stop 8 12\n"
                                "slow 7 11 usual since 3\n"
                                "slow 9 13 other since 3\n";

TEST(HeldProcesses, areWrittenAsALineEach) {
    EXPECT_EQ(journalText(example), exampleText);
    EXPECT_EQ(journalText({}), "");
}

TEST(HeldProcesses, areReadAsTheyWereWritten) {
    EXPECT_EQ(parsedJournal(exampleText), example);
    EXPECT_EQ(parsedJournal(""), HeldJournal());
}

struct LineRow {
    const char* text;
    std::vector<ProcessKey> frozen;
    std::vector<SlowedProcess> slowed;
};

const LineRow lineRows[] = {
    {"stop 7 11\n", {{7, 11}}, {}},
    {"  stop   7  11  \n\n", {{7, 11}}, {}},
    {"stop 7 11", {{7, 11}}, {}}, // cut off behind its last digit, or within: then no process has that start
    {"stop 7 11 and more of a later version\n", {{7, 11}}, {}},
    {"stop 2147483647 18446744073709551615\n",
     {{std::numeric_limits<pid_t>::max(), std::numeric_limits<std::uint64_t>::max()}},
     {}},
    {"stop 7\nstop 8 12\n", {{8, 12}}, {}},
    {"stop\nstop 8 12\n", {{8, 12}}, {}},
    {"stop x 11\nstop 8 12\n", {{8, 12}}, {}},
    {"stop 7 x\nstop 8 12\n", {{8, 12}}, {}},
    {"stop 7x 11\nstop 7 11x\n", {}, {}},
    {"stop -1 11\n", {}, {}},
    {"stop 0 11\n", {}, {}},
    {"stop 7 -1\n", {}, {}},
    {"stop 2147483648 11\n", {}, {}},
    {"stop 7 18446744073709551616\n", {}, {}},
    {"stop\t7\t11\n", {}, {}},
    {"slow 9 13 a b  c\n", {}, {{{9, 13}, {"a b  c"}}}},
    {"slow 9 13\n", {}, {{{9, 13}, {}}}},
    {"slow 9 13 a bc", {}, {{{9, 13}, {"a"}}}}, // cut off within a word, or behind
    {"slow 9 13 a", {}, {{{9, 13}, {}}}},
    {"slow 9 13", {}, {{{9, 13}, {}}}},
    {"nap 9 13 a b\n", {}, {{{9, 13}, {}}}},
    {"owner 42 100\n", {}, {}},
};

TEST(HeldProcesses, areReadFromEveryLineThatIsWhole) {
    for (const auto& row : lineRows) {
        SCOPED_TRACE(row.text);
        const auto held = parsedJournal(row.text).held;
        EXPECT_EQ(held.frozen, row.frozen);
        EXPECT_EQ(held.slowed, row.slowed);
    }
}

RC_GTEST_PROP(HeldProcesses, areReadAsTheyWereWrittenWhateverTheyAre, ()) {
    const auto key = rc::gen::map(rc::gen::pair(rc::gen::inRange<pid_t>(1, std::numeric_limits<pid_t>::max()),
                                                rc::gen::arbitrary<std::uint64_t>()),
                                  [](const auto& pair) {
                                      return ProcessKey{pair.first, pair.second};
                                  });
    const auto words = rc::gen::container<std::string>(rc::gen::elementOf(std::string("ab/ =@0123456789-,.\t")));
    const auto slowed = rc::gen::map(rc::gen::pair(key, words), [](const auto& pair) {
        return SlowedProcess{pair.first, {pair.second}};
    });
    HeldJournal journal;
    if (*rc::gen::arbitrary<bool>())
        journal.owner = *key;
    journal.held.frozen = *rc::gen::container<std::vector<ProcessKey>>(key);
    journal.held.slowed = *rc::gen::container<std::vector<SlowedProcess>>(slowed);
    RC_ASSERT(parsedJournal(journalText(journal)) == journal);
}

TEST(HeldProcesses, areReadFromAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(readJournal(folder.write("held.txt", exampleText)), example);
    EXPECT_EQ(readJournal(folder.write("empty.txt", "")), HeldJournal());
    EXPECT_EQ(readJournal(folder.path() / "missing.txt"), HeldJournal());
    EXPECT_EQ(readJournal(folder.path()), HeldJournal());
}

/// As the example's processes stand while they are held, with a bystander.
ScriptedProcessSignals heldMachine() {
    ScriptedProcessSignals machine;
    machine.processes = {{7, {11, ProcessCondition::stopped, "slow"}},
                         {8, {12, ProcessCondition::stopped, "usual"}},
                         {9, {13, ProcessCondition::running, "slow"}},
                         {10, {14, ProcessCondition::stopped, "slow"}}};
    return machine;
}

TEST(HeldProcesses, areResumedFromTheLastToTheFirstAndThenRestored) {
    auto machine = heldMachine();
    EXPECT_EQ(putRight(example.held, machine), 4U);
    EXPECT_EQ(machine.calls,
              (std::vector<std::string>{"resume 8", "resume 7", "restore 7 usual since 3", "restore 9 other since 3"}));
    EXPECT_EQ(machine.processes[7].condition, ProcessCondition::running);
    EXPECT_EQ(machine.processes[7].priority, "usual");
    EXPECT_EQ(machine.processes[9].priority, "other");
    EXPECT_EQ(machine.processes[10].condition, ProcessCondition::stopped);
}

TEST(HeldProcesses, thatAreGoneOrWhoseNumberIsAnothersAreNotCounted) {
    auto machine = heldMachine();
    machine.processes.erase(8);
    machine.processes[9].start = 99;
    EXPECT_EQ(putRight(example.held, machine), 2U);
    EXPECT_EQ(machine.processes[9].priority, "slow");
}

TEST(HeldProcesses, areRestoredWithWhatTheyStartedWhileSlow) {
    auto machine = heldMachine();
    machine.now = 4;
    machine.runHeir(20, 50);
    machine.now = 2;
    machine.runHeir(21, 51); // before any of it was slowed: its own choice
    putRight(example.held, machine);
    EXPECT_EQ(machine.processes[20].priority, "usual");
    EXPECT_EQ(machine.processes[21].priority, "slow");
}

TEST(HeldProcesses, areAllPutRightAsFarAsAJournalThatWasCutNamesThem) {
    for (std::size_t length = 0; length <= exampleText.size(); ++length) {
        SCOPED_TRACE(exampleText.substr(0, length));
        auto machine = heldMachine();
        putRight(parsedJournal(exampleText.substr(0, length)).held, machine);
        const auto isNamed = [&](const std::string& line) {
            return exampleText.substr(0, length).find(line) != std::string::npos;
        };
        const auto stopped = [&](pid_t pid) { return machine.processes[pid].condition == ProcessCondition::stopped; };
        EXPECT_EQ(stopped(7), !isNamed("stop 7 11"));
        EXPECT_EQ(stopped(8), !isNamed("stop 8 12"));
        EXPECT_EQ(machine.processes[7].priority == "slow", !isNamed("slow 7 11"));
        EXPECT_EQ(machine.processes[9].priority == "slow", !isNamed("slow 9 13"));
        EXPECT_TRUE(stopped(10));
        EXPECT_EQ(machine.processes[10].priority, "slow");
    }
}

RC_GTEST_PROP(HeldProcesses, neverIncludeWhatADamagedJournalDidNotName, (const std::string& damage)) {
    const auto at = *rc::gen::inRange<std::size_t>(0, exampleText.size());
    auto machine = heldMachine();
    putRight(parsedJournal(exampleText.substr(0, at) + damage + exampleText.substr(at)).held, machine);
    RC_ASSERT(machine.processes[10].condition == ProcessCondition::stopped);
}

} // namespace
} // namespace kestrio
