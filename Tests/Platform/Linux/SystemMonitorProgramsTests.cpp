#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/IdentityCatalogue.h"
#include "Kestrio/Platform/Linux/SystemMonitorPrograms.h"
#include "Tests/Support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

namespace fs = std::filesystem;
using Command = std::vector<std::string>;
using Programs = std::vector<SystemMonitorProgram>;

/// A host with some applications and some programs.
struct Host {
    TemporaryFolder folder;
    const SystemClock time;
    std::map<std::string, std::string> variables;

    Host& installed(const std::string& id, const std::string& exec, const char* more = "") {
        folder.write("applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nName=" + id + "\nExec=" + exec + "\n" + more);
        return *this;
    }
    Host& inPath(const std::string& program) {
        const auto file = folder.write("bin/" + program, "#!/bin/sh\n");
        fs::permissions(file, fs::perms::owner_all);
        variables["PATH"] = (folder.path() / "nothing-here").string() + ":" + (folder.path() / "bin").string();
        return *this;
    }
    Host& on(const std::string& desktop) {
        variables["XDG_CURRENT_DESKTOP"] = desktop;
        return *this;
    }
    std::optional<Command> command() const {
        DesktopEntries entries({folder.path() / "applications"}, "", time);
        return systemMonitorCommand(entries, [this](const std::string& name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            return found == variables.end() ? std::nullopt : std::optional(found->second);
        });
    }
};

TEST(SystemMonitorPrograms, areLinesOfPrograms) {
    EXPECT_EQ(parseSystemMonitorPrograms("# comment\n\nGNOME\ta\tb\n-\tc"),
              (Programs{{"GNOME", "a"}, {"GNOME", "b"}, {"-", "c"}}));
    EXPECT_EQ(parseSystemMonitorPrograms(""), Programs());
    EXPECT_EQ(parseSystemMonitorPrograms("GNOME\n"), Programs());
}

TEST(SystemMonitorPrograms, areEssentialToTheCatalogue) {
    const auto& catalogue = IdentityCatalogue::builtIn();
    const auto& essentials = catalogue.members(IdentityRole::essential);
    for (const auto& program : systemMonitorPrograms()) {
        const auto identity = catalogue.identifier(program.desktopID);
        ASSERT_TRUE(identity) << program.desktopID;
        EXPECT_NE(std::ranges::find(essentials, *identity), essentials.end()) << program.desktopID;
    }
}

TEST(SystemMonitorPrograms, withoutOneThereIsNothingToStart) {
    EXPECT_EQ(Host().command(), std::nullopt);
    EXPECT_EQ(Host().installed("org.example.editor", "editor").command(), std::nullopt);
    EXPECT_EQ(Host().installed("lxtask", "").command(), std::nullopt) << "an entry that starts nothing";
}

TEST(SystemMonitorPrograms, theDesktopsOwnOneComesFirst) {
    Host host;
    host.installed("gnome-system-monitor", "gnome-system-monitor").installed("xfce4-taskmanager", "xfce4-taskmanager");
    EXPECT_EQ(host.command(), Command{"gnome-system-monitor"});
    EXPECT_EQ(host.on("XFCE").command(), Command{"xfce4-taskmanager"});
    EXPECT_EQ(host.on("debian:GNOME").command(), Command{"gnome-system-monitor"});
    EXPECT_EQ(host.on("KDE").command(), Command{"gnome-system-monitor"}) << "the first one that is there";
}

TEST(SystemMonitorPrograms, aSandboxedOneIsRunByItsSandbox) {
    Host host;
    host.installed("io.missioncenter.MissionCenter",
                   "/usr/bin/flatpak run --branch=stable io.missioncenter.MissionCenter");
    EXPECT_EQ(host.command(), (Command{"/usr/bin/flatpak", "run", "io.missioncenter.MissionCenter"}));
}

TEST(SystemMonitorPrograms, oneForTerminalsNeedsATerminal) {
    Host host;
    host.installed("htop", "htop", "Terminal=true\n");
    EXPECT_EQ(host.command(), std::nullopt);
    EXPECT_EQ(host.inPath("x-terminal-emulator").command(), (Command{"x-terminal-emulator", "-e", "htop"}));
    EXPECT_EQ(host.inPath("xdg-terminal-exec").command(), (Command{"xdg-terminal-exec", "htop"}));
    EXPECT_EQ(host.installed("lxtask", "lxtask").command(), Command{"lxtask"}) << "a window of its own is preferred";
}

} // namespace
} // namespace kestrio
