#include "Kestrio/Views/Design/SymbolImages.h"
#include "Kestrio/Views/Design/SymbolRequest.h"
#include "Kestrio/Views/Design/SymbolSet.h"
#include "Tests/Views/Design/Stage.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

namespace kestrio {
namespace {

QString sourceFolder() {
    return QString(KESTRIO_SOURCE);
}

QString textOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

/// The texts in quotes that have the form of a symbol's name with parts, in a folder's sources.
QSet<QString> dottedTexts(const QString& folder) {
    static const QRegularExpression quoted("\"([a-z]+[0-9a-z]*(?:\\.[0-9a-z]+)+)\"");
    QSet<QString> found;
    QDirIterator files(sourceFolder() + "/" + folder, {"*.h", "*.cpp", "*.qml"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        for (const auto& match : quoted.globalMatch(textOf(files.next())))
            found.insert(match.captured(1));
    return found;
}

/// Names of files, identifiers of applications and the like, which have the same form.
bool isOtherName(const QString& text) {
    static const QRegularExpression other(
        "^(com|org|net|io|dev|company)\\.|\\.(csv|json|md|sqlite|txt|html|qml|svg|otf|log|service|desktop)$");
    return other.match(text).hasMatch();
}

TEST(SymbolSet, hasEverySymbolThatTheSourcesName) {
    QSet<QString> missing;
    for (const auto* folder : {"Kestrio/Pages", "Kestrio/Monitor", "Kestrio/Resources", "Kestrio/Optimizer",
                               "Kestrio/Shell", "Kestrio/Views"})
        for (const auto& text : dottedTexts(folder))
            if (!isOtherName(text) && !SymbolSet::standard().contains(text))
                missing.insert(text);
    // Places in SQL and the name of a queue have the form of names too.
    missing -= {"s.cpu", "s.ts", "kestrio.system"};
    EXPECT_EQ(QStringList(missing.values()).join(", "), "");
}

TEST(SymbolSet, hasEverySymbolOfTheDesign) {
    for (const auto* name : {"app.dashed",
                             "arrow.clockwise",
                             "arrow.down.circle.fill",
                             "arrow.left.arrow.right",
                             "arrow.triangle.2.circlepath",
                             "arrow.up.circle.fill",
                             "arrow.up.right.square",
                             "arrow.uturn.backward.circle",
                             "battery.0",
                             "battery.100",
                             "battery.100.bolt",
                             "battery.25",
                             "battery.50",
                             "battery.75",
                             "bell.badge",
                             "bell.badge.waveform",
                             "bell.fill",
                             "bell.slash",
                             "bolt.badge.checkmark",
                             "bolt.circle",
                             "bolt.circle.fill",
                             "bolt.fill",
                             "bolt.slash",
                             "chart.bar",
                             "chart.bar.xaxis",
                             "chart.xyaxis.line",
                             "checkmark",
                             "checkmark.circle",
                             "chevron.down",
                             "chevron.left",
                             "chevron.left.forwardslash.chevron.right",
                             "chevron.right",
                             "circle.hexagongrid",
                             "clock",
                             "clock.badge",
                             "cpu",
                             "cursorarrow.motionlines",
                             "cursorarrow.rays",
                             "doc.richtext",
                             "doc.text",
                             "equal.circle.fill",
                             "exclamationmark.triangle",
                             "exclamationmark.triangle.fill",
                             "figure.walk",
                             "film",
                             "flame",
                             "flame.fill",
                             "folder",
                             "folder.fill",
                             "gauge.with.dots.needle.67percent",
                             "gearshape",
                             "globe",
                             "hare",
                             "headphones",
                             "hourglass",
                             "info.circle",
                             "internaldrive",
                             "iphone",
                             "kestrio.mark",
                             "leaf",
                             "line.3.horizontal.decrease.circle",
                             "list.bullet",
                             "list.bullet.rectangle",
                             "lock.shield",
                             "macwindow",
                             "magnifyingglass",
                             "memorychip",
                             "minus.circle",
                             "moon.zzz",
                             "pause.circle",
                             "pause.fill",
                             "play.circle",
                             "play.fill",
                             "play.rectangle",
                             "play.rectangle.fill",
                             "play.rectangle.on.rectangle",
                             "plus.app",
                             "power",
                             "powerplug",
                             "rectangle.grid.2x2",
                             "rectangle.on.rectangle",
                             "safari",
                             "slider.horizontal.3",
                             "snowflake",
                             "square.and.arrow.up",
                             "square.grid.2x2",
                             "sun.max",
                             "thermometer.high",
                             "thermometer.medium",
                             "tortoise",
                             "trash",
                             "waveform.path.ecg",
                             "xmark.app",
                             "xmark.circle",
                             "xmark.circle.fill"})
        EXPECT_TRUE(SymbolSet::standard().contains(name)) << name;
}

int inkOf(const QImage& image) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ink += qAlpha(image.pixel(x, y));
    return ink;
}

TEST(SymbolSet, drawsEverySymbolInItsColourAtEverySize) {
    for (const auto& name : SymbolSet::standard().names())
        for (const int side : {13, 16, 24, 32, 64}) {
            const auto image = SymbolSet::standard().image(name, QColor("#3366cc"), {side, side});
            ASSERT_EQ(image.size(), QSize(side, side)) << name.toStdString();
            const int ink = inkOf(image);
            EXPECT_GT(ink, 255 * side / 2) << name.toStdString() << " at " << side << " is hardly there";
            EXPECT_LT(ink, 255 * side * side * 9 / 10) << name.toStdString() << " at " << side << " is a blot";
            for (int y = 0; y < side; ++y)
                for (int x = 0; x < side; ++x)
                    if (const QColor pixel = image.pixelColor(x, y); pixel.alpha() > 200) {
                        ASSERT_NEAR(pixel.blue(), 0xcc, 6) << name.toStdString();
                    }
        }
}

TEST(SymbolSet, keepsDrawingsOnlyForSymbolsAndSymbolsOnlyWithDrawings) {
    const auto folder = sourceFolder() + "/Kestrio/Views/Design/Symbols/";
    QSet<QString> used;
    const auto entries = QJsonDocument::fromJson(textOf(folder + "symbols.json").toUtf8()).object();
    ASSERT_FALSE(entries.isEmpty());
    for (const auto& entry : entries)
        used.insert(entry.toObject().value("file").toString());
    QSet<QString> kept;
    for (const auto* part : {"lucide", "own"})
        for (const auto& file : QDir(folder + part).entryInfoList({"*.svg"}))
            kept.insert(QString(part) + "/" + file.completeBaseName());
    EXPECT_EQ(used, kept);
    EXPECT_TRUE(QFile::exists(folder + "lucide/LICENSE.txt"));
}

TEST(SymbolSet, fillsWhatIsNamedSo) {
    const auto& set = SymbolSet::standard();
    const auto ink = [&](const char* name) { return inkOf(set.image(name, Qt::black, {48, 48})); };
    for (const auto* name :
         {"flame", "folder", "bolt.circle", "play.rectangle", "exclamationmark.triangle", "xmark.circle"})
        EXPECT_GT(ink(qPrintable(QString(name) + ".fill")), ink(name) * 4 / 3) << name;
}

TEST(SymbolSet, cutsTheSignOutOfAFilledFrame) {
    const auto image = SymbolSet::standard().image("xmark.circle.fill", Qt::black, {48, 48});
    EXPECT_EQ(qAlpha(image.pixel(24, 24)), 0) << "the cross";
    EXPECT_EQ(qAlpha(image.pixel(24, 10)), 255) << "the disc";
    EXPECT_EQ(qAlpha(image.pixel(1, 1)), 0) << "outside";
}

TEST(SymbolSet, showsTheBatteryMoreFilledTheFullerItIs) {
    int before = 0;
    for (const auto* name : {"battery.0", "battery.25", "battery.50", "battery.75", "battery.100"}) {
        const int now = inkOf(SymbolSet::standard().image(name, Qt::black, {48, 48}));
        EXPECT_GT(now, before) << name;
        before = now;
    }
}

TEST(SymbolSet, answersNothingForAnUnknownNameOrNoSize) {
    EXPECT_TRUE(SymbolSet::standard().image("no.such.symbol", Qt::black, {16, 16}).isNull());
    EXPECT_TRUE(SymbolSet::standard().image("globe", Qt::black, {}).isNull());
    EXPECT_FALSE(SymbolSet::standard().isDirectional("no.such.symbol"));
}

TEST(SymbolSet, knowsWhatPointsInTheReadingDirection) {
    EXPECT_TRUE(SymbolSet::standard().isDirectional("chevron.right"));
    EXPECT_TRUE(SymbolSet::standard().isDirectional("arrow.up.right.square"));
    EXPECT_FALSE(SymbolSet::standard().isDirectional("chevron.down"));
    EXPECT_FALSE(SymbolSet::standard().isDirectional("globe"));
}

TEST(SymbolRequest, isANameAndAColour) {
    const struct {
        const char* id;
        const char* name;
        QColor color;
    } rows[] = {{"globe?color=ff0000", "globe", QColor(255, 0, 0)},
                {"globe?color=80ff0000", "globe", QColor(255, 0, 0, 128)},
                {"globe", "globe", Qt::black},
                {"globe?color=", "globe", Qt::black},
                {"globe?color=nonsense", "globe", Qt::black},
                {"/opt/a?b/run?color=00ff00", "/opt/a?b/run", QColor(0, 255, 0)}};
    for (const auto& row : rows) {
        EXPECT_EQ(symbolRequest(row.id).name, row.name) << row.id;
        EXPECT_EQ(symbolRequest(row.id).color, row.color) << row.id;
    }
}

TEST(SymbolImages, areAsLargeAsAskedForAndDrawnOnce) {
    SymbolImages images;
    QSize size;
    const auto first = images.requestImage("globe?color=102030", &size, {40, 40});
    EXPECT_EQ(first.size(), QSize(40, 40));
    EXPECT_EQ(size, QSize(40, 40));
    const auto again = images.requestImage("globe?color=102030", &size, {40, 40});
    EXPECT_EQ(again.constBits(), first.constBits());
    EXPECT_NE(images.requestImage("globe?color=ff2030", &size, {40, 40}), first);
    EXPECT_EQ(images.requestImage("globe", &size, {}).size(), QSize(24, 24));
}

TEST(Symbol, isSharpOnFinerScreens) {
    Stage stage;
    auto* const symbol = stage.show("Symbol { name: 'globe'; size: 20 }");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->size(), QSizeF(20, 20));
    EXPECT_EQ(symbol->property("status").toInt(), 1) << "not loaded";
    EXPECT_EQ(symbol->implicitWidth(), 20);
    EXPECT_EQ(stage.value("sourceSize.width").toInt(), 20);
}

TEST(Symbol, isNotThereWithoutAName) {
    Stage stage;
    auto* const symbol = stage.show("Symbol {}");
    ASSERT_NE(symbol, nullptr);
    EXPECT_EQ(symbol->property("status").toInt(), 0);
}

TEST(Symbol, turnsAroundOnlyWhatPoints) {
    const struct {
        const char* name;
        bool isMirrored;
        bool isTurned;
    } rows[] = {{"chevron.right", true, true}, {"chevron.right", false, false}, {"globe", true, false}};
    for (const auto& row : rows) {
        Stage stage;
        auto* const symbol =
            stage.show(QString("Symbol { name: '%1'; mirrored: %2 }").arg(row.name, row.isMirrored ? "true" : "false"));
        EXPECT_EQ(symbol->property("mirror").toBool(), row.isTurned) << row.name;
    }
}

} // namespace
} // namespace kestrio
