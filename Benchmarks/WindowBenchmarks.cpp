// The dashboard over a month of sixty thousand sessions, on no screen: opening it, turning to a page and to another
// range, and what each key, click and step of the wheel costs, always up to the picture.
//
// What counts is the time that the windows' thread is busy; reports are built on another queue, and ReportBenchmarks
// tells how long that takes.
#include "Kestrio/Views/Window/AppsModel.h"
#include "Kestrio/Views/Window/DashboardModel.h"
#include "Kestrio/Views/Window/ProjectsModel.h"
#include "Kestrio/Views/Window/TimelineModel.h"
#include "Kestrio/Views/Window/WebsitesModel.h"
#include "Kestrio/Views/Window/WindowApplication.h"
#include "Kestrio/Views/Window/Windows.h"
#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Examples/ExampleHistory.h"
#include "Tests/Views/Window/WindowStage.h"

#include <QCoreApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

std::vector<ActivitySession> hugeMonth() {
    const Calendar calendar("en_GB", "Europe/Berlin");
    const auto now = calendar.date(2026, 11, 20, 17, 30);
    auto sessions = exampleHistory(now, calendar, {.days = 30, .sessionsPerWorkday = 2'700});
    std::erase_if(sessions, [&](const ActivitySession& session) { return session.end > now; });
    return sessions;
}

WindowStage& hugeStage() {
    static WindowStage stage(hugeMonth(), RangeMode::month);
    return stage;
}

/// Whatever is loading is there, and not yet looked at.
void finishLoading() {
    hugeStage().loading.sync([] {});
}

/// The dashboard at a page, as a person has it before them.
class OpenDashboard {
public:
    explicit OpenDashboard(const std::string& page) : windows_(hugeStage().parts) {
        windows_.show(DashboardRequest{page});
        finishLoading();
        frame();
    }

    DashboardModel& model() { return *qvariant_cast<DashboardModel*>(windows_.dashboard()->property("model")); }
    QQuickWindow& window() { return *windows_.dashboard(); }

    template <class Page>
    Page& page() {
        return *qobject_cast<Page*>(model().page());
    }

    /// The list that fills the timeline.
    QQuickItem& list() { return *firstList(window().contentItem()); }

    /// What the main queue has to do is done, and one picture drawn.
    void frame() {
        hugeStage().main.sync([] {});
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QEvent update(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(&window(), &update);
    }

private:
    static QQuickItem* firstList(QQuickItem* item) {
        if (item->inherits("QQuickListView"))
            return item;
        for (auto* const child : item->childItems())
            if (auto* const found = firstList(child))
                return found;
        return nullptr;
    }

    Windows windows_;
};

void openDashboard(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        OpenDashboard("overview");
}

/// One click in the sidebar.
void turnToPage(benchmark::State& state, const QString& page) {
    const QString other = page == u"overview" ? QStringLiteral("timeline") : QStringLiteral("overview");
    OpenDashboard dashboard(other.toStdString());
    for ([[maybe_unused]] auto _ : state) {
        dashboard.model().select(page);
        dashboard.frame();
        state.PauseTiming();
        dashboard.model().select(other);
        dashboard.frame();
        state.ResumeTiming();
    }
}

/// A page in a window that has not shown it before.
void turnToPageFirst(benchmark::State& state, const QString& page) {
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        auto dashboard = std::make_unique<OpenDashboard>(page == u"overview" ? "timeline" : "overview");
        state.ResumeTiming();
        dashboard->model().select(page);
        dashboard->frame();
        state.PauseTiming();
        dashboard.reset();
        state.ResumeTiming();
    }
}

/// Another range, from when its report is there.
void turnToRange(benchmark::State& state, const QString& page, const QString& from, const QString& to) {
    OpenDashboard dashboard(page.toStdString());
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        dashboard.model().setMode(from);
        finishLoading();
        dashboard.frame();
        state.ResumeTiming();
        dashboard.model().setMode(to);
        state.PauseTiming();
        finishLoading();
        state.ResumeTiming();
        dashboard.frame();
    }
}

/// A report made anew, with what was done since, while a page shows.
void refresh(benchmark::State& state, const QString& page) {
    OpenDashboard dashboard(page.toStdString());
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        hugeStage().sessions.back().end += Seconds(1);
        dashboard.model().refresh();
        finishLoading();
        state.ResumeTiming();
        dashboard.frame();
    }
}

/// One notch of the wheel, through all of the month.
void scrollTimeline(benchmark::State& state) {
    OpenDashboard dashboard("timeline");
    auto& list = dashboard.list();
    double place = list.property("contentY").toDouble();
    for ([[maybe_unused]] auto _ : state) {
        list.setProperty("contentY", place += 120);
        dashboard.frame();
    }
}

void searchTimeline(benchmark::State& state) {
    OpenDashboard dashboard("timeline");
    const QString typed = QStringLiteral("main.cpp");
    qsizetype length = 0;
    for ([[maybe_unused]] auto _ : state) {
        length = length % typed.size() + 1;
        dashboard.page<TimelineModel>().setSearch(typed.first(length));
        dashboard.frame();
    }
}

/// A block in the middle of the window opened, and closed again.
void toggleBlock(benchmark::State& state) {
    OpenDashboard dashboard("timeline");
    auto& list = dashboard.list();
    list.setProperty("contentY", 5000);
    dashboard.frame();
    int row = -1;
    QMetaObject::invokeMethod(&list, "indexAt", Q_RETURN_ARG(int, row), Q_ARG(double, list.width() / 2),
                              Q_ARG(double, 5000 + list.height() / 2));
    for ([[maybe_unused]] auto _ : state) {
        dashboard.page<TimelineModel>().rows()->toggle(row);
        dashboard.frame();
    }
}

/// From one application to the next, down the first few, the browser with most of the month among them.
template <class Page>
void select(benchmark::State& state, const QString& page) {
    OpenDashboard dashboard(page.toStdString());
    int place = 0;
    for ([[maybe_unused]] auto _ : state) {
        dashboard.page<Page>().selectPlace(place++ % 5);
        dashboard.frame();
    }
}

void filterWebsites(benchmark::State& state) {
    OpenDashboard dashboard("websites");
    const QString typed = QStringLiteral("git");
    qsizetype length = 0;
    for ([[maybe_unused]] auto _ : state) {
        length = length % typed.size() + 1;
        dashboard.page<WebsitesModel>().setListFilter(typed.first(length));
        dashboard.frame();
    }
}

void filterVideos(benchmark::State& state) {
    OpenDashboard dashboard("youtube");
    const QString typed = QStringLiteral("lecture");
    qsizetype length = 0;
    for ([[maybe_unused]] auto _ : state) {
        length = length % typed.size() + 1;
        dashboard.page<YouTubeModel>().setFilter(typed.first(length));
        dashboard.frame();
    }
}

void registerAll() {
    using benchmark::RegisterBenchmark;
    const auto add = [](const std::string& name, auto measure) {
        return RegisterBenchmark(name.c_str(), measure)->Unit(benchmark::kMillisecond);
    };
    constexpr int fewTimes = 8; // of what takes far longer to prepare than to measure
    add("openDashboard", openDashboard);
    for (const QString& page :
         {u"overview"_qs, u"timeline"_qs, u"apps"_qs, u"websites"_qs, u"youtube"_qs, u"projects"_qs}) {
        const auto name = page.toStdString();
        add("turnToPage/" + name, [page](auto& state) { turnToPage(state, page); });
        add("turnToPageFirst/" + name, [page](auto& state) { turnToPageFirst(state, page); })->Iterations(fewTimes);
        add("refresh/" + name, [page](auto& state) { refresh(state, page); })->Iterations(fewTimes);
        add("dayToWeek/" + name, [page](auto& state) {
            turnToRange(state, page, u"day"_qs, u"week"_qs);
        })->Iterations(fewTimes);
        add("weekToMonth/" + name, [page](auto& state) {
            turnToRange(state, page, u"week"_qs, u"month"_qs);
        })->Iterations(fewTimes);
    }
    add("scrollTimeline", scrollTimeline);
    add("searchTimeline", searchTimeline);
    add("toggleBlock", toggleBlock);
    add("select/apps", [](auto& state) { select<AppsModel>(state, u"apps"_qs); });
    add("select/websites", [](auto& state) { select<WebsitesModel>(state, u"websites"_qs); });
    add("select/projects", [](auto& state) { select<ProjectsModel>(state, u"projects"_qs); });
    add("filterWebsites", filterWebsites);
    add("filterVideos", filterVideos);
}

} // namespace
} // namespace kestrio

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "qt.qpa.*=false"); // that there is nothing to bring to the front
    const kestrio::WindowApplication application(count, words);
    benchmark::Initialize(&count, words);
    kestrio::registerAll();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
