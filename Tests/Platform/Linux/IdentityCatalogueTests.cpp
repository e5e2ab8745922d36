#include "Kestrio/Platform/Linux/IdentityCatalogue.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace kestrio {
namespace {

const IdentityCatalogue& catalogue() {
    return IdentityCatalogue::builtIn();
}

/// The identifiers of the built-in tables of categories, browsers, editors and terminals that exist on this host, as
/// they are spelled there.
const std::set<std::string_view> spelledInTables{"com.google.Chrome",
                                                 "com.google.Chrome.beta",
                                                 "com.google.Chrome.dev",
                                                 "com.google.Chrome.canary",
                                                 "org.chromium.Chromium",
                                                 "com.brave.Browser",
                                                 "com.brave.Browser.beta",
                                                 "com.microsoft.edgemac",
                                                 "com.microsoft.edgemac.Beta",
                                                 "com.vivaldi.Vivaldi",
                                                 "com.operasoftware.Opera",
                                                 "org.mozilla.firefox",
                                                 "org.mozilla.firefoxdeveloperedition",
                                                 "org.mozilla.nightly",
                                                 "app.zen-browser.zen",
                                                 "net.waterfox.waterfox",
                                                 "com.microsoft.VSCode",
                                                 "com.microsoft.VSCodeInsiders",
                                                 "com.visualstudio.code.oss",
                                                 "com.todesktop.230313mzl4w4u92",
                                                 "com.exafunction.windsurf",
                                                 "com.vscodium",
                                                 "dev.zed.Zed",
                                                 "dev.zed.Zed-Preview",
                                                 "com.sublimetext.4",
                                                 "com.google.android.studio",
                                                 "dev.warp.Warp-Stable",
                                                 "com.mitchellh.ghostty",
                                                 "net.kovidgoyal.kitty",
                                                 "io.alacritty",
                                                 "com.github.wez.wezterm",
                                                 "com.github.GitHubClient",
                                                 "com.axosoft.gitkraken",
                                                 "com.sublimemerge",
                                                 "com.postmanlabs.mac",
                                                 "com.insomnia.app",
                                                 "com.tinyapp.TablePlus",
                                                 "com.electron.dockerdesktop",
                                                 "com.proxyman.NSProxy",
                                                 "com.charlesproxy.charles",
                                                 "org.dbeaver.dbeaver",
                                                 "com.mongodb.compass",
                                                 "com.openai.codex",
                                                 "com.figma.Desktop",
                                                 "notion.id",
                                                 "md.obsidian",
                                                 "com.todoist.mac.Todoist",
                                                 "com.electron.logseq",
                                                 "com.clickup.desktop-app",
                                                 "com.blackmagic-design.DaVinciResolve",
                                                 "com.anthropic.claudefordesktop",
                                                 "com.openai.chat",
                                                 "com.amazon.Kindle",
                                                 "com.tinyspeck.slackmacgap",
                                                 "net.whatsapp.WhatsApp",
                                                 "com.hnc.Discord",
                                                 "us.zoom.xos",
                                                 "com.microsoft.teams2",
                                                 "com.microsoft.teams",
                                                 "org.telegram.desktop",
                                                 "com.skype.skype",
                                                 "com.facebook.archon",
                                                 "com.spotify.client",
                                                 "org.videolan.vlc",
                                                 "com.valvesoftware.steam"};

TEST(IdentityCatalogue, hasNoMistakes) {
    for (const auto& mistake : catalogue().mistakes())
        ADD_FAILURE() << mistake;
}

TEST(IdentityCatalogue, spellsEachIdentifierAsTheBuiltInTablesDo) {
    for (const auto identifier : spelledInTables)
        EXPECT_EQ(catalogue().identifier(identifier), identifier);
}

TEST(IdentityCatalogue, knowsApplicationsUnderTheNamesOfAllPackagers) {
    const struct {
        const char* name;
        const char* identifier;
    } rows[] = {
        {"firefox", "org.mozilla.firefox"},
        {"firefox-esr", "org.mozilla.firefox"},
        {"firefox_firefox", "org.mozilla.firefox"},
        {"org.mozilla.firefox", "org.mozilla.firefox"},
        {"Firefox-ESR", "org.mozilla.firefox"},
        {"code", "com.microsoft.VSCode"},
        {"Code", "com.microsoft.VSCode"},
        {"code_code", "com.microsoft.VSCode"},
        {"com.visualstudio.code", "com.microsoft.VSCode"},
        {"google-chrome", "com.google.Chrome"},
        {"com.google.Chrome", "com.google.Chrome"},
        {"COM.GOOGLE.CHROME", "com.google.Chrome"},
        {"kitty", "net.kovidgoyal.kitty"},
        {"org.telegram.desktop", "org.telegram.desktop"},
        {"TelegramDesktop", "org.telegram.desktop"},
        {"com.valvesoftware.Steam", "com.valvesoftware.steam"},
        {"org.videolan.VLC", "org.videolan.vlc"},
        {"jetbrains-studio", "com.google.android.studio"},
        {"debian-xterm", "xterm"},
        {"XTerm", "xterm"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(catalogue().identifier(row.name), row.identifier) << row.name;
    for (const char* unknown : {"", "nobody-knows", "firefo", "firefoxx", " firefox", "\xff"})
        EXPECT_EQ(catalogue().identifier(unknown), std::nullopt) << unknown;
}

TEST(IdentityCatalogue, derivesTheIdentifiersOfAFamily) {
    const struct {
        const char* desktopID;
        const char* identifier;
    } rows[] = {
        {"jetbrains-idea", "com.jetbrains.intellij"},
        {"jetbrains-idea-5d0b3c2a-1111-2222-3333-444455556666", "com.jetbrains.intellij"},
        {"JetBrains-Idea-CE", "com.jetbrains.intellij.ce"},
        {"jetbrains-aqua", "com.jetbrains.aqua"},
        {"jetbrains-aqua-5d0b3c2a-1111-2222-3333-444455556666", "com.jetbrains.aqua"},
        {"pycharm-community_pycharm-community", "com.jetbrains.pycharm.ce"},
        {"com.jetbrains.GoLand", "com.jetbrains.goland"},
        {"org.Unknown.App", "org.Unknown.App"},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(catalogue().identifierOfDesktopID(row.desktopID), row.identifier) << row.desktopID;
}

TEST(IdentityCatalogue, aMemberOfARoleIsWhatItsNamesLeadTo) {
    for (const auto role : {IdentityRole::lockScreen, IdentityRole::prompt, IdentityRole::essential}) {
        EXPECT_FALSE(catalogue().members(role).empty());
        std::set<std::string_view> seen;
        for (const auto member : catalogue().members(role)) {
            EXPECT_EQ(catalogue().identifier(member), member);
            EXPECT_TRUE(seen.insert(member).second) << member << " stands twice";
        }
    }
}

TEST(IdentityCatalogue, knowsTheRolesOfThisHostsApplications) {
    const auto has = [](IdentityRole role, std::string_view name) {
        const auto& members = catalogue().members(role);
        const auto identifier = catalogue().identifier(name);
        return identifier && std::find(members.begin(), members.end(), *identifier) != members.end();
    };
    for (const char* name : {"xscreensaver", "i3lock", "light-locker", "kscreenlocker_greet", "swaylock"})
        EXPECT_TRUE(has(IdentityRole::lockScreen, name)) << name;
    for (const char* name : {"pinentry-gtk-2", "Gcr-prompter", "polkit-gnome-authentication-agent-1", "ssh-askpass",
                             "xdg-desktop-portal-gtk"})
        EXPECT_TRUE(has(IdentityRole::prompt, name)) << name;
    for (const char* name : {"gnome-shell", "xfce4-panel", "Thunar", "nautilus", "openbox", "gnome-control-center",
                             "gnome-system-monitor", "kitty", "xterm", "konsole", "docker-desktop", "virt-manager"})
        EXPECT_TRUE(has(IdentityRole::essential, name)) << name;
    EXPECT_FALSE(has(IdentityRole::essential, "firefox"));
}

TEST(IdentityCatalogue, namesAllNamesOfAnIdentifier) {
    const auto names = catalogue().namesOf("com.microsoft.edgemac.Beta");
    EXPECT_EQ(
        std::set<std::string_view>(names.begin(), names.end()),
        (std::set<std::string_view>{"com.microsoft.edgemac.Beta", "microsoft-edge-beta", "com.microsoft.EdgeBeta"}));
    EXPECT_TRUE(catalogue().namesOf("nobody.knows").empty());
}

TEST(IdentityCatalogue, tellsItsAuthorOfMistakes) {
    const IdentityCatalogue faulty({{std::nullopt, "# comment\n\na\tx\nb\tX\nc\t\n"}});
    EXPECT_EQ(faulty.mistakes(),
              (std::vector<std::string>{"an empty name, or a blank before one, at c", "\"X\" is a and b"}));
}

TEST(DesktopCategories, suggestAnActivityCategory) {
    const struct {
        const char* categories;
        const char* category;
    } rows[] = {
        {"TextEditor;Development;IDE;", "development"},
        {"IDE", "development"},
        {"System;TerminalEmulator;", "development"},
        {"Education;Development;", "development"},
        {"Office;WordProcessor;", "work"},
        {"Graphics;2DGraphics;", "work"},
        {"AudioVideo;Video;AudioVideoEditing;", "work"},
        {"Office;Education;Science;Math;", "work"},
        {"Education;Science;", "learning"},
        {"Education;Game;KidsGame;", "learning"},
        {"Network;InstantMessaging;", "communication"},
        {"GNOME;GTK;Office;Email;Calendar;", "communication"},
        {"Network;Chat", "communication"},
        {"AudioVideo;Player;", "entertainment"},
        {"Game;ActionGame;", "entertainment"},
        {"Network;WebBrowser;", "other"},
        {"Games;Developments;", "other"},
        {";;", "other"},
        {"", "other"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(categoryOfDesktopCategories(row.categories), row.category) << row.categories;
}

TEST(IdentityCatalogue, knowsThisProgramsOwnWindows) {
    for (const auto* name : {"kestrio", "Kestrio", "kestrio-window"})
        EXPECT_EQ(IdentityCatalogue::builtIn().identifier(name), "dev.haldorvinter.Kestrio") << name;
}

} // namespace
} // namespace kestrio
