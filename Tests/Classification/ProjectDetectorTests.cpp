#include "Kestrio/Classification/ProjectDetection.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using Project = std::optional<std::string>;
constexpr auto none = std::nullopt;

ProjectDetector detector() {
    return ProjectDetector({"Alice", "/home/alice-smith", "Walrus.example.org", {}});
}

struct Row {
    const char* title;
    Project project;
};

template <std::size_t Count>
void expectProjects(const char* bundleID, const char* appName, const Row (&rows)[Count]) {
    for (const auto& row : rows)
        EXPECT_EQ(detector().detect(bundleID, appName, row.title), row.project) << bundleID << ": " << row.title;
}

TEST(ProjectDetector, anEmptyTitleNamesNone) {
    for (const char* bundleID : {"com.microsoft.VSCode", "com.apple.dt.Xcode", "com.sublimetext.4", "io.alacritty"})
        EXPECT_EQ(detector().reading(bundleID, "", ""), ProjectReading());
}

TEST(ProjectDetector, anEditorShowsTheFileBeforeTheProject) {
    expectProjects("com.microsoft.VSCode", "Code",
                   {
                       {"main.cpp — kestrio", "kestrio"},
                       {"main.cpp – kestrio", "kestrio"},
                       {"main.cpp - kestrio", "kestrio"},
                       {"main.cpp - a — kestrio", "kestrio"},
                       {"main.cpp — a - b", "a - b"},
                       {"main.cpp — kestrio — Profile — more", "kestrio"},
                       {"main.cpp — kestrio — Visual Studio Code", "kestrio"},
                       {"Code — main.cpp — kestrio", "kestrio"},
                       {"CURSOR — main.cpp — kestrio", "kestrio"},
                       {"kestrio — Code", "kestrio"},
                       {"kestrio", "kestrio"},
                       {"main.cpp", none},
                       {"main.cpp — Code", none},
                       {"notes.markdown", "notes.markdown"}, // too long for an extension
                       {"a.exten6", none},
                       {"my notes.md", "my notes.md"},
                       {".bashrc", ".bashrc"},
                       {"archive.", "archive."},
                       {"folder.d/name", "folder.d/name"},
                       {"Code", none},
                       {"[Extension Development Host] main.cpp — kestrio", "kestrio"},
                       {"[Extension Development Host] — main.cpp — kestrio", "kestrio"},
                       {"[extension development host] x — kestrio", "kestrio"},
                       {"[Extension Development Host] x — main.cpp", none},
                       {"Welcome — kestrio", "kestrio"},
                       {"Welcome", none},
                       {"Get Started", none},
                       {"main.cpp — kestrio [SSH: walrus]", "kestrio"},
                       {"main.cpp — kestrio (Workspace)", "kestrio"},
                       {" — ", "—"}, // no two pieces: the whole title
                       {"main.cpp —  — kestrio", "kestrio"},
                       {" \t ", none},
                   });
}

TEST(ProjectDetector, knowsTheEditorsOfAFamilyByIdentifierOrByName) {
    for (const char* bundleID :
         {"com.microsoft.VSCode", "com.microsoft.VSCodeInsiders", "com.todesktop.230313mzl4w4u92",
          "com.exafunction.windsurf", "com.vscodium", "com.visualstudio.code.oss"})
        EXPECT_EQ(detector().detect(bundleID, "Whatever", "a.c — kestrio"), "kestrio") << bundleID;
    for (const char* name : {"Visual Studio Code", "Code", "code - insiders", "Cursor", "Windsurf", "VSCodium", "Kiro",
                             "Antigravity", "Trae"})
        EXPECT_EQ(detector().detect("org.example.unknown", name, "a.c — kestrio"), "kestrio") << name;
    EXPECT_EQ(detector().detect("org.example.unknown", "Codex", "a.c — kestrio"), none);
    EXPECT_EQ(detector().detect("com.microsoft.vscode", "", "a.c — kestrio"), none);
}

TEST(ProjectDetector, someShowTheProjectFirst) {
    for (const char* bundleID :
         {"com.apple.dt.Xcode", "dev.zed.Zed", "dev.zed.Zed-Preview", "com.google.android.studio", "com.panic.Nova",
          "com.jetbrains.goland", "com.jetbrains."})
        expectProjects(bundleID, "",
                       {
                           {"kestrio — main.cpp", "kestrio"},
                           {"kestrio – main.cpp [kestrio.core]", "kestrio"},
                           {"kestrio", "kestrio"},
                           {"main.cpp", "main.cpp"},
                           {"Welcome to Xcode", "Welcome to Xcode"},
                           {"WELCOME — file", none},
                           {"Untitled", none},
                           {"Kestrio.xcodeproj — main.swift", "Kestrio"},
                           {"Kestrio.xcworkspace", "Kestrio"},
                           {"Kestrio.xcodeproj (Workspace)", "Kestrio"},
                           {"Kestrio.code-workspace", "Kestrio"},
                           {"Kestrio.xcodeproj.xcworkspace", "Kestrio.xcodeproj"}, // each once, in their order
                           {"Kestrio.xcworkspace.xcodeproj", "Kestrio"},
                           {"Kestrio (Workspace) (Workspace)", "Kestrio (Workspace)"},
                           {".xcodeproj", none},
                       });
    EXPECT_EQ(detector().detect("com.jetbrains", "", "kestrio – main.cpp"), none);
}

TEST(ProjectDetector, oneShowsTheProjectInBrackets) {
    expectProjects("com.sublimetext.4", "Sublime Text",
                   {
                       {"main.cpp (kestrio)", "kestrio"},
                       {"main.cpp (kestrio) - Sublime Text", "kestrio"},
                       {"(a) main.cpp (kestrio)", "kestrio"},
                       {"main (1).cpp (kestrio) • ", "kestrio"},
                       {"a ((kestrio)", "kestrio"},
                       {"a (b(kestrio))", "kestrio)"},
                       {"main.cpp", none},
                       {"main.cpp (kestrio", none},
                       {"main.cpp kestrio)", none},
                       {")kestrio(", none},
                       {"main.cpp ()", none},
                       {"main.cpp (untitled)", none},
                   });
    EXPECT_EQ(detector().detect("com.sublimetext.3", "", "a (kestrio)"), "kestrio");
    EXPECT_EQ(detector().detect("com.sublimetext", "", "a (kestrio)"), none);
}

TEST(ProjectDetector, aTerminalShowsThePathOfItsFolder) {
    for (const char* bundleID :
         {"com.apple.Terminal", "com.googlecode.iterm2", "dev.warp.Warp-Stable", "com.mitchellh.ghostty",
          "net.kovidgoyal.kitty", "io.alacritty", "com.github.wez.wezterm"})
        expectProjects(bundleID, "Terminal",
                       {
                           {"~/work/kestrio", "kestrio"},
                           {"~/work/kestrio/", "kestrio"},
                           {"/srv/kestrio", "kestrio"},
                           {"alice@walrus: ~/work/kestrio", "kestrio"},
                           {"alice@walrus:~/work/kestrio (main)", "kestrio"},
                           {"~/first ~/second", "second"},
                           {"~/first — vim ~", "first"}, // a tilde alone never counts
                           {"make /first/a—/second/b", "b"},
                           {"/first/a|b", "a"},
                           {"/first/a–b", "a"},
                           {"/first/a\u00A0b", "a"},
                           {"~//", none},
                           {"/first //", none},
                           {"/", none},
                           {"~/", none},
                           {"~", none},
                           {"~ - zsh", none},
                           {"kestrio — zsh", "kestrio"},
                           {"kestrio — -zsh — 80×24", "kestrio"},
                           {"kestrio – BASH", "kestrio"},
                           {"kestrio - -bash", "kestrio"},
                           {"kestrio - fish", "kestrio"},
                           {"kestrio - -fish", "kestrio"},
                           {"kestrio - sh", "kestrio"},
                           {"kestrio - login", "kestrio"},
                           {"kestrio : bash", "kestrio"},
                           {"kestrio — vim", none},
                           {"kestrio — vim — zsh", none},
                           {"/ — zsh", "/"},
                           {"zsh", none},
                           {"kestrio", none},
                           {"alice — zsh", none},
                           {"ALICE — zsh", none},
                           {"/home/alice", none},
                           {"/home/alice-smith", none},
                           {"/home", none},
                           {"walrus — bash", none},
                           {"walrus.example.org — bash", none},
                           {"alice@walrus — bash", none},
                           {"alice@walrus: ~", none},
                           {"/tmp", none},
                           {"~/Downloads", none},
                           {"Terminal — bash", none},
                       });
}

TEST(ProjectDetector, otherApplicationsNameNone) {
    for (const char* bundleID : {"org.mozilla.firefox", "com.tinyspeck.slackmacgap", "org.kde.konsole", ""})
        EXPECT_EQ(detector().reading(bundleID, "Any", "main.cpp — kestrio"), ProjectReading());
}

TEST(ProjectDetector, aNameHasAtMostEightyCharacters) {
    std::string umlauts;
    for (int i = 0; i < 80; ++i)
        umlauts += "ü";
    for (const auto& name : {std::string(80, 'k'), umlauts}) {
        EXPECT_EQ(detector().detect("com.apple.dt.Xcode", "", name), name);
        EXPECT_EQ(detector().detect("com.apple.dt.Xcode", "", name + "k"), none);
        EXPECT_EQ(detector().detect("com.apple.dt.Xcode", "", name + ".xcodeproj"), name);
    }
}

TEST(ProjectDetector, namesThatSayNothingAreRefusedInAnyCase) {
    for (const char* name : {"welcome", "untitled", "settings", "get started", "release notes", "extensions",
                             "keyboard shortcuts", "walkthrough", "new tab", "terminal", "~", "desktop", "downloads",
                             "documents", "library", "tmp", "users", "applications", "alice"}) {
        std::string upper(name);
        for (auto& c : upper)
            c = static_cast<char>(std::toupper(c));
        for (const auto& title : {std::string(name), upper}) {
            const auto reading = detector().reading("com.apple.dt.Xcode", "", title);
            EXPECT_EQ(reading, (ProjectReading{TitleFamily::projectFirst, title, none})) << title;
        }
    }
    EXPECT_EQ(ProjectDetector().detect("com.apple.dt.Xcode", "", "alice"), "alice");
}

TEST(ProjectDetector, aTagBehindTheNameIsCutOff) {
    expectProjects("com.apple.dt.Xcode", "",
                   {
                       {"kestrio [main]", "kestrio"},
                       {"kestrio [main] [dirty]", "kestrio"},
                       {"kestrio[main]", "kestrio[main]"},
                       {" [main]", "[main]"}, // trimmed before it is looked for
                       {"kestrio.xcodeproj [main]", "kestrio"},
                       {"kestrio  [main]", "kestrio"},
                   });
}

TEST(ProjectDetector, applicationsOfTheHostJoinTheFamilies) {
    using enum TitleFamily;
    const ProjectDetector host({"alice",
                                "/home/alice",
                                "walrus",
                                {{"org.gnome.Builder", editor},
                                 {"org.kde.kdevelop", projectFirst},
                                 {"org.kde.konsole", terminal},
                                 {"org.gnome.TextEditor", folderInBrackets},
                                 {"geany", folderBehindFile},
                                 {"org.kde.kate", sessionFirst}}});
    const struct {
        const char* bundleID;
        const char* appName;
        const char* title;
        Project project;
    } rows[] = {
        {"org.gnome.Builder", "Builder", "Builder — kestrio", "kestrio"},
        {"org.gnome.Builder", "Builder", "Builder", none},
        {"org.kde.kdevelop", "KDevelop", "kestrio - [ main.cpp ]", "kestrio"},
        {"org.kde.kdevelop", "KDevelop", "KDevelop", none},
        {"org.kde.konsole", "Konsole", "kestrio : bash", "kestrio"},
        {"org.kde.konsole", "Konsole", "~ : bash", none},
        {"org.kde.konsole", "Konsole", "~/work/kestrio : vim", "kestrio"},
        {"org.gnome.TextEditor", "Text Editor", "main.cpp (~/work/kestrio)", "kestrio"},
        {"org.gnome.TextEditor", "Text Editor", "main.cpp (~/Documents)", none},
        {"org.gnome.TextEditor", "Text Editor", "main.cpp (~)", none},
        {"org.gnome.TextEditor", "Text Editor", "main.cpp (Draft)", "Draft"},
        {"org.gnome.TextEditor", "Text Editor", "New Document", none},
        {"geany", "Geany", "main.cpp - /home/alice/work/kestrio", "kestrio"},
        {"geany", "Geany", "main.cpp - /home/alice/work/kestrio/src - [Kestrio]", "Kestrio"},
        {"geany", "Geany", "main.cpp - ~/work/kestrio", "kestrio"},
        {"geany", "Geany", "main.cpp - /home/alice", none},
        {"geany", "Geany", "untitled", none},
        {"geany", "Geany", "[Kestrio]", none},
        {"org.kde.kate", "Kate", "kestrio: main.cpp", "kestrio"},
        {"org.kde.kate", "Kate", "main.cpp", none},
        {"org.kde.kate", "Kate", "Welcome", none},
    };
    for (const auto& row : rows)
        EXPECT_EQ(host.detect(row.bundleID, row.appName, row.title), row.project) << row.bundleID << ": " << row.title;
}

TEST(ProjectDetector, aBuiltInFamilyComesBeforeTheHosts) {
    const ProjectDetector host({"", "", "", {{"io.alacritty", TitleFamily::projectFirst}}});
    EXPECT_EQ(host.reading("io.alacritty", "", "a — b").family, TitleFamily::terminal);
}

TEST(ProjectDetector, showsTheWayToItsAnswer) {
    EXPECT_EQ(detector().reading("com.microsoft.VSCode", "Code", "a.c — kestrio [x]"),
              (ProjectReading{TitleFamily::editor, "kestrio [x]", "kestrio"}));
    EXPECT_EQ(detector().reading("com.microsoft.VSCode", "Code", "a.c"),
              (ProjectReading{TitleFamily::editor, none, none}));
    EXPECT_EQ(detector().reading("io.alacritty", "", "~/tmp"), (ProjectReading{TitleFamily::terminal, "tmp", none}));
}

TEST(TitleFamilies, haveRawTexts) {
    using enum TitleFamily;
    for (const auto family :
         {editor, projectFirst, projectInBrackets, terminal, folderInBrackets, folderBehindFile, sessionFirst})
        EXPECT_EQ(titleFamily(rawValue(family)), family);
    EXPECT_EQ(rawValue(sessionFirst), "sessionFirst");
    EXPECT_EQ(titleFamily("Editor"), none);
    EXPECT_EQ(titleFamily(""), none);
}

} // namespace
} // namespace kestrio
