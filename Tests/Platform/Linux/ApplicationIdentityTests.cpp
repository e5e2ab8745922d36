#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Tests/Support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace kestrio {
namespace {

class Identity : public testing::Test {
protected:
    Identity() {
        add("firefox-esr",
            "Name=Firefox\nExec=/usr/lib/firefox-esr/firefox-esr %u\nStartupWMClass=firefox-esr\nIcon=ff\n"
            "Categories=Network;WebBrowser;\n");
        add("org.kde.konsole", "Name=Konsole\nExec=konsole\nCategories=System;TerminalEmulator;\n");
        add("org.example.Notes", "Name=Notes\nExec=notes %f\nCategories=Office;\n");
        add("code", "Name=Visual Studio Code\nExec=/usr/share/code/code %F\nStartupWMClass=Code\n");
        add("code-url-handler",
            "Name=Handler\nExec=/usr/share/code/code --open-url\nNoDisplay=true\nStartupWMClass=Code\n");
    }

    void add(const std::string& id, const std::string& lines) {
        folder.write("applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + lines);
    }

    ApplicationID identified(const WindowOwner& owner, const ProcessEvidence& evidence = {}) {
        return identify(owner, evidence, entries, IdentityCatalogue::builtIn());
    }

    TemporaryFolder folder;
    VirtualTime time{Date(0)};
    DesktopEntries entries{{folder.path() / "applications"}, "", time};
};

ProcessEvidence evidenceOf(std::optional<std::string> unit, std::vector<std::string> programs = {}) {
    ProcessEvidence evidence;
    evidence.unitApplication = std::move(unit);
    evidence.programNames = std::move(programs);
    return evidence;
}

TEST_F(Identity, theUnitComesFirst) {
    EXPECT_EQ(identified({1, "Anything"}, evidenceOf("org.example.Notes")),
              (ApplicationID{"org.example.Notes", "Notes"}));
    EXPECT_EQ(identified({1, "firefox-esr"}, evidenceOf("firefox-esr", {"firefox-esr"})),
              (ApplicationID{"org.mozilla.firefox", "Firefox"}));
}

TEST_F(Identity, whatATerminalStartedIsNotTheTerminal) {
    EXPECT_EQ(identified({1, "konsole", "konsole"}, evidenceOf("org.kde.konsole", {"konsole"})),
              (ApplicationID{"org.kde.konsole", "Konsole"}));
    EXPECT_EQ(identified({1, "firefox-esr"}, evidenceOf("org.kde.konsole", {"firefox-esr"})),
              (ApplicationID{"org.mozilla.firefox", "Firefox"}));
    EXPECT_EQ(identified({1, "XEyes"}, evidenceOf("org.kde.konsole", {"xeyes"})), (ApplicationID{"xeyes", "XEyes"}));
}

TEST_F(Identity, aUnitYieldsToAnEntryThatClassAndProgramAgreeOn) {
    EXPECT_EQ(identified({1, "firefox-esr"}, evidenceOf("code", {"firefox-esr"})).bundleIdentifier,
              "org.mozilla.firefox");
    EXPECT_EQ(identified({1, "Code"}, evidenceOf("code-url-handler", {"code"})).bundleIdentifier,
              "com.microsoft.VSCode");
}

TEST_F(Identity, theSandboxComesBeforeTheClass) {
    ProcessEvidence evidence;
    evidence.sandboxApplication = "com.spotify.Client";
    EXPECT_EQ(identified({1, "spotify"}, evidence), (ApplicationID{"com.spotify.client", "spotify"}));
    evidence.sandboxApplication = "firefox_firefox";
    EXPECT_EQ(identified({1, ""}, evidence).bundleIdentifier, "org.mozilla.firefox");
}

TEST_F(Identity, theLaunchedDesktopFileComesBeforeTheClass) {
    ProcessEvidence evidence;
    evidence.desktopFile = folder.path() / "applications/org.example.Notes.desktop";
    EXPECT_EQ(identified({1, "Electron"}, evidence).bundleIdentifier, "org.example.Notes");
    evidence.desktopFile = "/elsewhere/unknown.desktop";
    EXPECT_EQ(identified({1, "Code"}, evidence).bundleIdentifier, "com.microsoft.VSCode");
}

TEST_F(Identity, theClassIsComparedWithoutCase) {
    for (const char* name : {"Notes", "NOTES", "org.example.notes"})
        EXPECT_EQ(identified({std::nullopt, name}).bundleIdentifier, "org.example.Notes") << name;
    EXPECT_EQ(identified({std::nullopt, "Code", "code"}),
              (ApplicationID{"com.microsoft.VSCode", "Visual Studio Code"}));
}

TEST_F(Identity, anApplicationWithoutADesktopFileIsKnownByTheCatalogue) {
    EXPECT_EQ(identified({std::nullopt, "Slack", "slack"}), (ApplicationID{"com.tinyspeck.slackmacgap", "Slack"}));
    EXPECT_EQ(identified({std::nullopt, "jetbrains-clion"}).bundleIdentifier, "com.jetbrains.CLion");
}

TEST_F(Identity, theProgramHelpsWhereTheClassDoesNot) {
    EXPECT_EQ(identified({1, ""}, evidenceOf({}, {"notes"})).bundleIdentifier, "org.example.Notes");
    EXPECT_EQ(identified({1, "Whatever"}, evidenceOf({}, {"kitty"})).bundleIdentifier, "net.kovidgoyal.kitty");
}

TEST_F(Identity, theLastResortIsTheClassItself) {
    EXPECT_EQ(identified({1, "My Tool"}), (ApplicationID{"my tool", "My Tool"}));
    EXPECT_EQ(identified({1, "", "inst"}), (ApplicationID{"inst", "inst"}));
    EXPECT_EQ(identified({1, ""}, evidenceOf({}, {"Prog"})), (ApplicationID{"prog", "Prog"}));
    EXPECT_EQ(identified({std::nullopt, ""}), ApplicationID{});
}

TEST_F(Identity, aProcessIsReadOnceAndALaterOneWithItsNumberAgain) {
    const auto stat = [](int start) {
        return "7 (x) S 1 1 1 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 " + std::to_string(start) + " 10\n";
    };
    folder.write("proc/7/stat", stat(100));
    folder.write("proc/7/cgroup", "0::/app-org.example.Notes-1.scope\n");
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn(), folder.path() / "proc");
    EXPECT_EQ(identity.identify({7, "Class"}).bundleIdentifier, "org.example.Notes");
    folder.write("proc/7/cgroup", "0::/app-firefox\\x2desr-1.scope\n");
    EXPECT_EQ(identity.identify({7, "Class"}).bundleIdentifier, "org.example.Notes") << "was read again";
    folder.write("proc/7/stat", stat(101));
    EXPECT_EQ(identity.identify({7, "Class"}).bundleIdentifier, "org.mozilla.firefox");
    std::filesystem::remove_all(folder.path() / "proc/7");
    EXPECT_EQ(identity.identify({7, "Class"}).bundleIdentifier, "class") << "of a process that is gone";
}

TEST_F(Identity, anInstalledApplicationIsFoundByItsBundleIdentifier) {
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn());
    EXPECT_EQ(identity.name("org.mozilla.firefox"), "Firefox");
    EXPECT_EQ(identity.icon("org.mozilla.firefox"), "ff");
    EXPECT_EQ(identity.name("com.microsoft.VSCode"), "Visual Studio Code");
    EXPECT_EQ(identity.icon("com.microsoft.VSCode"), std::nullopt);
    EXPECT_EQ(identity.name("com.spotify.client"), std::nullopt);
    EXPECT_EQ(identity.categoryHint("org.example.Notes"), "work");
    EXPECT_EQ(identity.categoryHint("nobody"), std::nullopt);
}

// --- A process by itself, without a window ---------------------------------------------------------------------------

TEST_F(Identity, aProcessIsTheApplicationOfItsOrigin) {
    const auto applicationOfEvidence = [this](const ProcessEvidence& evidence) {
        return applicationOf(evidence, entries, IdentityCatalogue::builtIn());
    };
    EXPECT_EQ(applicationOfEvidence(evidenceOf("org.example.Notes", {"helper"})),
              (ApplicationID{"org.example.Notes", "Notes"}));
    EXPECT_EQ(applicationOfEvidence(evidenceOf("org.example.Notes", {"firefox-esr"})),
              (ApplicationID{"org.mozilla.firefox", "Firefox"}))
        << "which the notes have opened";
    EXPECT_EQ(applicationOfEvidence(evidenceOf("code-url-handler", {"code"})).value().localizedName, "Handler")
        << "an entry of its own for the same program";
    EXPECT_EQ(applicationOfEvidence(evidenceOf({}, {"konsole"})), (ApplicationID{"org.kde.konsole", "Konsole"}));
    EXPECT_EQ(applicationOfEvidence(evidenceOf({}, {"unheard-of"})), std::nullopt);
    EXPECT_EQ(applicationOfEvidence({}), std::nullopt);

    ProcessEvidence sandboxed = evidenceOf({}, {"firefox-esr"});
    sandboxed.sandboxApplication = "org.example.Notes";
    EXPECT_EQ(applicationOfEvidence(sandboxed).value().bundleIdentifier, "org.example.Notes");
}

TEST_F(Identity, aProgramIsAnApplicationWhenPeopleStartItAndItHasWindows) {
    add("htop", "Name=Htop\nExec=htop\nTerminal=true\n");
    add("opener", "Name=Opener\nExec=opener\nNoDisplay=true\n");
    ApplicationIdentity identity(entries, IdentityCatalogue::builtIn(), folder.path() / "proc");
    for (const auto* program : {"konsole", "notes", "firefox-esr", "code"})
        EXPECT_TRUE(identity.isApplicationProgram(program)) << program;
    for (const auto* program : {"htop", "opener", "bash", ""})
        EXPECT_FALSE(identity.isApplicationProgram(program)) << program;
}

} // namespace
} // namespace kestrio
