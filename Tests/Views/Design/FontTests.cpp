#include "Kestrio/Views/Design/Resources.h"
#include "Tests/Views/Design/Stage.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <QtGui/QFontMetricsF>

namespace kestrio {
namespace {

struct FontTest : testing::TestWithParam<int> {
    void SetUp() override { installFonts(); }
    QFont font() const {
        QFont font(fontFamily);
        font.setPixelSize(13);
        font.setWeight(static_cast<QFont::Weight>(GetParam()));
        return font;
    }
};

TEST_P(FontTest, isTheProgramsOwnInThisWeight) {
    const QFontInfo info(font());
    EXPECT_EQ(info.family(), fontFamily);
    EXPECT_EQ(info.weight(), GetParam());
    EXPECT_TRUE(info.exactMatch());
}

TEST_P(FontTest, hasDigitsThatAreAllEquallyWide) {
    constexpr double grain = 1.0 / 64; // of a pixel, to which widths are rounded
    const QFontMetricsF metrics(font());
    for (const QChar digit : QString("123456789"))
        EXPECT_NEAR(metrics.horizontalAdvance(digit), metrics.horizontalAdvance('0'), grain) << digit.toLatin1();
    // Also where they stand in a row, whatever is beside them.
    EXPECT_NEAR(metrics.horizontalAdvance("11:11"), metrics.horizontalAdvance("48:07"), 4 * grain);
    EXPECT_NEAR(metrics.horizontalAdvance("1h 11m"), metrics.horizontalAdvance("7h 46m"), 4 * grain);
    EXPECT_NEAR(metrics.horizontalAdvance("111.1"), metrics.horizontalAdvance("746.8"), 4 * grain);
}

TEST_P(FontTest, showsTitlesAsTheyStand) {
    const QFontMetricsF metrics(font());
    double apart = metrics.horizontalAdvance('-') + metrics.horizontalAdvance('>');
    EXPECT_NEAR(metrics.horizontalAdvance("->"), apart, 1.5) << "drawn as an arrow";
}

TEST_P(FontTest, hasTheLettersOfLatinGreekAndCyrillic) {
    const QFontMetricsF metrics(font());
    for (const QChar c : QString("AzßÆøŁžğİơưΩάЖщіўЀ–—…“”‹›·×€₺→"))
        EXPECT_TRUE(metrics.inFont(c)) << QString(c).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Weights, FontTest, testing::Values(QFont::Normal, QFont::Medium, QFont::DemiBold));

TEST(Fonts, comeWithTheirLicence) {
    QFile licence(QString(KESTRIO_SOURCE) + "/Kestrio/Views/Design/Fonts/LICENSE.txt");
    ASSERT_TRUE(licence.open(QIODevice::ReadOnly));
    EXPECT_TRUE(licence.readAll().contains("SIL OPEN FONT LICENSE"));
}

TEST(Fonts, areTheThemesInEverySize) {
    Stage stage;
    stage.show("Item {}");
    for (const auto* name : {"caption", "small", "body", "bodyStrong", "headline", "title", "largeTitle", "figure"})
        EXPECT_EQ(stage.value(QString("Theme.%1.family").arg(name)).toString(), fontFamily) << name;
}

} // namespace
} // namespace kestrio
