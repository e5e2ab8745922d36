// Whether the colours of each palette can be read and told apart: by the contrast that WCAG 2 asks for, and by the
// difference of colours that CIEDE2000 measures.
#include "Tests/Views/Design/Stage.h"

#include <array>
#include <cmath>
#include <numbers>

namespace kestrio {
namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

/// What shows where a colour that lets something through lies on another.
QColor over(const QColor& top, const QColor& ground) {
    const auto mixed = [&](double above, double below) { return above * top.alphaF() + below * (1 - top.alphaF()); };
    return QColor::fromRgbF(static_cast<float>(mixed(top.redF(), ground.redF())),
                            static_cast<float>(mixed(top.greenF(), ground.greenF())),
                            static_cast<float>(mixed(top.blueF(), ground.blueF())));
}

struct Lab {
    double l, a, b;
};

Lab lab(const QColor& color) {
    const double r = linear(color.redF());
    const double g = linear(color.greenF());
    const double b = linear(color.blueF());
    const auto f = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
    const double x = f((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047);
    const double y = f(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const double z = f((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double degrees(double radians) {
    return radians * 180 / std::numbers::pi;
}

double cosine(double angle) {
    return std::cos(angle * std::numbers::pi / 180);
}

double hueOf(double a, double b) {
    const double angle = degrees(std::atan2(b, a));
    return angle < 0 ? angle + 360 : angle;
}

/// CIEDE2000.
double difference(const QColor& first, const QColor& second) {
    const Lab p = lab(first);
    const Lab q = lab(second);
    const double meanChroma = (std::hypot(p.a, p.b) + std::hypot(q.a, q.b)) / 2;
    const double seventh = std::pow(meanChroma, 7);
    const double g = 0.5 * (1 - std::sqrt(seventh / (seventh + std::pow(25.0, 7))));
    const double a1 = p.a * (1 + g);
    const double a2 = q.a * (1 + g);
    const double c1 = std::hypot(a1, p.b);
    const double c2 = std::hypot(a2, q.b);
    const double h1 = hueOf(a1, p.b);
    const double h2 = hueOf(a2, q.b);
    double turn = h2 - h1;
    if (std::abs(turn) > 180)
        turn += turn > 0 ? -360 : 360;
    const double dL = q.l - p.l;
    const double dC = c2 - c1;
    const double dH = 2 * std::sqrt(c1 * c2) * std::sin(turn / 2 * std::numbers::pi / 180);
    const double meanL = (p.l + q.l) / 2;
    const double meanC = (c1 + c2) / 2;
    const double meanH = std::abs(h1 - h2) > 180 ? (h1 + h2 + 360) / 2 : (h1 + h2) / 2;
    const double t = 1 - 0.17 * cosine(meanH - 30) + 0.24 * cosine(2 * meanH) + 0.32 * cosine(3 * meanH + 6) -
                     0.2 * cosine(4 * meanH - 63);
    const double sL = 1 + 0.015 * std::pow(meanL - 50, 2) / std::sqrt(20 + std::pow(meanL - 50, 2));
    const double sC = 1 + 0.045 * meanC;
    const double sH = 1 + 0.015 * meanC * t;
    const double meanSeventh = std::pow(meanC, 7);
    const double rC = 2 * std::sqrt(meanSeventh / (meanSeventh + std::pow(25.0, 7)));
    const double rT = -rC * std::sin(60 * std::exp(-std::pow((meanH - 275) / 25, 2)) * std::numbers::pi / 180);
    return std::sqrt(std::pow(dL / sL, 2) + std::pow(dC / sC, 2) + std::pow(dH / sH, 2) + rT * dC / sC * dH / sH);
}

constexpr std::array categoryColors{"blue", "teal", "purple", "orange", "red", "brown", "gray"};
constexpr double readable = 4.5; // of small text
constexpr double visible = 3.0;  // of shapes that mean something

struct PaletteTest : testing::TestWithParam<const char*> {
    Stage stage;
    std::unique_ptr<QObject> palette;

    void SetUp() override {
        QQmlComponent component(&stage.engine(), QUrl(QString("qrc:/qt/qml/Kestrio/Design/%1.qml").arg(GetParam())));
        palette.reset(component.create());
        ASSERT_NE(palette, nullptr) << component.errorString().toStdString();
    }
    QColor color(const char* name) const { return palette->property(name).value<QColor>(); }
};

TEST_P(PaletteTest, hasTextThatCanBeReadOnEveryGround) {
    for (const auto* ground : {"window", "sidebar", "card"}) {
        for (const auto* text :
             {"text", "textSecondary", "textTertiary", "accent", "good", "info", "warning", "critical"})
            EXPECT_GE(contrast(color(text), color(ground)), readable) << text << " on " << ground;
        for (const auto* tint : {"hover", "pressed"})
            for (const auto* text : {"text", "textSecondary"})
                EXPECT_GE(contrast(color(text), over(color(tint), color(ground))), readable)
                    << text << " on " << tint << " on " << ground;
    }
    for (const auto* text : {"text", "textSecondary", "textTertiary"})
        EXPECT_GE(contrast(color(text), color("selection")), readable) << text << " on a selected row";
}

TEST_P(PaletteTest, hasWordsOnColourThatCanBeRead) {
    EXPECT_GE(contrast(color("accentText"), color("accent")), readable);
    EXPECT_GE(contrast(color("tooltipText"), color("tooltip")), readable);
}

TEST_P(PaletteTest, hasTextThatCanBeReadOnTheTintOfEachCategory) {
    const double strength = QString(GetParam()).contains("Dark") ? 0.22 : 0.13; // of a pill's ground
    for (const auto* name : categoryColors) {
        QColor tint = color(name);
        tint.setAlphaF(static_cast<float>(strength));
        EXPECT_GE(contrast(color("text"), over(tint, color("card"))), readable) << name;
    }
}

TEST_P(PaletteTest, hasShapesThatCanBeSeen) {
    for (const auto* ground : {"window", "card"})
        for (const auto* name :
             {"blue", "teal", "purple", "orange", "red", "brown", "gray", "green", "yellow", "pink", "focusRing"})
            EXPECT_GE(contrast(color(name), color(ground)), visible) << name << " on " << ground;
}

TEST_P(PaletteTest, tellsTheCategoriesApart) {
    constexpr double apart = 14; // about six times what side by side is just seen
    for (std::size_t i = 0; i < categoryColors.size(); ++i)
        for (std::size_t j = i + 1; j < categoryColors.size(); ++j)
            EXPECT_GE(difference(color(categoryColors[i]), color(categoryColors[j])), apart)
                << categoryColors[i] << " and " << categoryColors[j];
}

TEST_P(PaletteTest, hasMoreContrastWhereThatIsAskedFor) {
    if (!QString(GetParam()).startsWith("HighContrast"))
        GTEST_SKIP() << "an ordinary palette";
    for (const auto* text : {"text", "textSecondary", "textTertiary", "good", "info", "warning", "critical"})
        EXPECT_GE(contrast(color(text), color("card")), 7) << text;
    for (const auto* shape : {"cardBorder", "separator"})
        EXPECT_GE(contrast(color(shape), color("card")), visible) << shape;
}

INSTANTIATE_TEST_SUITE_P(Palettes, PaletteTest,
                         testing::Values("LightPalette", "DarkPalette", "HighContrastLightPalette",
                                         "HighContrastDarkPalette"),
                         [](const auto& palette) { return std::string(palette.param); });

TEST(Palette, thatLacksAColourCannotBeMade) {
    Stage stage;
    QQmlComponent component(&stage.engine());
    component.setData("import Kestrio.Design\nThemePalette { window: \"white\" }", QUrl("qrc:/staged/Lacking.qml"));
    const std::unique_ptr<QObject> made(component.create());
    EXPECT_EQ(made, nullptr);
    EXPECT_TRUE(component.errorString().contains("Required property"));
}

TEST(ColourDifference, isThatOfThePublishedExamples) {
    // White and black are a hundred apart; a colour and itself not at all.
    EXPECT_NEAR(difference("#ffffff", "#000000"), 100, 0.1);
    EXPECT_EQ(difference("#3f7ae0", "#3f7ae0"), 0);
    EXPECT_NEAR(contrast("#ffffff", "#000000"), 21, 0.01);
    EXPECT_NEAR(contrast("#ffffff", "#767676"), 4.54, 0.01);
}

} // namespace
} // namespace kestrio
