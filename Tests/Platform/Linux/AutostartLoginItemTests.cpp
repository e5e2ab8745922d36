#include "Kestrio/Platform/Linux/AutostartLoginItem.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

TEST(AutostartLoginItem, writesAnEntryThatStartsTheProgramQuietly) {
    const TemporaryFolder top;
    const auto folder = top.path() / "config" / "autostart";
    AutostartLoginItem item(folder, "/opt/My Apps/kestrio");
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.enable(), std::nullopt);
    EXPECT_EQ(item.enable(), std::nullopt);
    EXPECT_TRUE(item.isEnabled());
    EXPECT_EQ(fileText(folder / "kestrio.desktop"), "[Desktop Entry]\n"
                                                    "Type=Application\n"
                                                    "Version=1.5\n"
                                                    "Name=Kestrio\n"
                                                    "Comment=Sees where your time goes, privately\n"
                                                    "Icon=dev.haldorvinter.Kestrio\n"
                                                    "Exec=\"/opt/My Apps/kestrio\" --login\n"
                                                    "Terminal=false\n"
                                                    "NoDisplay=true\n"
                                                    "StartupNotify=false\n"
                                                    "X-GNOME-Autostart-enabled=true\n");
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "kestrio.desktop").permissions()), 0644U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
    EXPECT_EQ(item.disable(), std::nullopt);
    EXPECT_EQ(item.disable(), std::nullopt);
    EXPECT_FALSE(item.isEnabled());
}

TEST(AutostartLoginItem, enablingPointsAnEntryOfAnOlderPlaceAtThisProgram) {
    const TemporaryFolder top;
    AutostartLoginItem old(top.path(), "/old/kestrio");
    ASSERT_EQ(old.enable(), std::nullopt);
    AutostartLoginItem item(top.path(), "/new/kestrio");
    EXPECT_EQ(item.enable(), std::nullopt);
    EXPECT_NE(fileText(top.path() / "kestrio.desktop").find("Exec=\"/new/kestrio\" --login\n"), std::string::npos);
}

TEST(AutostartLoginItem, saysWhatWentWrong) {
    const TemporaryFolder top;
    writeFile(top.path() / "autostart", "a file");
    AutostartLoginItem item(top.path() / "autostart", "/usr/bin/kestrio");
    const auto failure = item.enable();
    ASSERT_TRUE(failure);
    EXPECT_NE(failure->find("Not a directory"), std::string::npos) << *failure;
    EXPECT_FALSE(item.isEnabled());
    EXPECT_EQ(item.disable(), std::nullopt);
}

TEST(AutostartLoginItem, quotesTheProgramByTheRulesOfDesktopEntries) {
    struct Row {
        const char* argument;
        const char* quoted;
    };
    const Row rows[] = {
        {"/usr/bin/kestrio", R"("/usr/bin/kestrio")"},
        {"/a b/k", R"("/a b/k")"},
        {"/a\"b", R"("/a\\"b")"},
        {"/a$b", R"("/a\\$b")"},
        {"/a`b", R"("/a\\`b")"},
        {"/a\\b", R"("/a\\\\b")"},
        {"/100%/k", R"("/100%%/k")"},
        {"/a\nb\tc", R"("/a\nb\tc")"},
        {"/é", R"("/é")"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(quotedForExec(row.argument), row.quoted) << row.argument;
}

TEST(AutostartLoginItem, anEntryCountsAsASessionManagerWouldTakeIt) {
    struct Row {
        const char* entry;
        bool enabled;
    };
    const Row rows[] = {
        {"", false},
        {"[Desktop Entry]\nType=Application\n", false},
        {"[Desktop Entry]\nExec=k\n", true},
        {"[Desktop Entry]\r\nExec = k\r\nHidden = false\r\n", true},
        {"[Desktop Entry]\nExec=k\nHidden=true\n", false},
        {"[Desktop Entry]\nExec=k\nX-GNOME-Autostart-enabled=false\n", false},
        {"[Desktop Entry]\nExec=k\n#Hidden=true\n", true},
        {"[Desktop Action x]\nHidden=true\n[Desktop Entry]\nExec=k\n", true},
        {"[Desktop Entry]\nHidden=true\n[Desktop Action x]\nExec=k\n", false},
        {"garbage", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isEnabledEntry(row.entry), row.enabled) << row.entry;
}

} // namespace
} // namespace kestrio
