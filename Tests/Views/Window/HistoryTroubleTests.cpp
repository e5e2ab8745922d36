#include "Tests/Views/Window/DashboardScreen.h"

namespace kestrio {
namespace {

constexpr auto notice = "Your history cannot be read";
constexpr auto whyGone = "The file /home/me/activity.sqlite is gone. Once it is back, your history shows again.";

/// A dashboard whose history is in a file of that name.
struct TroubledScreen : DashboardScreen {
    explicit TroubledScreen(DashboardSection section, std::optional<DatabaseTrouble> from = {})
        : DashboardScreen(
              {.history = exampleMonth(40), .page = std::string(rawValue(section)), .prepare = prepare(from)}) {}

    static std::function<void(WindowStage&)> prepare(std::optional<DatabaseTrouble> from) {
        return [from](WindowStage& stage) {
            stage.parts.host.historyFile = "/home/me/activity.sqlite";
            if (!from)
                return;
            stage.trouble = from;
            stage.sessions.clear();
            stage.dashboard.step(-1); // nothing of it was read before
        };
    }

    void fail(std::optional<DatabaseTrouble> why) {
        trouble = why;
        time.advance(std::max(ReportStore::retryInterval, DashboardModel::refreshInterval * 1.2));
        settle();
    }
};

TEST(HistoryTrouble, onNoPageLooksAsIfNothingHadEverBeenRecorded) {
    for (const auto& entry : pageTable()) {
        SCOPED_TRACE(entry.file);
        TroubledScreen screen(entry.section, DatabaseTrouble::missing);
        EXPECT_TRUE(screen.shows(notice));
        EXPECT_TRUE(screen.shows(whyGone));
        for (const auto& word : screen.words())
            EXPECT_FALSE(word.startsWith("No ")) << word.toStdString();
        EXPECT_NE(screen.named(notice, QAccessible::StaticText), nullptr);
        screen.sessions = exampleMonth(40);
        screen.fail(std::nullopt);
        EXPECT_FALSE(screen.shows(notice));
        EXPECT_EQ(screen.model.section(), QString::fromUtf8(rawValue(entry.section).data()));
    }
}

TEST(HistoryTrouble, whatWasReadBeforeStaysOnEveryPage) {
    for (const auto& entry : pageTable()) {
        SCOPED_TRACE(entry.file);
        TroubledScreen screen(entry.section);
        const auto before = screen.words();
        screen.fail(DatabaseTrouble::missing);
        EXPECT_TRUE(screen.shows(QString(whyGone) + " What you see was read before."));
        EXPECT_NE(screen.named(notice, QAccessible::AlertMessage), nullptr);
        EXPECT_FALSE(screen.model.isHistoryAway());
        screen.fail(std::nullopt);
        EXPECT_EQ(screen.words(), before);
    }
}

TEST(HistoryTrouble, anotherRangeHasNothingToShowUntilItCanBeRead) {
    TroubledScreen screen(DashboardSection::overview);
    screen.fail(DatabaseTrouble::locked);
    screen.press(Qt::Key_BracketLeft, Qt::ControlModifier);
    screen.settle();
    EXPECT_TRUE(screen.model.isHistoryAway());
    EXPECT_FALSE(screen.shows("Active Time"));
    screen.fail(std::nullopt);
    EXPECT_FALSE(screen.model.isHistoryAway());
    EXPECT_TRUE(screen.shows("Active Time"));
    EXPECT_TRUE(screen.shows("Yesterday"));
}

TEST(HistoryTrouble, goesOnFromOneToTheNext) {
    TroubledScreen screen(DashboardSection::timeline);
    screen.fail(DatabaseTrouble::locked);
    EXPECT_TRUE(screen.shows(notice));
    screen.fail(DatabaseTrouble::missing);
    EXPECT_TRUE(screen.shows(QString(whyGone) + " What you see was read before."));
    screen.model.select("apps");
    screen.settle();
    EXPECT_TRUE(screen.shows(notice));
}

} // namespace
} // namespace kestrio
