#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/ApplicationOwners.h"
#include "Kestrio/Platform/Linux/ResponsibleProcess.h"
#include "Kestrio/Platform/Linux/SessionMachinery.h"
#include "Kestrio/Platform/Testing/ScriptedDesktop.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

using Processes = std::vector<pid_t>;

TEST(ProcessDescent, isReadFromAnyName) {
    const struct {
        std::string stat;
        pid_t parent;
        std::string name;
        char state;
    } rows[] = {
        {"12 (bash) S 7 12 12 0", 7, "bash", 'S'},
        {"12 (a) b) T 7 12", 7, "a) b", 'T'},
        {"12 (((x) R 1 1", 1, "((x", 'R'},
        {"12 (line\nbreak) Z 0 1", 0, "line\nbreak", 'Z'},
        {"12 () S 7 1", 7, "", 'S'},
    };
    for (const auto& row : rows) {
        const auto descent = processDescent(row.stat);
        ASSERT_TRUE(descent) << row.stat;
        EXPECT_EQ(descent->parent, row.parent) << row.stat;
        EXPECT_EQ(descent->name, row.name) << row.stat;
        EXPECT_EQ(descent->state, row.state) << row.stat;
    }
}

TEST(ProcessDescent, isAbsentInWhatTheKernelNeverWrites) {
    for (const std::string stat : {"", "12", "12 (x", "12 x) S 1", ")(", "12 (x)", "12 (x) S", "12 (x) S ",
                                   "12 (x) S y", "12 (x) S -1", "12 (x) S 99999999999999"})
        EXPECT_FALSE(processDescent(stat)) << stat;
}

TEST(SessionMachinery, isKnownByTheShortNameThatTheKernelKeeps) {
    EXPECT_TRUE(isSessionMachinery("systemd"));
    EXPECT_TRUE(isSessionMachinery("gnome-session-b")) << "gnome-session-binary";
    EXPECT_TRUE(isSessionMachinery("gdm-session-worker"));
    for (const char* application : {"", "chromium", "gnome-terminal-", "konsole", "nautilus", "bash", "xterm"})
        EXPECT_FALSE(isSessionMachinery(application)) << application;
}

TEST(StoppedProcess, isToldByTheKernelsLetter) {
    const TemporaryFolder folder;
    const std::pair<const char*, bool> rows[] = {{"T", true}, {"t", true}, {"S", false}, {"R", false}, {"Z", false}};
    for (const auto& [letter, isStopped] : rows) {
        folder.write("12/stat", std::string("12 (a) b) ") + letter + " 7 12 12 0");
        EXPECT_EQ(isProcessStopped(12, folder.path()), isStopped) << letter;
    }
    EXPECT_FALSE(isProcessStopped(13, folder.path()));
}

/// A folder like `/proc`.
struct Tree {
    TemporaryFolder folder;

    void add(pid_t process, pid_t parent, const std::string& name, const std::string& group = "/user.slice") const {
        const auto number = std::to_string(process);
        folder.write(number + "/stat", number + " (" + name + ") S " + std::to_string(parent) +
                                           " 1 1 0 -1 4194304 1 1 1 1 1 1 1 1 20 0 1 0 500 1 1");
        folder.write(number + "/cgroup", "0::" + group + "\n");
        folder.write(number + "/cmdline", name);
    }
    Processes line(pid_t process) const { return responsibleProcesses(process, folder.path()); }
};

struct ResponsibleProcessTest : testing::Test, Tree {
    ResponsibleProcessTest() {
        add(1, 0, "systemd");
        add(10, 1, "systemd"); // the user's
        add(20, 10, "openbox");
    }
};

constexpr auto browserScope = "/user.slice/app.slice/app-gnome-chromium-300.scope";

TEST_F(ResponsibleProcessTest, aBrowsersHelperLeadsToTheBrowser) {
    add(300, 20, "chromium");
    add(310, 300, "chromium"); // its zygote
    add(320, 310, "chromium");
    EXPECT_EQ(line(320), (Processes{320, 310, 300}));
    EXPECT_EQ(line(300), Processes{300});
}

TEST_F(ResponsibleProcessTest, theProcessThatAGroupWasMadeForIsTheHighestInIt) {
    add(250, 10, "launcher");
    add(300, 250, "chromium", browserScope);
    add(320, 300, "chromium", std::string(browserScope) + "/inner");
    EXPECT_EQ(line(320), (Processes{320, 300}));
}

TEST_F(ResponsibleProcessTest, withoutAGroupTheHighestBelowTheMachineryCounts) {
    add(250, 10, "launcher");
    add(300, 250, "player");
    EXPECT_EQ(line(300), (Processes{300, 250}));
}

TEST_F(ResponsibleProcessTest, aCommandInATerminalLeadsToTheTerminal) {
    add(300, 20, "xterm");
    add(301, 300, "bash");
    add(302, 301, "mpv");
    EXPECT_EQ(line(302), (Processes{302, 301, 300}));
}

TEST_F(ResponsibleProcessTest, aScriptThatTheSessionRunsIsNoApplication) {
    add(30, 20, "sh");
    add(300, 30, "player");
    EXPECT_EQ(line(300), Processes{300});
    EXPECT_EQ(line(30), Processes{30}) << "asked for itself";
    add(40, 1, "login");
    add(41, 40, "bash");
    add(301, 41, "player");
    EXPECT_EQ(line(301), Processes{301});
}

TEST_F(ResponsibleProcessTest, theSessionsOwnMachineryAnswersForNobody) {
    EXPECT_TRUE(line(20).empty());
    EXPECT_TRUE(line(1).empty());
}

TEST_F(ResponsibleProcessTest, whoIsGoneHasNobody) {
    EXPECT_TRUE(line(999).empty());
    EXPECT_TRUE(line(0).empty());
    EXPECT_TRUE(line(-5).empty());
}

TEST_F(ResponsibleProcessTest, aParentThatIsGoneEndsTheLine) {
    add(300, 299, "player");
    EXPECT_EQ(line(300), Processes{300});
}

TEST_F(ResponsibleProcessTest, aCircleInADamagedTreeEnds) {
    add(300, 301, "one");
    add(301, 300, "other");
    EXPECT_LE(line(300).size(), 64U);
}

TEST(ResponsibleProcess, thisTestHasOneInTheRealTree) {
    const auto line = responsibleProcesses(getpid());
    ASSERT_FALSE(line.empty());
    EXPECT_EQ(line.front(), getpid());
}

struct ApplicationOwnersTest : testing::Test, Tree {
    const SystemClock clock{};
    ScriptedWorkspace workspace;
    DesktopEntries entries{{folder.path() / "applications"}, "", clock};
    ApplicationIdentity identity{entries, IdentityCatalogue::builtIn(), folder.path()};
    ApplicationOwners owners{workspace, identity};

    ApplicationOwnersTest() {
        folder.write("applications/org.example.Player.desktop",
                     "[Desktop Entry]\nType=Application\nName=Player\nExec=player %U\n");
        add(10, 1, "systemd");
        add(300, 10, "browser");
        add(310, 300, "helper");
    }

    std::string owner(const ApplicationTrace& trace) { return owners.bundleIdentifier(trace).value_or("none"); }
};

TEST_F(ApplicationOwnersTest, aHelpersSoundIsItsApplications) {
    workspace.running = {{"org.example.Other", "Other", 77}, {"org.example.Browser", "Browser", 300}};
    EXPECT_EQ(owner({310}), "org.example.Browser");
    EXPECT_EQ(owner({300}), "org.example.Browser");
}

TEST_F(ApplicationOwnersTest, theNearestApplicationWithAWindowCounts) {
    add(320, 310, "player");
    workspace.running = {{"org.example.Terminal", "Terminal", 300}, {"org.example.Player", "Player", 320}};
    EXPECT_EQ(owner({320}), "org.example.Player");
    EXPECT_EQ(owner({310}), "org.example.Terminal");
}

TEST_F(ApplicationOwnersTest, withoutAWindowTheResponsibleProcessTells) {
    add(400, 10, "player");
    EXPECT_EQ(owner({400}), "org.example.Player");
}

TEST_F(ApplicationOwnersTest, aNameIsThatOfARunningApplicationOrOfAnInstalledOne) {
    workspace.running = {{"org.example.Browser", "The Browser", 300}};
    const struct {
        const char* name;
        const char* owner;
    } rows[] = {
        {"The Browser", "org.example.Browser"},
        {"the browser", "org.example.Browser"},
        {"org.example.Player", "org.example.Player"},
        {"org.example.Player.desktop", "org.example.Player"},
        {"/usr/bin/player", "org.example.Player"},
        {"firefox", "org.mozilla.firefox"},
        {"Something Else", "something else"},
        {"", "none"},
        {"/", "none"},
        {".desktop", "none"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(owner({std::nullopt, row.name}), row.owner) << row.name;
}

TEST_F(ApplicationOwnersTest, theNameHelpsWhereTheProcessIsGone) {
    EXPECT_EQ(owner({999, "org.example.Player"}), "org.example.Player");
    EXPECT_EQ(owner({999}), "none");
}

TEST_F(ApplicationOwnersTest, theSessionItselfOwnsNothing) {
    EXPECT_EQ(owner({10}), "none");
}

} // namespace
} // namespace kestrio
