#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/DesktopEntries.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

std::string entryText(const std::string& lines) {
    return "[Desktop Entry]\nType=Application\n" + lines;
}

TEST(DesktopFile, choosesTheTranslationThatFitsBest) {
    const auto text = entryText("Name[sr]=language\nName=plain\nName[sr_RS@latin]=all\nName[sr@latin]=modifier\n"
                                "Name[sr_RS]=country\nName[de]=German\n");
    const struct {
        const char* locale;
        const char* name;
    } rows[] = {{"sr_RS.UTF-8@latin", "all"},
                {"sr_ME@latin", "modifier"},
                {"sr_RS.UTF-8", "country"},
                {"sr_ME", "language"},
                {"sr", "language"},
                {"de_AT.UTF-8", "German"},
                {"fr_FR", "plain"},
                {"C", "plain"},
                {"", "plain"}};
    for (const auto& row : rows)
        EXPECT_EQ(parseDesktopFile(text, row.locale).entry.name, row.name) << row.locale;
}

TEST(DesktopFile, readsTheMainGroupOnly) {
    const auto file = parseDesktopFile(
        "# a comment\nName=outside\n" + entryText(" Name = Files \r\nIcon=folder\nStartupWMClass=Thing\n"
                                                  "Categories=Game;X;\nNoDisplay=true\nExec=/opt/a\\\\ b/run %u\n"
                                                  "#Name=commented\n[Desktop Action new]\nName=action\nExec=other\n"),
        "");
    EXPECT_TRUE(file.isApplication);
    EXPECT_FALSE(file.isHidden);
    EXPECT_EQ(file.entry, (DesktopEntry{"", "Files", "folder", "/opt/a\\", "Thing", "Game;X;", false}));
}

TEST(DesktopFile, undoesEscapesAndMendsBytesThatAreNoText) {
    EXPECT_EQ(parseDesktopFile(entryText("Name=a\\sb\\tc\\\\d\\qe\\"), "").entry.name, "a b\tc\\d\\qe\\");
    EXPECT_EQ(parseDesktopFile(entryText("Name=a\xff"), "").entry.name, "a\xEF\xBF\xBD");
}

TEST(DesktopFile, knowsWhatATerminalShows) {
    EXPECT_TRUE(parseDesktopFile(entryText("Terminal=true\n"), "").entry.runsInTerminal);
    EXPECT_FALSE(parseDesktopFile(entryText("Terminal=false\n"), "").entry.runsInTerminal);
    EXPECT_FALSE(parseDesktopFile(entryText(""), "").entry.runsInTerminal);
}

TEST(DesktopFile, standsWhateverItIsGiven) {
    for (const std::string text : {"", "=", "[Desktop Entry]", "[Desktop Entry]\n=\n=x\nName", "\n\n[", "Name[=x"})
        EXPECT_FALSE(parseDesktopFile(text, "de").isApplication) << text;
}

TEST(DesktopFile, findsTheProgramOfACommandLine) {
    const struct {
        const char* exec;
        const char* program;
        bool hasOptions;
    } rows[] = {
        {"firefox %u", "firefox", false},
        {"/usr/bin/gimp-2.10 %U", "/usr/bin/gimp-2.10", false},
        {"\"/opt/My App/run it\" --x", "/opt/My App/run it", true},
        {"browser --app-id=mail %U", "browser", true},
        {"\"a\\\"b\" c", "a\"b", false},
        {"env BAMF_DESKTOP_FILE_HINT=/x.desktop /snap/bin/firefox %u", "/snap/bin/firefox", false},
        {"/usr/bin/env -u X A=1 B=2 prog", "prog", false},
        {"/usr/bin/env -u X prog -x", "prog", true},
        {"  spaced   arg", "spaced", false},
        {"env A=1", "", false},
        {"", "", false},
        {"\"open", "open", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(programOfExec(row.exec), row.program) << row.exec;
        EXPECT_EQ(hasOptionsInExec(row.exec), row.hasOptions) << row.exec;
    }
}

TEST(DesktopEntries, takeTheirFoldersFromTheEnvironment) {
    const auto folders = applicationFolders([](const std::string& name) -> std::optional<std::string> {
        if (name == "HOME")
            return "/home/a";
        if (name == "XDG_DATA_DIRS")
            return "/one:relative::/two/";
        return std::nullopt;
    });
    EXPECT_EQ(folders,
              (std::vector<fs::path>{"/home/a/.local/share/applications", "/one/applications", "/two/applications"}));
    EXPECT_EQ(applicationFolders([](const std::string&) { return std::nullopt; }),
              (std::vector<fs::path>{"/usr/local/share/applications", "/usr/share/applications"}));
}

class DesktopEntriesInFolders : public testing::Test {
protected:
    void add(const std::string& file, const std::string& lines) { folder.write(file, entryText(lines)); }

    TemporaryFolder folder;
    VirtualTime time{Date(0)};
    DesktopEntries entries{{folder.path() / "own", folder.path() / "shared"}, "", time};
};

TEST_F(DesktopEntriesInFolders, nameASubfolderInTheId) {
    add("own/kde/deep/a.desktop", "Name=A\n");
    ASSERT_TRUE(entries.byID("kde-deep-a"));
    EXPECT_EQ(entries.byID("KDE-Deep-A.desktop"), entries.byID("kde-deep-a"));
    EXPECT_EQ(entries.byFile(folder.path() / "own/kde/deep/a.desktop"), entries.byID("kde-deep-a"));
    EXPECT_EQ(entries.byID("a"), nullptr);
    EXPECT_EQ(entries.byID(""), nullptr);
}

TEST_F(DesktopEntriesInFolders, theFirstFolderWins) {
    add("own/a.desktop", "Name=own\n");
    add("shared/a.desktop", "Name=shared\n");
    ASSERT_TRUE(entries.byID("a"));
    EXPECT_EQ(entries.byID("a")->name, "own");
}

TEST_F(DesktopEntriesInFolders, aHiddenFileDeletesThoseOfLaterFolders) {
    add("own/a.desktop", "Hidden=true\n");
    add("shared/a.desktop", "Name=shared\n");
    EXPECT_EQ(entries.byID("a"), nullptr);
}

TEST_F(DesktopEntriesInFolders, anEntryThatIsNotDisplayedStillIdentifiesButComesLast) {
    add("own/a-handler.desktop", "Name=handler\nNoDisplay=true\nStartupWMClass=Alpha\nExec=alpha --open\n");
    EXPECT_EQ(entries.byWindowClass("alpha")->id, "a-handler");
    add("shared/b.desktop", "Name=main\nStartupWMClass=Alpha\nExec=alpha\n");
    time.advance(Seconds(3));
    entries.refresh();
    EXPECT_EQ(entries.byWindowClass("ALPHA")->id, "b");
    EXPECT_EQ(entries.byProgram("alpha")->id, "b");
    EXPECT_EQ(entries.byID("a-handler")->name, "handler");
}

TEST_F(DesktopEntriesInFolders, aClassFindsTheEntryThatClaimsItBeforeThatOfTheSameId) {
    add("own/alpha.desktop", "Name=by id\n");
    add("own/org.example.Beta.desktop", "Name=by last part\n");
    add("own/z.desktop", "Name=by claim\nStartupWMClass=Alpha\n");
    EXPECT_EQ(entries.byWindowClass("alpha")->name, "by claim");
    EXPECT_EQ(entries.byWindowClass("Beta")->name, "by last part");
    EXPECT_EQ(entries.byWindowClass("org.example.beta")->name, "by last part");
    EXPECT_EQ(entries.byWindowClass("gamma"), nullptr);
    EXPECT_EQ(entries.byWindowClass(""), nullptr);
}

TEST_F(DesktopEntriesInFolders, aProgramIsFoundByItsNameAndByWhatItIsALinkTo) {
    const auto real = folder.write("opt/alpha-1.2/alpha-real", "");
    fs::create_symlink(real, folder.path() / "opt/alpha");
    add("own/a.desktop", "Exec=" + (folder.path() / "opt/alpha").native() + " %u\n");
    add("own/script.desktop", "Exec=/usr/bin/python3 tool.py\n");
    EXPECT_EQ(entries.byProgram("alpha")->id, "a");
    EXPECT_EQ(entries.byProgram("alpha-real")->id, "a");
    EXPECT_EQ(entries.byProgram("python3"), nullptr) << "an interpreter names no application";
}

TEST_F(DesktopEntriesInFolders, aProgramIsItsOwnEntryBeforeThoseOfItsPartsAndPages) {
    add("own/alpha-mail.desktop", "Name=Mail\nExec=alpha --app-id=mail %U\n");
    add("shared/org.example.alpha-settings.desktop", "Name=Settings\nExec=alpha --preferences\n");
    EXPECT_EQ(entries.byProgram("alpha")->name, "Mail") << "better than none";
    add("shared/org.example.alpha.desktop", "Name=Alpha\nExec=alpha %U\n");
    time.advance(Seconds(3));
    entries.refresh();
    EXPECT_EQ(entries.byProgram("alpha")->name, "Alpha");
}

TEST_F(DesktopEntriesInFolders, areReadAgainOnceAFolderChanged) {
    fs::create_directories(folder.path() / "own");
    const auto version = entries.refresh();
    EXPECT_EQ(entries.byID("a"), nullptr);
    add("own/a.desktop", "Name=A\n");
    EXPECT_EQ(entries.refresh(), version) << "looked again too soon";
    time.advance(Seconds(3));
    EXPECT_GT(entries.refresh(), version);
    EXPECT_TRUE(entries.byID("a"));
    const auto later = entries.refresh();
    time.advance(Seconds(3));
    EXPECT_EQ(entries.refresh(), later) << "read again though nothing changed";
    add("shared/new/b.desktop", "Name=B\n");
    time.advance(Seconds(3));
    entries.refresh();
    EXPECT_TRUE(entries.byID("new-b")) << "a folder that was not there before";
}

TEST_F(DesktopEntriesInFolders, otherFilesAndLinksAreLeftAlone) {
    folder.write("own/notes.txt", entryText("Name=x\n"));
    folder.write("own/link.desktop", "[Desktop Entry]\nType=Link\nName=x\n");
    fs::create_symlink("/nowhere", folder.path() / "own/broken.desktop");
    fs::create_directory_symlink(folder.path() / "own", folder.path() / "own/loop");
    add("own/a.desktop", "Name=A\n");
    EXPECT_EQ(entries.byID("link"), nullptr);
    EXPECT_EQ(entries.byID("notes"), nullptr);
    EXPECT_EQ(entries.byID("broken"), nullptr);
    EXPECT_TRUE(entries.byID("a"));
}

} // namespace
} // namespace kestrio
