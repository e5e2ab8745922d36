#include "Kestrio/Base/VirtualQueue.h"
#include "Kestrio/Platform/Linux/ApplicationIcons.h"
#include "Kestrio/Platform/Linux/KeyFile.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

TEST(KeyFile, hasGroupsOfKeysAndValues) {
    const auto file = parseKeyFile("lost=1\n# remark\n[Icon Theme]\r\nName = Plain \nInherits=a,b\nName=again\n\n"
                                   "[48x48/apps]\nSize=48\n#Type=Fixed\n=no key\nno value\n[]\nstill=48\n");
    EXPECT_EQ(value(file, "Icon Theme", "Name"), "Plain");
    EXPECT_EQ(value(file, "Icon Theme", "Inherits"), "a,b");
    EXPECT_EQ(value(file, "48x48/apps", "Size"), "48");
    EXPECT_EQ(value(file, "48x48/apps", "Type"), "");
    EXPECT_EQ(value(file, "48x48/apps", "still"), "48");
    EXPECT_EQ(value(file, "none", "Size"), "");
    EXPECT_TRUE(parseKeyFile("").empty());
    EXPECT_TRUE(readKeyFile("/nonexistent/file").empty());
    EXPECT_TRUE(readKeyFile("/").empty());
}

/// A person's folders with icon themes.
struct IconThemeTest : testing::Test {
    TemporaryFolder folder;
    const fs::path own = folder.path() / "home/.icons";
    const fs::path shared = folder.path() / "share/icons";
    const fs::path pixmaps = folder.path() / "share/pixmaps";

    void write(const fs::path& file, const std::string& text = "x") {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    void addTheme(const fs::path& base, const std::string& name, const std::string& inherits,
                  const std::string& folders) {
        std::string list;
        for (std::size_t at = 0; (at = folders.find('[', at)) != std::string::npos; ++at)
            list += folders.substr(at + 1, folders.find(']', at) - at - 1) + ",";
        write(base / name / "index.theme",
              "[Icon Theme]\nName=" + name + "\nInherits=" + inherits + "\nDirectories=" + list + "\n" + folders);
    }
    std::string find(const std::string& theme, const std::string& name, int pixels) {
        const auto file = IconTheme({own, shared, pixmaps}, theme).find(name, pixels);
        return file ? fs::relative(*file, folder.path()).string() : "";
    }
};

constexpr auto sizes = "[16x16/apps]\nSize=16\nType=Fixed\n[48x48/apps]\nSize=48\nType=Threshold\n"
                       "[scalable/apps]\nSize=128\nMinSize=64\nMaxSize=512\nType=Scalable\n";

TEST_F(IconThemeTest, takesTheSizeThatFitsBest) {
    addTheme(shared, "hicolor", "", sizes);
    for (const auto* size : {"16x16", "48x48", "scalable"})
        write(shared / "hicolor" / size / "apps" / (std::string("app") + (*size == 's' ? ".svg" : ".png")));
    const struct {
        int pixels;
        const char* file;
    } rows[] = {
        {16, "share/icons/hicolor/16x16/apps/app.png"},     {48, "share/icons/hicolor/48x48/apps/app.png"},
        {50, "share/icons/hicolor/48x48/apps/app.png"},     {24, "share/icons/hicolor/16x16/apps/app.png"},
        {28, "share/icons/hicolor/48x48/apps/app.png"},     {64, "share/icons/hicolor/scalable/apps/app.svg"},
        {300, "share/icons/hicolor/scalable/apps/app.svg"}, {2000, "share/icons/hicolor/scalable/apps/app.svg"}};
    for (const auto& row : rows)
        EXPECT_EQ(find("", "app", row.pixels), row.file) << row.pixels;
}

TEST_F(IconThemeTest, asksThePersonsThemeThenItsParentsThenTheCommonOne) {
    addTheme(shared, "hicolor", "", sizes);
    addTheme(shared, "parent", "hicolor", sizes);
    addTheme(own, "chosen", "parent,hicolor", sizes);
    for (const auto* name : {"a", "b", "c"})
        write(shared / "hicolor/48x48/apps" / (std::string(name) + ".png"));
    write(shared / "parent/48x48/apps/a.png");
    write(shared / "parent/48x48/apps/b.png");
    write(own / "chosen/48x48/apps/a.png");
    EXPECT_EQ(find("chosen", "a", 48), "home/.icons/chosen/48x48/apps/a.png");
    EXPECT_EQ(find("chosen", "b", 48), "share/icons/parent/48x48/apps/b.png");
    EXPECT_EQ(find("chosen", "c", 48), "share/icons/hicolor/48x48/apps/c.png");
    EXPECT_EQ(find("chosen", "d", 48), "");
}

TEST_F(IconThemeTest, looksForAThemesFoldersInAllPlaces) {
    addTheme(shared, "hicolor", "", sizes);
    write(own / "hicolor/48x48/apps/mine.png");
    EXPECT_EQ(find("", "mine", 48), "home/.icons/hicolor/48x48/apps/mine.png");
}

TEST_F(IconThemeTest, findsWhatStandsBesideAllThemes) {
    write(pixmaps / "old.xpm");
    write(shared / "loose.svg");
    EXPECT_EQ(find("", "old", 48), "share/pixmaps/old.xpm");
    EXPECT_EQ(find("", "old.xpm", 48), "share/pixmaps/old.xpm");
    EXPECT_EQ(find("nosuchtheme", "loose", 48), "share/icons/loose.svg");
}

TEST_F(IconThemeTest, takesAPathAsItStands) {
    write(pixmaps / "old.png");
    EXPECT_EQ(find("", (pixmaps / "old.png").string(), 48), "share/pixmaps/old.png");
    EXPECT_EQ(find("", (pixmaps / "none.png").string(), 48), "");
    EXPECT_EQ(find("", pixmaps.string(), 48), "");
}

TEST_F(IconThemeTest, leadsNowhereByNamesThatAreNone) {
    write(folder.path() / "secret.png");
    addTheme(shared, "hicolor", "", "[..]\nSize=48\nType=Fixed\n");
    for (const auto* name : {"", ".", "..", "../secret", "../../secret", "a/b"})
        EXPECT_EQ(find("", name, 48), "") << name;
    EXPECT_EQ(find("../..", "secret", 48), "");
}

TEST_F(IconThemeTest, standsThemesThatInheritEachOtherAndBrokenOnes) {
    addTheme(shared, "a", "b", sizes);
    addTheme(shared, "b", "a,b", sizes);
    addTheme(shared, "hicolor", "", "[x]\nSize=many\n[y]\nSize=-3\n[z]\n[48x48/apps]\nSize=48\n");
    write(shared / "hicolor/48x48/apps/app.png");
    EXPECT_EQ(find("a", "app", 48), "share/icons/hicolor/48x48/apps/app.png");
}

TEST_F(IconThemeTest, takesAPictureMadeForAFinerScreen) {
    addTheme(shared, "hicolor", "", "[24x24@2]\nSize=24\nScale=2\nType=Fixed\n[24x24]\nSize=24\nType=Fixed\n");
    write(shared / "hicolor/24x24@2/app.png");
    write(shared / "hicolor/24x24/app.png");
    EXPECT_EQ(find("", "app", 48), "share/icons/hicolor/24x24@2/app.png");
    EXPECT_EQ(find("", "app", 24), "share/icons/hicolor/24x24/app.png");
}

/// A person's environment below the folder.
Environment environment(const fs::path& folder, std::map<std::string, std::string> more = {}) {
    more.emplace("HOME", (folder / "home").string());
    more.emplace("XDG_DATA_DIRS", (folder / "share").string());
    return [more = std::move(more)](const std::string& name) -> std::optional<std::string> {
        const auto found = more.find(name);
        return found == more.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST_F(IconThemeTest, isTheOneThatThePersonChose) {
    EXPECT_EQ(chosenIconTheme(environment(folder.path())), "");
    write(folder.path() / "home/.config/kdeglobals", "[Icons]\nTheme=breeze-dark\n");
    EXPECT_EQ(chosenIconTheme(environment(folder.path())), "breeze-dark");
    write(folder.path() / "home/.config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Papirus\n");
    EXPECT_EQ(chosenIconTheme(environment(folder.path())), "Papirus");
    EXPECT_EQ(chosenIconTheme(environment(folder.path(), {{"XDG_CURRENT_DESKTOP", "KDE"}})), "breeze-dark");
    write(folder.path() / "home/.config/gtk-4.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Yaru\n");
    EXPECT_EQ(chosenIconTheme(environment(folder.path())), "Yaru");
}

struct ApplicationIconsTest : IconThemeTest {
    VirtualTime time{Date(0)};
    const fs::path applications = folder.path() / "share/applications";

    void SetUp() override {
        addTheme(shared, "hicolor", "", sizes);
        write(shared / "hicolor/48x48/apps/editor.png");
        write(applications / "code.desktop",
              "[Desktop Entry]\nType=Application\nName=Editor\nIcon=editor\nExec=/usr/bin/edit-it %F\n");
        write(applications / "org.example.plain.desktop",
              "[Desktop Entry]\nType=Application\nName=Plain\nExec=plain\n");
    }
    std::string icon(const std::string& application) {
        ApplicationIcons icons(environment(folder.path()), time);
        const auto file = icons.iconFile(application, 48);
        return file ? fs::relative(*file, folder.path()).string() : "";
    }
};

TEST_F(ApplicationIconsTest, areFoundByEveryNameOfAnApplication) {
    constexpr auto file = "share/icons/hicolor/48x48/apps/editor.png";
    EXPECT_EQ(icon("com.microsoft.VSCode"), file) << "by the identifier that it has on every host";
    EXPECT_EQ(icon("code"), file);
    EXPECT_EQ(icon("/usr/bin/edit-it"), file) << "by its program";
    EXPECT_EQ(icon((applications / "code.desktop").string()), file);
}

TEST_F(ApplicationIconsTest, areAbsentWhereTheHostKnowsNone) {
    for (const auto* application : {"org.example.none", "org.example.plain", "/usr/bin/plain", "/nowhere", ""})
        EXPECT_EQ(icon(application), "") << application;
}

} // namespace
} // namespace kestrio
