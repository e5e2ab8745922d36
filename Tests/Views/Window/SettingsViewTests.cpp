#include "Kestrio/Shell/HostWords.h"
#include "Kestrio/Views/Window/Settings/AboutSettingsModel.h"
#include "Kestrio/Views/Window/Settings/DataSettingsModel.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Tests/Views/Window/SettingsScreen.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace kestrio {
namespace {

using Done = std::vector<std::string>;

constexpr const char* tabs[] = {"general", "categories", "projects", "optimization", "permissions", "data", "about"};

/// All words that show, and those that assistive technology reads.
QStringList words(const Screen& screen) {
    QStringList all;
    for (auto* const item : screen.items([](QQuickItem&) { return true; })) {
        all << item->property("text").toString();
        if (auto* const interface = QAccessible::queryAccessibleInterface(item))
            all << interface->text(QAccessible::Name) << interface->text(QAccessible::Description);
    }
    all.removeAll(QString());
    return all;
}

/// The buttons that unfold an explanation.
std::vector<QQuickItem*> explanations(const Screen& screen) {
    return screen.items([](QQuickItem& item) {
        return QAccessible::queryAccessibleInterface(&item) && Screen::accessibleName(item) == "Explain";
    });
}

TEST(SettingsView, aClickOnATabShowsItAndRemembersIt) {
    SettingsScreen screen("general");
    for (const auto* const label :
         {"Categories", "Projects", "Optimization", "Permissions", "Data", "About", "General"}) {
        screen.click(label);
        EXPECT_EQ(screen.model.tabLabel(), label);
        EXPECT_EQ(QString::fromStdString(*screen.settings.get<std::string>("settingsTab")), screen.model.tab());
    }
}

TEST(SettingsView, theArrowsLeadThroughTheTabs) {
    SettingsScreen screen("data");
    screen.model.selectNeighbour(1);
    EXPECT_EQ(screen.model.tab(), "about");
    screen.model.selectNeighbour(1);
    EXPECT_EQ(screen.model.tab(), "about");
    screen.model.selectNeighbour(-6);
    EXPECT_EQ(screen.model.tab(), "general");
    screen.press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(screen.model.tab(), "categories");
}

TEST(SettingsView, withoutAnAgentItOffersToStartOne) {
    SettingsScreen screen("optimization", WindowStage::Agent::away);
    EXPECT_TRUE(screen.shows("Kestrio is not running"));
    EXPECT_FALSE(screen.there("Optimize my computer", QAccessible::CheckBox).isEnabled())
        << "nobody is there to take it";
    EXPECT_TRUE(screen.there("Memory warning", QAccessible::CheckBox).isEnabled());
}

TEST(SettingsView, noWordOfAnotherHostReachesTheScreen) {
    for (const auto* const tab : tabs) {
        SettingsScreen screen(tab);
        for (auto* const button : explanations(screen))
            screen.click(button);
        for (const auto& text : words(screen))
            for (const auto* const foreign : {"Mac", "macOS", "Finder", "Xcode", "Activity Monitor", "menu bar"})
                EXPECT_FALSE(text.contains(QLatin1StringView(foreign)))
                    << tab << ": " << text.toStdString() << " has " << foreign;
    }
}

TEST(SettingsView, everyTabStandsFromRightToLeftAndWithTextTwiceAsLarge) {
    for (const auto* const tab : tabs) {
        SettingsScreen screen(tab);
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        appearance(screen.engine()).setDesktop({.textScale = 2});
        screen.settle();
        EXPECT_FALSE(words(screen).isEmpty()) << tab;
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
}

TEST(SettingsView, anExplanationUnfoldsAndFolds) {
    SettingsScreen screen("general");
    const QString help = "A dot on the icon: green while your activity is being recorded, red while it isn't.";
    EXPECT_FALSE(screen.shows(help));
    const auto buttons = explanations(screen);
    ASSERT_GT(buttons.size(), 1U);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(buttons[1])->text(QAccessible::Description),
              "Show the activity light");
    screen.click(buttons[1]);
    EXPECT_TRUE(screen.shows(help));
    screen.click(screen.named("Hide the explanation", QAccessible::Button));
    EXPECT_FALSE(screen.shows(help));
}

TEST(GeneralSettingsView, everyControlWritesItsKey) {
    SettingsScreen screen("general");
    const struct {
        const char* name;
        const char* key;
        bool turned;
    } switches[] = {{"Show today's time", "showTimeInMenuBar", false},
                    {"Show the activity light", "showActivityLight", false},
                    {"Show YouTube thumbnails", "showYouTubeThumbnails", true},
                    {"Show the system monitor", "showSystemMonitor", false}};
    for (const auto& [name, key, turned] : switches) {
        screen.turn(name);
        EXPECT_EQ(screen.settings.get<bool>(key), turned) << name;
    }
    EXPECT_FALSE(screen.there("Icon", QAccessible::Button).isEnabled());
    screen.turn("Show the system monitor");
    screen.choose("Icon", "CPU % only");
    EXPECT_EQ(screen.settings.get<std::string>("systemMenuStyle"), "percent");
    screen.choose("Count me as idle after", "10 minutes");
    EXPECT_EQ(screen.settings.integer("idleMinutes"), 10);
    screen.click("Dark");
    EXPECT_EQ(screen.settings.get<std::string>("appearanceMode"), "dark");
    screen.turn("Launch at login");
    EXPECT_TRUE(screen.loginItem.isEnabled());
    screen.turn("Launch at login");
    EXPECT_FALSE(screen.loginItem.isEnabled());
}

TEST(GeneralSettingsView, followsWhatOthersChange) {
    SettingsScreen screen("general");
    screen.settings.set("idleMinutes", std::int64_t(15));
    screen.settings.set("showActivityLight", false);
    screen.settle();
    EXPECT_EQ(screen.there("Count me as idle after", QAccessible::Button).property("text"), "15 minutes");
    EXPECT_FALSE(screen.there("Show the activity light", QAccessible::CheckBox).property("checked").toBool());
    screen.settings.set("idleMinutes", std::int64_t(7));
    screen.settle();
    EXPECT_EQ(screen.there("Count me as idle after", QAccessible::Button).property("text"), "");
    EXPECT_EQ(screen.settings.integer("idleMinutes"), 7) << "the value stays until one is chosen";
}

TEST(CategorySettingsView, listsAppsAndWebsitesAndSetsTheirCategories) {
    SettingsScreen screen("categories");
    EXPECT_TRUE(screen.shows("CLion"));
    EXPECT_TRUE(screen.shows("2h"));
    screen.choose("Other", "Work & Docs");
    EXPECT_EQ(screen.classification.categorizer().snapshot().appCategory("org.example.Browser"),
              ActivityCategory::work);
    screen.choose("Work & Docs", "Reset to Default");
    EXPECT_EQ(screen.classification.categorizer().snapshot().appCategory("org.example.Browser"),
              ActivityCategory::other);
    screen.click("Websites");
    EXPECT_TRUE(screen.shows("example.org"));
    EXPECT_FALSE(screen.shows("CLion"));
    screen.enter("Filter");
    screen.type("none");
    EXPECT_TRUE(screen.shows("No matches."));
}

TEST(CategorySettingsView, addsAWebsiteWithItsCategory) {
    SettingsScreen screen("categories");
    screen.click("Websites");
    const auto& add = screen.there("Add", QAccessible::Button);
    EXPECT_FALSE(add.isEnabled());
    screen.enter("Website, such as example.org");
    screen.type("https://Tide.example/path");
    EXPECT_TRUE(add.isEnabled());
    screen.choose("Development", "Learning & AI");
    screen.click(screen.named("Add", QAccessible::Button));
    EXPECT_EQ(screen.classification.categorizer().snapshot().domainOverrides.at("tide.example"),
              ActivityCategory::learning);
    EXPECT_TRUE(screen.shows("tide.example"));
}

TEST(ProjectSettingsView, editsTheRules) {
    SettingsScreen screen("projects");
    screen.enter("If title / URL contains…");
    screen.type("tide");
    screen.press(Qt::Key_Return);
    screen.settle();
    EXPECT_EQ(screen.classification.projectRules().rules().size(), 1U);
}

TEST(PermissionsSettingsView, saysHowToBeLetIn) {
    SettingsScreen screen("permissions");
    screen.parts.host.privacyAdvice = [](auto) { return std::optional<std::string>("Log in elsewhere."); };
    EXPECT_TRUE(screen.shows("Not yet allowed"));
    screen.click(screen.named("Grant Access", QAccessible::Button));
    EXPECT_TRUE(screen.shows("Log in elsewhere."));
    auto status = screen.script.status;
    status.isAccessibilityGranted = true;
    screen.agent.start();
    screen.script.status = status;
    screen.agent.start();
    screen.settle();
    EXPECT_TRUE(screen.shows("Allowed"));
    EXPECT_FALSE(screen.shows("Log in elsewhere."));
}

TEST(AboutSettingsView, copiesWhatHelpersAskForAndSaysSoForAMoment) {
    SettingsScreen screen("about");
    EXPECT_TRUE(screen.shows("Everything stays on this computer"));
    screen.click(screen.named("Copy System Info", QAccessible::Button));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "Kestrio 1.2.3\nSystem version 13");
    EXPECT_TRUE(screen.shows("Copied"));
    screen.time.advance(AboutSettingsModel::copiedMoment);
    screen.settle();
    EXPECT_TRUE(screen.shows("Copy System Info"));
}

OptimizerChoices choices(SettingsScreen& screen) {
    return storedOptimizerChoices(screen.settings);
}

TEST(OptimizationSettingsView, everyControlReachesTheOptimizerOrItsKey) {
    SettingsScreen screen("optimization");
    screen.turn("Optimize my computer");
    EXPECT_TRUE(choices(screen).isEnabled);
    screen.click("Focus");
    screen.choose("Freeze after", "30 minutes unused");
    screen.choose("Freeze after (Focus)", "1 minute unused");
    screen.choose("Wake to check every", "5 minutes");
    screen.choose("Stay awake for", "90 seconds");
    screen.turn("Use efficiency cores");
    const tindra::OptimizerTuning tuning{.mode = tindra::OptimizerMode::focus,
                                         .idleMinutes = 30,
                                         .focusIdleMinutes = 1,
                                         .checkEveryMinutes = 5,
                                         .wakeSeconds = 90,
                                         .useEfficiencyCores = false};
    EXPECT_EQ(choices(screen).tuning, tuning);
    screen.choose("Chat", "Can wait");
    EXPECT_EQ(choices(screen).rules.tiers, (tindra::AppTiers{{"org.example.Chat", tindra::AppTier::canWait}}));
    screen.turn("Memory warning");
    EXPECT_EQ(screen.settings.get<bool>("optimizerMemoryAlerts"), false);
    screen.turn("Busy app warning");
    EXPECT_EQ(screen.settings.get<bool>("optimizerRunawayAlerts"), false);
    screen.turn("Keep a log");
    EXPECT_EQ(screen.settings.get<bool>("resourceLogEnabled"), false);
    screen.choose("Check how often", "Minute by minute only");
    EXPECT_EQ(screen.settings.integer("resourceDetail"), 0);
    screen.choose("Keep details for", "1 day");
    EXPECT_EQ(screen.settings.integer("resourceDetailDays"), 1);
    screen.choose("Keep summaries for", "365 days");
    EXPECT_EQ(screen.settings.integer("resourceLogDays"), 365);
}

TEST(OptimizationSettingsView, essentialAppsCannotBeChosenFor) {
    SettingsScreen screen("optimization");
    EXPECT_TRUE(screen.shows("Mail"));
    EXPECT_FALSE(screen.shows("Terminal"));
}

TEST(OptimizationSettingsView, whatTheOptimizerRefusesShowsAsItStands) {
    SettingsScreen screen("optimization");
    screen.optimizer.failure = "no";
    screen.turn("Optimize my computer");
    EXPECT_FALSE(choices(screen).isEnabled);
    EXPECT_FALSE(screen.there("Optimize my computer", QAccessible::CheckBox).property("checked").toBool());
}

TEST(OptimizationSettingsView, appsAreNeverTouchedUntilTheyAreRemoved) {
    SettingsScreen screen("optimization");
    screen.choose("Add App…", "Mail");
    EXPECT_TRUE(choices(screen).rules.neverTouch.contains("org.example.Mail"));
    EXPECT_TRUE(screen.shows("Never touched"));
    screen.click(screen.named("Remove", QAccessible::Button));
    EXPECT_TRUE(choices(screen).rules.neverTouch.empty());
}

TEST(OptimizationSettingsView, aScheduleIsMadeEditedAndDeleted) {
    SettingsScreen screen("optimization");
    screen.click(screen.named("Add Schedule", QAccessible::Button));
    ASSERT_EQ(choices(screen).rules.schedules.size(), 1U);
    EXPECT_EQ(choices(screen).rules.schedules[0].name, "Office hours");
    screen.enter("Name");
    screen.type("!");
    EXPECT_EQ(choices(screen).rules.schedules[0].name, "Office hours!");
    screen.turn("Office hours!");
    EXPECT_FALSE(choices(screen).rules.schedules[0].isEnabled);
    screen.click(screen.named("Saturday", QAccessible::Button));
    screen.click(screen.named("Monday", QAccessible::Button));
    EXPECT_EQ(choices(screen).rules.schedules[0].window.weekdays, (std::set<int>{3, 4, 5, 6, 7}));
    screen.enter("From");
    screen.press(Qt::Key_Up);
    EXPECT_EQ(choices(screen).rules.schedules[0].window.start, 555);
    screen.enter("to");
    screen.press(Qt::Key_A, Qt::ControlModifier);
    screen.type("17:30");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(choices(screen).rules.schedules[0].window.end, 1050);
    screen.press(Qt::Key_A, Qt::ControlModifier);
    screen.type("noon");
    screen.press(Qt::Key_Return);
    EXPECT_EQ(choices(screen).rules.schedules[0].window.end, 1050);
    EXPECT_TRUE(screen.shows("17:30"));
    screen.choose("Add App to This Schedule…", "Mail");
    EXPECT_EQ(choices(screen).rules.schedules[0].tiers,
              (tindra::AppTiers{{"org.example.Mail", tindra::AppTier::alwaysOn}}));
    screen.click(screen.named("Remove", QAccessible::Button));
    EXPECT_TRUE(choices(screen).rules.schedules[0].tiers.empty());
    screen.click(screen.named("Add Schedule", QAccessible::Button));
    EXPECT_EQ(choices(screen).rules.schedules[1].name, "Schedule 2");
    screen.click(screen.named("Delete this schedule", QAccessible::Button));
    ASSERT_EQ(choices(screen).rules.schedules.size(), 1U);
    EXPECT_EQ(choices(screen).rules.schedules[0].name, "Office hours!");
}

TEST(OptimizationSettingsView, theLogIsShownAndDeletedOnceThePersonAgrees) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("resources.sqlite"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(1000, 'x'));
    file.close();
    SettingsScreen screen("general");
    screen.parts.host.historyFile = folder.filePath("activity.sqlite").toStdString();
    screen.model.select("optimization");
    screen.settle();
    EXPECT_TRUE(screen.shows("1 kB") || screen.shows("1 KB"));
    screen.click(screen.named("Show in Files", QAccessible::Button));
    EXPECT_EQ(screen.shownFiles, Done{"resources.sqlite"});
    screen.click(screen.named("Delete", QAccessible::Button));
    EXPECT_TRUE(screen.shows("Delete the whole resource log?"));
    screen.click(screen.named("Cancel", QAccessible::Button));
    QTest::qWait(0);
    EXPECT_TRUE(screen.script.done.empty());
    screen.click(screen.named("Delete", QAccessible::Button));
    screen.press(Qt::Key_Escape);
    EXPECT_TRUE(screen.script.done.empty());
    screen.click(screen.named("Delete", QAccessible::Button));
    screen.press(Qt::Key_Tab);
    screen.click(screen.named("Delete", QAccessible::Button));
    EXPECT_EQ(screen.script.done, Done{"delete the log"});
}

TEST(DataSettingsView, tellsOfTheHistoryAndShowsIt) {
    SettingsScreen screen("data");
    EXPECT_TRUE(screen.shows("activity.sqlite"));
    EXPECT_TRUE(screen.shows("12,345"));
    screen.click(screen.named("Show in Files", QAccessible::Button));
    EXPECT_EQ(screen.shownFiles, Done{"activity.sqlite"});
    screen.archive.facts.sessions = 1;
    screen.script.dataChanged.emit();
    screen.settle();
    EXPECT_TRUE(screen.shows("1"));
}

TEST(DataSettingsView, exportsIntoAFile) {
    const QTemporaryDir folder;
    SettingsScreen screen("data");
    screen.archive.history = exampleWorkday();
    screen.choose("Range", "Last 7 days");
    auto* const tab = qobject_cast<DataSettingsModel*>(screen.model.tabModel());
    ASSERT_NE(tab, nullptr);
    EXPECT_EQ(tab->exportName(), "activity-2026-11-20.csv");
    tab->exportTo(QUrl::fromLocalFile(folder.filePath("a.csv")));
    screen.settle();
    EXPECT_TRUE(screen.shows("Exported 8 sessions to a.csv."));
    QFile file(folder.filePath("a.csv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count('\n'), 9);
    tab->exportTo(QUrl::fromLocalFile(folder.filePath("none/a.csv")));
    screen.settle();
    EXPECT_FALSE(
        screen.items([](QQuickItem& item) { return item.property("text").toString().startsWith("Export failed: "); })
            .empty());
}

TEST(DataSettingsView, importsFilesThroughTheAgent) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.csv"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    SettingsScreen screen("data");
    auto* const tab = qobject_cast<DataSettingsModel*>(screen.model.tabModel());
    screen.script.importOutcome = ImportReport{{.added = 3, .extended = 0, .duplicates = 5}, 1};
    tab->importFrom({QUrl::fromLocalFile(file.fileName())});
    screen.settle();
    EXPECT_EQ(screen.script.importedFiles, Done{"a.csv"});
    EXPECT_TRUE(screen.shows(QString::fromStdString(importText(screen.script.importOutcome, screen.calendar))));
    tab->importFrom({QUrl::fromLocalFile(folder.filePath("none.csv"))});
    screen.settle();
    EXPECT_FALSE(
        screen.items([](QQuickItem& item) { return item.property("text").toString().startsWith("Import failed: "); })
            .empty());
}

TEST(DataSettingsView, deletesOnceThePersonAgrees) {
    SettingsScreen screen("data");
    screen.choose("Delete activity older than", "90 days");
    screen.click(screen.named("Delete Old Activity…", QAccessible::Button));
    EXPECT_TRUE(screen.shows("Delete activity older than 90 days?"));
    screen.click(screen.named("Delete", QAccessible::Button));
    const auto before = screen.calendar.date(2026, 8, 22, 17, 30);
    EXPECT_EQ(screen.script.done, Done{"delete before " + std::to_string(static_cast<std::int64_t>(before.seconds()))});
    QTest::qWait(0);
    screen.click(screen.named("Delete All Activity…", QAccessible::Button));
    screen.click(screen.named("Delete Everything", QAccessible::Button));
    EXPECT_EQ(screen.script.done.back(), "delete all");
}

TEST(WindowsOfTheSettings, areOneAndComeForwardWhenAskedForAgain) {
    SettingsStage stage;
    Windows windows(stage.parts);
    windows.show(SettingsRequest{});
    auto* const first = windows.settings();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(windows.isAnyOpen());
    windows.show(SettingsRequest{"data"});
    EXPECT_EQ(windows.settings(), first);
    EXPECT_EQ(first->title(), "Settings");
    first->close();
    EXPECT_EQ(windows.settings(), nullptr);
    EXPECT_FALSE(windows.isAnyOpen());
}

TEST(WindowsOfTheSettings, theDashboardLeadsToThem) {
    SettingsStage stage;
    Windows windows(stage.parts);
    windows.show(DashboardRequest{});
    QTest::keyClick(windows.dashboard(), Qt::Key_Comma, Qt::ControlModifier);
    QCoreApplication::processEvents();
    EXPECT_NE(windows.settings(), nullptr);
}

} // namespace
} // namespace kestrio
