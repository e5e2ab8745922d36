#include "Kestrio/Platform/Linux/StartCommand.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

using Command = std::optional<std::vector<std::string>>;

DesktopEntry entry(const std::string& program, bool runsInTerminal = false) {
    DesktopEntry entry;
    entry.id = "org.example.Thing";
    entry.program = program;
    entry.runsInTerminal = runsInTerminal;
    return entry;
}

TEST(StartCommand, isTheProgramOrWhatItsPackageIsStartedBy) {
    const auto nothing = [](const std::string&) -> std::optional<std::string> { return std::nullopt; };
    EXPECT_EQ(startCommand(entry("/usr/bin/thing"), nothing), (Command{{"/usr/bin/thing"}}));
    EXPECT_EQ(startCommand(entry("/usr/bin/flatpak"), nothing),
              (Command{{"/usr/bin/flatpak", "run", "org.example.Thing"}}));
    EXPECT_EQ(startCommand(entry(""), nothing), std::nullopt);
    EXPECT_EQ(startCommand(entry("thing", true), nothing), std::nullopt) << "there is no terminal";
}

TEST(StartCommand, putsWhatRunsInATerminalIntoThePreferredOne) {
    const TemporaryFolder folder;
    const auto path = [&](const std::string& name) {
        return name == "PATH" ? std::optional("/none:" + folder.path().string()) : std::nullopt;
    };
    for (const auto& [terminal, command] :
         {std::pair<std::string, Command>{"x-terminal-emulator", {{"x-terminal-emulator", "-e", "thing"}}},
          {"xdg-terminal-exec", {{"xdg-terminal-exec", "thing"}}}}) {
        folder.write(terminal, "");
        ASSERT_EQ(chmod((folder.path() / terminal).c_str(), 0700), 0);
        EXPECT_EQ(startCommand(entry("thing", true), path), command);
    }
}

TEST(StartCommand, tellsWhatRunsInASandbox) {
    const struct {
        const char* program;
        bool isSandboxed;
    } rows[] = {
        {"/usr/bin/flatpak", true},
        {"flatpak", true},
        {"/snap/bin/chromium", true},
        {"/usr/bin/chromium", false},
        {"chromium", false},
        {"/snap/x", false},
        {"", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isSandboxed(entry(row.program)), row.isSandboxed) << row.program;
}

} // namespace
} // namespace kestrio
