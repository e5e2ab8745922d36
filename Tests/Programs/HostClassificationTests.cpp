#include "Kestrio/Platform/Linux/IdentityCatalogue.h"
#include "Kestrio/Platform/Linux/TitleFamilies.h"
#include "Programs/Agent/HostClassification.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using enum ActivityCategory;

std::string identifier(const char* name) {
    return IdentityCatalogue::builtIn().identifierOfDesktopID(name);
}

Environment environment(const std::filesystem::path& home) {
    return [home](const std::string& name) -> std::optional<std::string> {
        if (name == "HOME")
            return home.string();
        if (name == "LOGNAME")
            return "alice";
        if (name == "XDG_DATA_DIRS")
            return (home / "share").string();
        return std::nullopt;
    };
}

TEST(HostClassification, whatTheCatalogueKnowsOfTheTablesItSpellsAsTheyDo) {
    std::size_t known = 0;
    for (const auto& [bundleID, category] : builtInApps())
        if (const auto found = IdentityCatalogue::builtIn().identifier(bundleID)) {
            EXPECT_EQ(*found, bundleID);
            ++known;
        }
    EXPECT_GE(known, 50u);
}

TEST(HostClassification, applicationsBelongWhereTheirMakersNamesDo) {
    const struct {
        ActivityCategory category;
        std::vector<const char*> names; // of the maker, Debian, Flathub and Snap
    } rows[] = {
        {development, {"code", "code_code", "com.visualstudio.code", "code-url-handler", "Code"}},
        {development, {"codium", "codium_codium", "com.vscodium.codium"}},
        {development, {"cursor", "windsurf", "zed", "dev.zed.Zed"}},
        {development, {"sublime_text", "sublime-text_subl", "com.sublimetext.three"}},
        {development,
         {"jetbrains-idea", "jetbrains-goland", "pycharm-community_pycharm-community",
          "com.jetbrains.PyCharm-Community", "jetbrains-aqua"}},
        {development, {"android-studio", "android-studio_android-studio", "com.google.AndroidStudio"}},
        {development, {"kitty", "Alacritty", "alacritty_alacritty", "org.wezfurlong.wezterm", "com.mitchellh.ghostty"}},
        {development, {"github-desktop", "io.github.shiftey.Desktop", "gitkraken_gitkraken", "postman_postman"}},
        {development, {"dbeaver-ce", "io.dbeaver.DBeaverCommunity", "docker-desktop"}},
        {work,
         {"figma-linux", "notion-snap-reborn_notion-snap-reborn", "obsidian", "obsidian_obsidian",
          "md.obsidian.Obsidian"}},
        {work, {"todoist", "com.todoist.Todoist", "logseq", "com.logseq.Logseq", "clickup"}},
        {work, {"p3x-onenote_p3x-onenote", "linear-desktop", "canva"}},
        {learning, {"claude-desktop", "chatgpt", "perplexity"}},
        {communication, {"slack", "slack_slack", "com.slack.Slack", "Slack"}},
        {communication, {"telegram-desktop", "org.telegram.desktop", "telegram-desktop_telegram-desktop"}},
        {communication,
         {"discord", "discord_discord", "com.discordapp.Discord", "zoom", "us.zoom.Zoom", "zoom-client_zoom-client"}},
        {communication,
         {"teams-for-linux", "com.github.IsmaelMartinez.teams_for_linux", "skypeforlinux", "whatsapp-for-linux",
          "com.rtosta.zapzap", "prospect-mail_prospect-mail"}},
        {entertainment, {"spotify", "spotify_spotify", "com.spotify.Client", "vlc", "vlc_vlc", "org.videolan.VLC"}},
        {entertainment, {"steam", "com.valvesoftware.Steam", "steam_steam", "cider"}},
        {other, {"firefox", "firefox-esr", "firefox_firefox", "org.mozilla.firefox", "google-chrome"}},
    };
    for (const auto& row : rows)
        for (const char* name : row.names)
            EXPECT_EQ(Categorizer::Snapshot().appCategory(identifier(name)), row.category) << name;
}

TEST(HostClassification, everyFamilyOfTitlesIsKnown) {
    for (const auto& member : titleFamilyMembers())
        EXPECT_TRUE(titleFamily(member.family)) << member.family;
    EXPECT_EQ(projectHost(environment("/home/alice")).applications.size(), titleFamilyMembers().size());
}

TEST(HostClassification, projectsAreReadFromTitlesOfThisHostsApplications) {
    const ProjectDetector detector(projectHost(environment("/home/alice")));
    const struct {
        const char* name;
        const char* appName;
        const char* title;
        std::optional<std::string> project;
    } rows[] = {
        {"code", "Visual Studio Code", "main.cpp - kestrio", "kestrio"},
        {"code-oss", "Code - OSS", "main.cpp - kestrio - Code - OSS", "kestrio"},
        {"jetbrains-clion", "CLion", "kestrio – main.cpp", "kestrio"},
        {"org.gnome.Builder", "Builder", "Builder — kestrio", "kestrio"},
        {"kdevelop_kdevelop", "KDevelop", "kestrio - [ main.cpp ]", "kestrio"},
        {"kate", "Kate", "kestrio: main.cpp", "kestrio"},
        {"org.geany.Geany", "Geany", "main.cpp - /home/alice/kestrio", "kestrio"},
        {"org.godotengine.Godot", "Godot", "main.tscn - kestrio - Godot Engine", "kestrio"},
        {"gedit", "gedit", "main.cpp (~/work/kestrio)", "kestrio"},
        {"debian-xterm", "XTerm", "alice@walrus: ~/work/kestrio", "kestrio"},
        {"gnome-terminal", "Terminal", "alice@walrus: ~/work/kestrio", "kestrio"},
        {"org.codeberg.dnkl.foot", "foot", "~/work/kestrio", "kestrio"},
        {"konsole", "Konsole", "kestrio : bash", "kestrio"},
        {"kitty", "kitty", "~/work/kestrio", "kestrio"},
        {"debian-xterm", "XTerm", "alice@walrus: ~", std::nullopt},
        {"debian-xterm", "XTerm", "alice@walrus: /home/alice", std::nullopt},
        {"debian-xterm", "XTerm", "xterm", std::nullopt},
        {"firefox", "Firefox", "~/work/kestrio", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(detector.detect(identifier(row.name), row.appName, row.title), row.project) << row.title;
}

TEST(HostClassification, anUnknownApplicationIsWhatItsDesktopFileSays) {
    const TemporaryFolder folder;
    folder.write("share/applications/org.example.Chat.desktop",
                 "[Desktop Entry]\nType=Application\nName=Chat\nExec=chat\nCategories=Network;Chat;\n");
    const SystemClock clock;
    const Categorizer::Snapshot snapshot{{}, {}, hostHint(environment(folder.path()), clock)};
    EXPECT_EQ(snapshot.appCategory("org.example.Chat"), communication);
    EXPECT_EQ(snapshot.appCategory("org.example.absent"), other);
    EXPECT_EQ(snapshot.appCategory("com.spotify.client"), entertainment);
}

} // namespace
} // namespace kestrio
