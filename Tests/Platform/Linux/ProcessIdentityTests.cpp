#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrio {
namespace {

using std::string_literals::operator""s;

TEST(ProcessIdentity, findsTheApplicationInTheNameOfItsUnit) {
    const struct {
        const char* group;
        std::optional<std::string> id;
    } rows[] = {
        {"/user.slice/user-1000.slice/user@1000.service/app.slice/app-gnome-org.gnome.Evince-4242.scope",
         "org.gnome.Evince"},
        {"/user.slice/user@1000.service/app.slice/app-gnome-google\\x2dchrome-17.scope", "google-chrome"},
        {"/app.slice/app-org.kde.konsole-1234.scope", "org.kde.konsole"},
        {"/app.slice/app-flatpak-org.mozilla.firefox-99.scope", "org.mozilla.firefox"},
        {"/app.slice/app-firefox@5c1f0b3e0c1d4f0d.service", "firefox"},
        {"/app.slice/app-firefox\\x2desr@5c1f0b3e0c1d4f0d.service", "firefox-esr"},
        {"/app.slice/app-org.gnome.Software@autostart.service", "org.gnome.Software"},
        {"/app.slice/app-gnome-kitty@1.service", "kitty"},
        {"/app.slice/app-kitty.service", "kitty"},
        {"/app.slice/app-kitty-4711.service", "kitty"},
        {"/app.slice/app-Hyprland-kitty-1a2b3c4d.scope", "kitty"},
        {"/app.slice/dbus-:1.2-org.gnome.Nautilus@0.service", "org.gnome.Nautilus"},
        {"/app.slice/app-org.gnome.Terminal.slice/vte-spawn-0b6a.scope", std::nullopt},
        {"/app.slice/app-org.kde.konsole-1.scope/inner", "org.kde.konsole"},
        {"/app.slice/app-strange name\\x20here-1.scope", "strange name here"},
        {"/app.slice/app-1234.scope", std::nullopt},
        {"/app.slice/app-.scope", std::nullopt},
        {"/app.slice/app.scope", std::nullopt},
        {"/app.slice", std::nullopt},
        {"/user.slice/user-1000.slice/session-3.scope", std::nullopt},
        {"/", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(applicationOfControlGroup("0::"s + row.group + "\n"), row.id) << row.group;
}

TEST(ProcessIdentity, readsTheHierarchyOfSystemdWhereThereAreSeveral) {
    EXPECT_EQ(applicationOfControlGroup("12:memory:/app-wrong-1.scope\n"
                                        "1:name=systemd:/app.slice/app-right-1.scope\n"
                                        "0::/app-unified-1.scope\n"),
              "right");
    EXPECT_EQ(applicationOfControlGroup("no colons at all\n:\n"), std::nullopt);
}

TEST(ProcessIdentity, findsTheApplicationOfASnap) {
    const struct {
        const char* group;
        std::optional<std::string> id;
    } rows[] = {
        {"0::/app.slice/snap.firefox.firefox-a7e3b2c1-1111-2222-3333-444455556666.scope\n", "firefox_firefox"},
        {"0::/app.slice/snap.firefox.firefox.a7e3b2c1-1111-2222-3333-444455556666.scope\n", "firefox_firefox"},
        {"0::/app.slice/snap.code.url-handler.scope\n", "code_url-handler"},
        {"0::/system.slice/snap.lxd.daemon.service\n", "lxd_daemon"},
        {"0::/app.slice/snap.broken.scope\n", std::nullopt},
        {"0::/app.slice/app-x-1.scope\n", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(snapApplicationOfControlGroup(row.group), row.id) << row.group;
}

TEST(ProcessIdentity, undoesTheEscapesOfUnitNames) {
    EXPECT_EQ(unescapedUnitName("a\\x2db\\x5cc"), "a-b\\c");
    EXPECT_EQ(unescapedUnitName("\\x2"), "\\x2");
    EXPECT_EQ(unescapedUnitName("\\xzz\\x2d"), "\\xzz-");
    EXPECT_EQ(unescapedUnitName("\\"), "\\");
}

TEST(ProcessIdentity, readsTheNameOutOfTheApplicationGroupOfAFlatpak) {
    EXPECT_EQ(applicationOfFlatpakInfo("[Instance]\nname=wrong\n\n[Application]\nname=org.a.B\nruntime=x\n"),
              "org.a.B");
    EXPECT_EQ(applicationOfFlatpakInfo("[Application]\r\nname=org.a.B\r\n"), "org.a.B");
    EXPECT_EQ(applicationOfFlatpakInfo("[Application]\nname=\n"), std::nullopt);
    EXPECT_EQ(applicationOfFlatpakInfo("name=x"), std::nullopt);
    EXPECT_EQ(applicationOfFlatpakInfo(""), std::nullopt);
}

TEST(ProcessIdentity, believesTheLaunchedDesktopFileOnlyOfTheProcessThatWasLaunched) {
    const auto file = "HOME=/h\0GIO_LAUNCHED_DESKTOP_FILE=/usr/share/applications/a b.desktop\0"
                      "GIO_LAUNCHED_DESKTOP_FILE_PID=42\0"s;
    EXPECT_EQ(launchedDesktopFile(file, 42), "/usr/share/applications/a b.desktop");
    EXPECT_EQ(launchedDesktopFile(file, 43), std::nullopt);
    EXPECT_EQ(launchedDesktopFile("GIO_LAUNCHED_DESKTOP_FILE=/a.desktop\0"s, 42), std::nullopt);
    EXPECT_EQ(launchedDesktopFile("GIO_LAUNCHED_DESKTOP_FILE=\0GIO_LAUNCHED_DESKTOP_FILE_PID=42\0"s, 42), std::nullopt);
    EXPECT_EQ(launchedDesktopFile("GIO_LAUNCHED_DESKTOP_FILE=/a\0GIO_LAUNCHED_DESKTOP_FILE_PID=42x"s, 42),
              std::nullopt);
    EXPECT_EQ(launchedDesktopFile("", 42), std::nullopt);
}

TEST(ProcessIdentity, splitsACommandAtItsZeroBytes) {
    EXPECT_EQ(commandArguments("a\0b c\0\0"s), (std::vector<std::string>{"a", "b c", ""}));
    EXPECT_EQ(commandArguments("title of its own"), (std::vector<std::string>{"title of its own"}));
    EXPECT_TRUE(commandArguments("").empty());
    EXPECT_TRUE(commandArguments("\0"s).empty());
}

TEST(ProcessIdentity, findsTheStartTimeBehindANameOfAnyKind) {
    const std::string rest = " S 1 1 1 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 987654 10 11 18446744073709551615 1\n";
    for (const std::string name : {"cat", "a b", "a) b", ")", "(((", "", "x\ny", "\xff\xfe", ") S 1 1"})
        EXPECT_EQ(startTicks("17 (" + name + ")" + rest), 987654u) << name;
    EXPECT_EQ(startTicks("17 (cat) S 1 2"), std::nullopt);
    EXPECT_EQ(startTicks("17 (cat)"), std::nullopt);
    EXPECT_EQ(startTicks(""), std::nullopt);
}

TEST(ProcessIdentity, readsTheParent) {
    EXPECT_EQ(parentProcess("17 (a) b) S 4711 2 3"), 4711);
    EXPECT_EQ(parentProcess("17 (cat) S"), std::nullopt);
    EXPECT_EQ(parentProcess(""), std::nullopt);
    EXPECT_EQ(readParent("/proc", getpid()), getppid());
    EXPECT_EQ(readParent("/nonexistent", 1), std::nullopt);
}

TEST(ProcessIdentity, knowsInterpretersInEveryVersion) {
    for (const char* name : {"python3", "python3.11", "bash", "java", "perl5.36.0", "node", "gjs-console", "env"})
        EXPECT_TRUE(isInterpreter(name)) << name;
    for (const char* name : {"firefox", "code", "", "3", "shotwell", "pythonista"})
        EXPECT_FALSE(isInterpreter(name)) << name;
}

TEST(ProcessIdentity, readsItsOwnProcess) {
    const auto evidence = readProcessEvidence("/proc", getpid());
    ASSERT_TRUE(evidence.executable);
    ASSERT_FALSE(evidence.programNames.empty());
    EXPECT_EQ(evidence.programNames.front(), evidence.executable->filename());
    EXPECT_TRUE(readStartTicks("/proc", getpid()));
}

TEST(ProcessIdentity, isEmptyForAProcessThatIsGone) {
    const auto evidence = readProcessEvidence("/nowhere", 42);
    EXPECT_FALSE(evidence.unitApplication || evidence.sandboxApplication || evidence.desktopFile ||
                 evidence.executable);
    EXPECT_TRUE(evidence.programNames.empty());
    EXPECT_FALSE(readStartTicks("/nowhere", 42));
}

TEST(ProcessIdentity, findsThePlaceOfAFlatpakOnTheHost) {
    EXPECT_EQ(
        placeOfFlatpak("[Application]\nname=x\napp-path=/wrong\n[Instance]\ninstance-id=1\napp-path=/right/files\n"),
        "/right/files");
    for (const auto* text : {"", "[Instance]\n", "[Instance]\napp-path=\n", "app-path=/x\n"})
        EXPECT_EQ(placeOfFlatpak(text), std::nullopt) << text;
}

} // namespace
} // namespace kestrio
