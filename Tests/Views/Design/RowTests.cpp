// What rows, cards and badges show of their values, and say to assistive technology.
#include "Kestrio/Views/Design/WebLinks.h"
#include "Tests/Views/Design/Stage.h"

#include <QtGui/QAccessible>

namespace kestrio {
namespace {

QString nameOf(QObject* item) {
    auto* const interface = QAccessible::queryAccessibleInterface(item);
    return interface == nullptr ? QString() : interface->text(QAccessible::Name);
}

QAccessible::Role roleOf(QObject* item) {
    auto* const interface = QAccessible::queryAccessibleInterface(item);
    return interface == nullptr ? QAccessible::NoRole : interface->role();
}

TEST(UsageRow, showsTitleDurationAndSecondLine) {
    Stage stage;
    auto* const row = stage.show(
        "UsageRow { width: 300; row: ({title: 'Editor', subtitle: '1h focused · 2m alongside', duration: '1h 2m', "
        "fraction: 0.5, tint: 'blue', icon: {kind: 'symbol', symbol: 'folder.fill'}}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"Editor", "1h 2m", "1h focused · 2m alongside"}));
    EXPECT_EQ(nameOf(row), "Editor, 1h 2m");
    EXPECT_EQ(roleOf(row), QAccessible::ListItem);
}

TEST(UsageRow, hasNoSecondLineWithoutOne) {
    Stage stage;
    stage.show("UsageRow { width: 300; row: ({title: 'Editor', duration: '2m', fraction: 0.5}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"Editor", "2m"}));
}

TEST(UsageBar, isAsLongAsItsShareAndNeverLessThanADot) {
    const struct {
        const char* fraction;
        double width;
    } rows[] = {{"0.5", 100}, {"1", 200}, {"2", 200}, {"0.0001", 4}, {"NaN", 0}, {"-1", 0}, {"0", 0}};
    for (const auto& row : rows) {
        Stage stage;
        auto* const bar = stage.show(QString("UsageBar { width: 200; height: 4; fraction: %1 }").arg(row.fraction));
        auto* const fill = bar->childItems().value(0);
        EXPECT_EQ(fill->isVisible() ? fill->width() : 0, row.width) << row.fraction;
    }
}

TEST(UsageItemRow, showsWhatIsTold) {
    Stage stage;
    auto* const row = stage.show(
        "UsageItemRow { width: 400; row: ({title: 'Page', subtitle: 'example.org', detail: '3 visits · last 14:20', "
        "duration: '5m', fraction: 0.3, link: 'https://example.org/'}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"Page", "example.org", "3 visits · last 14:20", "5m"}));
    EXPECT_EQ(stage.items("OpenLinkButton").size(), 1);
    EXPECT_EQ(nameOf(row), "Page, 5m");
}

TEST(UsageItemRow, hasNoLinkWithoutAnAddress) {
    Stage stage;
    stage.show("UsageItemRow { width: 400; row: ({title: 'Page', detail: '3 times', duration: '5m', fraction: 0.3}) }");
    EXPECT_TRUE(stage.items("OpenLinkButton").isEmpty());
}

TEST(AlongsideRow, showsItsBadge) {
    Stage stage;
    auto* const row =
        stage.show("AlongsideRow { width: 400; row: ({title: 'A film', detail: 'youtube.com · last 11:02', duration: "
                   "'20m', fraction: 0.4, "
                   "icon: {kind: 'videoSite'}, badge: {title: 'Watching', help: 'Watching alongside', symbol: "
                   "'play.rectangle.fill'}}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"A film", "Watching", "youtube.com · last 11:02", "20m"}));
    // Told once, with the row.
    EXPECT_EQ(QAccessible::queryAccessibleInterface(row)->text(QAccessible::Description),
              "Watching, youtube.com · last 11:02");
}

TEST(StatCard, isOneThingToTell) {
    Stage stage;
    auto* const card = stage.show("StatCard { value: ({title: 'Productive', symbol: 'bolt.fill', value: '4h 51m', "
                                  "detail: '72% of active time', tint: 'green'}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"Productive", "4h 51m", "72% of active time"}));
    EXPECT_EQ(nameOf(card), "Productive, 4h 51m, 72% of active time");
}

TEST(StatCard, isAsTallWithoutADetail) {
    Stage with;
    Stage without;
    with.show("StatCard { value: ({title: 'T', symbol: 'clock', value: '1', detail: 'd'}) }");
    without.show("StatCard { value: ({title: 'T', symbol: 'clock', value: '1'}) }");
    EXPECT_EQ(with.value("implicitHeight"), without.value("implicitHeight"));
}

TEST(CategoryPill, hasTheColourAndTheName) {
    Stage stage;
    auto* const pill = stage.show("CategoryPill { value: ({label: 'Learning & AI', color: 'purple'}) }");
    EXPECT_EQ(stage.texts(), QStringList{"Learning & AI"});
    EXPECT_EQ(stage.value("tint").value<QColor>(), stage.value("Theme.purple").value<QColor>());
    EXPECT_EQ(nameOf(pill), "Learning & AI");
}

TEST(DetailHeader, showsAllThatIsToldOfAThing) {
    Stage stage;
    stage.show("DetailHeader { width: 600; value: ({icon: {kind: 'symbol', symbol: 'folder.fill'}, title: 'kestrio', "
               "duration: '2h', "
               "share: '40% of active time', stats: ['12 sessions', 'org.example.editor'], note: 'a note'}) }");
    EXPECT_EQ(stage.texts(),
              (QStringList{"kestrio", "2h", "40% of active time", "12 sessions  ·  org.example.editor", "a note"}));
}

TEST(EmptyActivityView, hasItsWordsInTheMiddle) {
    Stage stage;
    auto* const view = stage.show("EmptyActivityView { width: 600; height: 400; value: ({title: 'No activity yet', "
                                  "symbol: 'chart.bar.xaxis', message: 'Use it.'}) }");
    EXPECT_EQ(stage.texts(), (QStringList{"No activity yet", "Use it."}));
    EXPECT_EQ(nameOf(view), "No activity yet");
    auto* const title = stage.withText("No activity yet");
    EXPECT_NEAR(title->mapToScene({title->width() / 2, 0}).x(), 300, 1);
}

TEST(EmptyActivityView, servesAsThePlaceholderWithoutAMessage) {
    Stage stage;
    stage.show("EmptyActivityView { width: 600; height: 400; value: ({title: 'Select an app', symbol: 'macwindow'}) }");
    EXPECT_EQ(stage.texts(), QStringList{"Select an app"});
}

TEST(Card, hasItsHeadOnlyWithATitle) {
    Stage stage;
    stage.show("Card { width: 300; height: 100; title: 'Top Apps'; symbol: 'macwindow'; Line { text: 'content' } }");
    EXPECT_EQ(stage.texts(), (QStringList{"Top Apps", "content"}));
    EXPECT_EQ(stage.items("Symbol").size(), 1);
    Stage bare;
    bare.show("Card { width: 300; height: 100; Line { text: 'content' } }");
    EXPECT_EQ(bare.texts(), QStringList{"content"});
}

TEST(CreditLine, leadsToAboutAndToTheMakersPage) {
    Stage stage;
    stage.show("CreditLine { id: line; property int abouts: 0; property string address; onAboutRequested: abouts += 1; "
               "onOpened: link => address = link }");
    EXPECT_EQ(stage.texts(), (QStringList{"About Kestrio", "·", "Made by Haldor Vinter"}));
    stage.click(stage.withText("About Kestrio"));
    EXPECT_EQ(stage.value("line.abouts").toInt(), 1);
    QString opened;
    webLinks(stage.engine()).setOpener([&](const QString& address) { opened = address; });
    stage.click(stage.withText("Made by Haldor Vinter"));
    EXPECT_TRUE(opened.startsWith("https://")) << opened.toStdString();
    EXPECT_EQ(stage.value("line.address").toString(), opened);
}

/// No text is cut off at twice its size in a width that was enough before.
TEST(Rows, tellWholeWhatIsCutShort) {
    const QString title(100, 'x');
    const struct {
        QString qml;
        QString help;
    } rows[] = {
        {"UsageRow { width: 200; row: ({title: '%1', subtitle: 'short', duration: '1m'}) }", title},
        {"UsageRow { width: 200; row: ({title: 'short', subtitle: '%1', duration: '1m'}) }", title},
        {"UsageRow { width: 200; row: ({title: '%1', subtitle: '%1', duration: '1m'}) }", title + "\n" + title},
        {"UsageRow { width: 200; row: ({title: 'short', duration: '1m'}) }", ""},
        {"UsageRow { width: 200; row: ({title: 'two\\nlines', duration: '1m'}) }", "two\nlines"},
        {"UsageItemRow { width: 300; row: ({title: 'short', subtitle: '%1', detail: 'short', duration: '1m'}) }",
         title},
        {"UsageItemRow { width: 300; row: ({title: 'short', detail: '%1', duration: '1m'}) }", title},
        {"AlongsideRow { width: 300; row: ({title: '%1', detail: '%1', duration: '1m'}) }", title + "\n" + title},
        {"StatCard { width: 148; value: ({title: 'T', value: '1h', detail: 'short', help: 'Why'}) }", "Why"},
        {"StatCard { width: 148; value: ({title: 'T', value: '1h'}) }", ""},
    };
    for (const auto& row : rows) {
        Stage stage;
        stage.show(QString(row.qml).replace("%1", title));
        QStringList helps;
        for (auto* const help : stage.items("Help"))
            helps << help->property("text").toString();
        helps.removeAll(QString());
        EXPECT_EQ(helps.join("; "), row.help) << row.qml.toStdString();
    }
}

TEST(Rows, standTextOfTwiceTheSize) {
    for (const auto* qml :
         {"UsageRow { width: 420; row: ({title: 'Editor', subtitle: '1h focused', duration: '1h 2m', fraction: 0.5}) }",
          "UsageItemRow { width: 420; row: ({title: 'Page', detail: '3 visits', duration: '5m', fraction: 0.3}) }",
          "PlainButton { text: 'Grant Access' }", "CategoryPill { value: ({label: 'Development', color: 'blue'}) }",
          "SegmentedControl { choices: [{title: 'Day'}, {title: 'Week'}] }", "Switch { text: 'Activity light' }",
          "StatCard { width: 300; value: ({title: 'Active Time', symbol: 'clock', value: '6h 42m', detail: '08:12 – "
          "17:56'}) }"}) {
        Stage stage;
        stage.appearance().setDesktop({.textScale = 2});
        ASSERT_NE(stage.show(qml), nullptr);
        for (auto* item : allItems(stage.window().contentItem())) {
            if (!item->inherits("QQuickText") || !item->isVisible() ||
                item->property("text").toString().trimmed().isEmpty())
                continue;
            EXPECT_FALSE(item->property("truncated").toBool())
                << qml << ": " << item->property("text").toString().toStdString();
            EXPECT_LE(item->property("contentHeight").toDouble(), item->height() + 1) << qml;
        }
    }
}

} // namespace
} // namespace kestrio
