#include "Tests/Views/Design/Stage.h"

#include <QtGui/QPalette>
#include <QtTest/QSignalSpy>

namespace kestrio {
namespace {

struct AppearanceTest : testing::Test {
    Appearance appearance{nullptr};
    QSignalSpy changes{&appearance, &Appearance::changed};
};

TEST_F(AppearanceTest, followsTheDesktopUnlessThePersonChose) {
    const struct {
        AppearanceMode mode;
        std::optional<bool> desktop;
        bool isDark;
    } rows[] = {{AppearanceMode::system, std::nullopt, false}, {AppearanceMode::system, true, true},
                {AppearanceMode::system, false, false},        {AppearanceMode::light, true, false},
                {AppearanceMode::light, std::nullopt, false},  {AppearanceMode::dark, false, true},
                {AppearanceMode::dark, std::nullopt, true}};
    for (const auto& row : rows) {
        appearance.setMode(row.mode);
        appearance.setDesktop({.isDark = row.desktop});
        EXPECT_EQ(appearance.isDark(), row.isDark)
            << rawText(row.mode) << " " << (row.desktop ? std::to_string(*row.desktop) : "no preference");
    }
}

TEST_F(AppearanceTest, followsThePlatformsOwnColoursWhereTheDesktopSaysNothing) {
    const auto before = QGuiApplication::palette();
    QGuiApplication::setPalette(QPalette(QColor("#202020")));
    EXPECT_TRUE(appearance.isDark());
    EXPECT_EQ(changes.count(), 1);
    appearance.setDesktop({.isDark = false});
    EXPECT_FALSE(appearance.isDark());
    appearance.setDesktop({});
    EXPECT_TRUE(appearance.isDark());
    QGuiApplication::setPalette(before);
    EXPECT_FALSE(appearance.isDark());
}

TEST_F(AppearanceTest, isToldOnceForEachChangeAndNotForNone) {
    appearance.setMode(AppearanceMode::system);
    appearance.setDesktop({});
    EXPECT_EQ(changes.count(), 0);
    appearance.setMode(AppearanceMode::dark);
    appearance.setDesktop({.isHighContrast = true});
    EXPECT_EQ(changes.count(), 2);
    EXPECT_TRUE(appearance.isHighContrast());
}

TEST_F(AppearanceTest, boundsTheSizeOfText) {
    const struct {
        double asked;
        double given;
    } rows[] = {{1, 1}, {1.5, 1.5}, {2.5, 2.5}, {9, 2.5}, {0.8, 0.8}, {0.1, 0.8}, {0, 0.8}};
    for (const auto& row : rows) {
        appearance.setDesktop({.textScale = row.asked});
        EXPECT_EQ(appearance.textScale(), row.given) << row.asked;
    }
}

struct ThemeTest : testing::Test {
    Stage stage;
    QColor color(const QString& name) { return stage.value("Theme." + name).value<QColor>(); }
    void SetUp() override { stage.show("Item {}"); }
};

TEST_F(ThemeTest, changesEveryColourAtOnceWithTheAppearance) {
    const auto light = color("window");
    stage.appearance().setDesktop({.isDark = true});
    const auto dark = color("window");
    EXPECT_GT(light.lightness(), dark.lightness());
    EXPECT_TRUE(stage.value("Theme.isDark").toBool());
    stage.appearance().setDesktop({.isDark = true, .isHighContrast = true});
    EXPECT_EQ(color("window"), QColor("#000000"));
    stage.appearance().setDesktop({.isDark = false, .isHighContrast = true});
    EXPECT_EQ(color("window"), QColor("#ffffff"));
    stage.appearance().setMode(AppearanceMode::dark);
    EXPECT_EQ(color("window"), QColor("#000000"));
}

TEST_F(ThemeTest, standsStillForThoseWhoWantNoMotion) {
    EXPECT_GT(stage.value("Theme.animation").toInt(), 0);
    stage.appearance().setDesktop({.reducesMotion = true});
    EXPECT_EQ(stage.value("Theme.animation").toInt(), 0);
}

TEST_F(ThemeTest, givesATextOfTwiceTheSizeRoomForIt) {
    EXPECT_EQ(stage.value("Theme.body.pixelSize").toInt(), 13);
    EXPECT_EQ(stage.value("Theme.controlHeight").toInt(), 28);
    stage.appearance().setDesktop({.textScale = 2});
    EXPECT_EQ(stage.value("Theme.body.pixelSize").toInt(), 26);
    EXPECT_EQ(stage.value("Theme.controlHeight").toInt(), 56);
    EXPECT_EQ(stage.value("Theme.m").toInt(), 12);
}

TEST_F(ThemeTest, knowsWhatATonesColourIs) {
    const struct {
        const char* tone;
        const char* color;
    } rows[] = {
        {"good", "good"},         {"info", "info"},         {"cautious", "warning"},      {"warning", "warning"},
        {"alarming", "critical"}, {"critical", "critical"}, {"neutral", "textSecondary"}, {"?", "textSecondary"}};
    for (const auto& row : rows)
        EXPECT_EQ(stage.value(QString("Theme.tone('%1')").arg(row.tone)).value<QColor>(), color(row.color)) << row.tone;
}

TEST_F(ThemeTest, namesItsColours) {
    EXPECT_EQ(stage.value("Theme.named('teal')").value<QColor>(), color("teal"));
    EXPECT_EQ(stage.value("Theme.named('no such colour')").value<QColor>(), color("gray"));
    EXPECT_EQ(stage.value("Theme.named('objectName')").value<QColor>(), color("gray"));
}

} // namespace
} // namespace kestrio
