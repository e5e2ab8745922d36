#include "Kestrio/Reports/ReportBuilder.h"

#include "Kestrio/Reports/BucketSums.h"
#include "Kestrio/Reports/ItemTally.h"
#include "Kestrio/Reports/Timeline.h"
#include "Kestrio/Reports/VideoTally.h"

#include <algorithm>

namespace kestrio {
namespace {

constexpr auto absent = TextNumber::absent;

/// Cuts each session to the interval and drops those of which nothing is left.
void clip(std::vector<ActivitySession>& sessions, DateInterval interval) {
    std::erase_if(sessions, [&](ActivitySession& session) {
        session.start = std::max(session.start, interval.start);
        session.end = std::min(session.end, interval.end);
        return !(session.end > session.start); // also what is not a number
    });
}

/// Ascending by start. What comes from a store is in order already, but for a few live rows at its end.
void sortByStart(std::vector<ActivitySession>& sessions) {
    const auto earlier = [](const ActivitySession& a, const ActivitySession& b) { return a.start < b.start; };
    const auto unsorted = std::is_sorted_until(sessions.begin(), sessions.end(), earlier);
    std::stable_sort(unsorted, sessions.end(), earlier);
    std::inplace_merge(sessions.begin(), unsorted, sessions.end(), earlier);
}

ClassifiedSession unclassified(ActivitySession&& session) {
    ClassifiedSession made;
    made.id = session.id;
    made.start = session.start;
    made.end = session.end;
    made.bundleID = std::move(session.bundleID);
    made.appName = std::move(session.appName);
    made.title = std::move(session.title);
    made.url = std::move(session.url);
    made.domain = std::move(session.domain);
    made.kind = session.kind;
    if (session.kind == SessionKind::focus) // what plays alongside belongs to no project
        made.project = std::move(session.project);
    return made;
}

/// Sorts rows by what `time` says of them, longest first, equal ones by their keys.
template <class Row, class Time, class Key>
void sortLongestFirst(std::vector<Row>& rows, Time time, Key key) {
    std::sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
        const Seconds timeA = time(a);
        const Seconds timeB = time(b);
        return timeA != timeB ? timeA > timeB : key(a) < key(b);
    });
}

/// The latest text that something was called, or what stands for it when that is empty.
std::string titleOr(const ItemTally::Row& row, std::string_view otherwise) {
    const auto& title = row.latest->title;
    return title.empty() ? std::string(otherwise) : title;
}

std::optional<std::string> latestURL(const ItemTally::Row& row) {
    return row.latestWithURL ? row.latestWithURL->url : std::nullopt;
}

template <class MakeItem>
std::vector<UsageItem> items(const std::vector<const ItemTally::Row*>& rows, MakeItem makeItem) {
    std::vector<UsageItem> made;
    made.reserve(rows.size());
    for (const auto* row : rows)
        made.push_back(makeItem(*row));
    return made;
}

/// The making of one report: two passes, over the sessions in front and over those alongside. A session's texts become
/// numbers first, and everything else is keyed by these.
class Building {
public:
    Building(DateInterval interval, Granularity granularity, const Calendar& calendar,
             const Classification& classification)
        : classification_(classification),
          report_(ActivityReport::empty(interval, granularity)),
          days_(calendar, Granularity::day),
          buckets_(calendar, granularity) {}

    ActivityReport report(std::vector<ActivitySession> sessions) {
        clip(sessions, report_.interval);
        sortByStart(sessions);
        takeOver(std::move(sessions));
        for (auto& session : report_.sessions)
            addFocus(session);
        previous_ = {};
        for (auto& session : report_.alongsideSessions)
            addAlongside(session);
        finish();
        return std::move(report_);
    }

private:
    /// A session's texts by number.
    struct Numbers {
        const ClassifiedSession* session = nullptr;
        TextNumber bundleID = absent;
        TextNumber title = absent;
        TextNumber url = absent;
        TextNumber domain = absent;
        TextNumber project = absent; // the detected one
    };

    struct App {
        const ClassifiedSession* first;
        const ClassifiedSession* named; // the latest in front, or the first that was alongside
        ActivityCategory category;
        Seconds duration{};
        Seconds alongside{};
        std::int64_t visits = 0;
    };

    struct Site {
        const ClassifiedSession* first;
        Seconds duration{};
        Seconds alongside{};
        std::int64_t visits = 0;
    };

    struct Project {
        const ClassifiedSession* first;
        Seconds duration{};
        Date lastSeen;
    };

    /// The lists get their final size at once: from here on no session moves, and the tallies point to them.
    void takeOver(std::vector<ActivitySession> sessions) {
        const auto focused = std::count_if(sessions.begin(), sessions.end(), [](const ActivitySession& session) {
            return session.kind == SessionKind::focus;
        });
        report_.sessions.reserve(static_cast<std::size_t>(focused));
        report_.alongsideSessions.reserve(sessions.size() - static_cast<std::size_t>(focused));
        focusTimeline_.reserve(report_.sessions.capacity());
        alongsideTimeline_.reserve(report_.alongsideSessions.capacity());
        for (auto& session : sessions) {
            auto& list = session.kind == SessionKind::focus ? report_.sessions : report_.alongsideSessions;
            list.push_back(unclassified(std::move(session)));
        }
    }

    /// Most sessions share most texts with the one before.
    template <class Text>
    TextNumber number(const Text& text, const Text* before, TextNumber numberBefore) {
        return before && *before == text ? numberBefore : newNumber(text);
    }
    TextNumber newNumber(const std::string& text) { return texts_.number(text); }
    TextNumber newNumber(const std::optional<std::string>& text) { return text ? texts_.number(*text) : absent; }

    Numbers numbers(const ClassifiedSession& session) {
        const auto* before = previous_.session;
        Numbers made;
        made.session = &session;
        made.bundleID = number(session.bundleID, before ? &before->bundleID : nullptr, previous_.bundleID);
        made.title = number(session.title, before ? &before->title : nullptr, previous_.title);
        made.url = number(session.url, before ? &before->url : nullptr, previous_.url);
        made.domain = number(session.domain, before ? &before->domain : nullptr, previous_.domain);
        return made;
    }

    ActivityCategory category(const Numbers& texts) {
        const auto [number, isNew] = categoryNumbers_.number({value(texts.bundleID), value(texts.domain)});
        if (isNew)
            categories_.push_back(classification_.categories.category(texts.session->bundleID, texts.session->domain));
        return categories_[number];
    }

    void addFocus(ClassifiedSession& session) {
        auto texts = numbers(session);
        session.category = category(texts);
        const auto project = applyRules(session, texts);
        const auto duration = session.duration();
        const bool isFirst = previous_.session == nullptr;
        const bool isNewVisit = texts.bundleID != previous_.bundleID;

        categoryTimes_.add(session.category, duration);
        countDay(session.start);
        if (isNewVisit && !isFirst)
            ++report_.switches;
        addFocusToApp(session, texts, isNewVisit);
        if (session.domain)
            addFocusToSite(session, texts);
        videos_.addFocus(session, texts.url, previous_.url);
        if (project != absent)
            addToProject(session, texts, project);
        buckets_.add(session.start, session.end, session.category);
        focusTimeline_.add(session, texts.bundleID, texts.title, texts.url);
        report_.total += duration;
        report_.lastActivity = std::max(session.end, report_.lastActivity.value_or(session.end));
        previous_ = texts;
    }

    /// Puts the project that counts into the session. The rules are asked once per combination of texts.
    TextNumber applyRules(ClassifiedSession& session, Numbers& texts) {
        texts.project = detectedProject(session);
        if (classification_.rules.empty())
            return texts.project;
        const auto [number, isNew] = ruleNumbers_.number({value(texts.title), value(texts.url), value(texts.project)});
        if (isNew) {
            const auto project =
                ProjectRules::resolve(classification_.rules, session.title, session.url, session.project);
            projectsByRule_.push_back(project ? texts_.numberKept(*project) : absent);
        }
        const auto project = projectsByRule_[number];
        if (project == absent)
            session.project.reset();
        else if (project != texts.project)
            session.project = texts_.text(project);
        return project;
    }

    /// By rules the text itself may change under way, so that it cannot be compared with the one before.
    TextNumber detectedProject(const ClassifiedSession& session) {
        if (!session.project)
            return absent;
        if (classification_.rules.empty()) {
            const auto* before = previous_.session;
            return number(session.project, before ? &before->project : nullptr, previous_.project);
        }
        return texts_.numberKept(*session.project);
    }

    void countDay(Date start) {
        const auto day = days_.around(start).start;
        if (report_.activeDays == 0 || day != lastDay_)
            ++report_.activeDays;
        lastDay_ = day;
    }

    std::uint32_t app(const ClassifiedSession& session, TextNumber bundleID) {
        const auto [number, isNew] = appNumbers_.number({value(bundleID)});
        if (isNew)
            apps_.push_back({&session, &session, classification_.categories.appCategory(session.bundleID)});
        return number;
    }

    void addFocusToApp(const ClassifiedSession& session, const Numbers& texts, bool isNewVisit) {
        const auto number = app(session, texts.bundleID);
        auto& row = apps_[number];
        row.duration += session.duration();
        row.visits += isNewVisit ? 1 : 0;
        row.named = &session;
        titles_.add({number, absent, texts.title}, session);
    }

    std::uint32_t site(const ClassifiedSession& session, TextNumber domain) {
        const auto [number, isNew] = siteNumbers_.number({value(domain)});
        if (isNew)
            sites_.push_back({&session});
        return number;
    }

    void addFocusToSite(const ClassifiedSession& session, const Numbers& texts) {
        const auto number = site(session, texts.domain);
        auto& row = sites_[number];
        row.duration += session.duration();
        row.visits += previous_.domain != texts.domain ? 1 : 0;
        const auto page = !session.title.empty() ? texts.title : session.url ? texts.url : texts.domain;
        pages_.add({number, absent, page}, session);
    }

    void addToProject(const ClassifiedSession& session, const Numbers& texts, TextNumber project) {
        const auto [number, isNew] = projectNumbers_.number({value(project)});
        if (isNew)
            projects_.push_back({&session, {}, session.end});
        auto& row = projects_[number];
        row.duration += session.duration();
        row.lastSeen = std::max(row.lastSeen, session.end);
        projectApps_.add({number, absent, texts.bundleID}, session);
        projectItems_.add({number, texts.bundleID, texts.title}, session);
    }

    void addAlongside(ClassifiedSession& session) {
        const auto texts = numbers(session);
        session.category = category(texts);
        const auto duration = session.duration();
        const auto what = session.url ? texts.url : texts.title;

        (session.kind == SessionKind::watching ? report_.watchingTime : report_.listeningTime) += duration;
        const auto appNumber = app(session, texts.bundleID);
        apps_[appNumber].alongside += duration;
        alongsideTitles_.add({appNumber, kindNumber(session.kind), what}, session);
        if (session.domain)
            sites_[site(session, texts.domain)].alongside += duration;
        videos_.addAlongside(session, texts.url);
        addAlongsideItem(session, texts.bundleID, what);
        alongsideTimeline_.add(session, texts.bundleID, texts.title, texts.url);
        previous_ = texts;
    }

    /// The kind's number as a text: it stands in keys.
    TextNumber kindNumber(SessionKind kind) { return texts_.number(kind == SessionKind::watching ? "1" : "2"); }

    void addAlongsideItem(const ClassifiedSession& session, TextNumber bundleID, TextNumber what) {
        const auto kind = kindNumber(session.kind);
        const auto [number, isNew] = alongsideNumbers_.number({value(kind), value(bundleID), value(what)});
        if (isNew) {
            AlongsideItem item;
            for (const auto part : {texts_.text(kind), texts_.text(bundleID)}) {
                item.id += part;
                item.id += '|';
            }
            item.id += texts_.text(what);
            item.kind = session.kind;
            item.bundleID = session.bundleID;
            item.appName = session.appName;
            item.title = session.title;
            item.url = session.url;
            item.domain = session.domain;
            item.lastSeen = session.end;
            report_.alongsideItems.push_back(std::move(item));
        }
        auto& item = report_.alongsideItems[number];
        item.duration += session.duration();
        if (session.end < item.lastSeen)
            return;
        item.lastSeen = session.end;
        if (!session.title.empty())
            item.title = session.title;
    }

    void finish() {
        finishCategories();
        finishApps();
        finishSites();
        finishProjects();
        sortLongestFirst(
            report_.alongsideItems, [](const auto& item) { return item.duration; },
            [](const auto& item) -> const std::string& { return item.id; });
        report_.youtubeTime = videos_.focusTime();
        report_.youtubeAlongsideTime = videos_.alongsideTime();
        report_.videos = videos_.takeVideos();
        sortLongestFirst(
            report_.videos, [](const auto& video) { return video.duration; },
            [](const auto& video) -> const std::string& { return video.videoID; });
        report_.youtubeSearches = videos_.takeSearches();
        sortLongestFirst(
            report_.youtubeSearches, [](const auto& item) { return item.duration; },
            [](const auto& item) -> const std::string& { return item.id; });
        if (report_.youtubeSearches.size() > ReportBuilder::searchLimit)
            report_.youtubeSearches.resize(ReportBuilder::searchLimit);
        report_.buckets = buckets_.timeBuckets();
        report_.blocks = Timeline::merged(focusTimeline_, alongsideTimeline_);
        if (!report_.sessions.empty())
            report_.firstActivity = report_.sessions.front().start;
    }

    void finishCategories() {
        categoryTimes_.forEach([&](ActivityCategory category, Seconds time) {
            report_.productivity.add(productivity(category), time);
            report_.categories.push_back({category, time});
        });
        sortLongestFirst(
            report_.categories, [](const auto& row) { return row.duration; },
            [](const auto& row) { return row.category; });
    }

    void finishApps() {
        const auto titles = titles_.longest(apps_.size(), ReportBuilder::itemLimit, texts_);
        const auto played = alongsideTitles_.longest(apps_.size(), ReportBuilder::itemLimit, texts_);
        report_.apps.reserve(apps_.size());
        for (std::size_t i = 0; i < apps_.size(); ++i) {
            const auto& app = apps_[i];
            report_.apps.push_back({app.first->bundleID, app.named->appName, app.category, app.duration, app.alongside,
                                    app.visits,
                                    items(titles[i], [&](const ItemTally::Row& row) { return windowItem(row); }),
                                    items(played[i], [&](const ItemTally::Row& row) { return playedItem(row); })});
        }
        sortLongestFirst(
            report_.apps, [](const auto& app) { return app.duration + app.alongside; },
            [](const auto& app) -> const std::string& { return app.bundleID; });
    }

    UsageItem windowItem(const ItemTally::Row& row) const {
        auto item = usageItem(row, texts_);
        item.title = titleOr(row, "Untitled window");
        item.subtitle = row.latestWithDomain ? row.latestWithDomain->domain : std::nullopt;
        item.url = latestURL(row);
        return item;
    }

    UsageItem playedItem(const ItemTally::Row& row) const {
        auto item = usageItem(row, texts_);
        item.title = titleOr(row, row.latest->appName);
        item.subtitle = label(row.latest->kind);
        item.url = latestURL(row);
        return item;
    }

    void finishSites() {
        const auto pages = pages_.longest(sites_.size(), ReportBuilder::itemLimit, texts_);
        report_.domains.reserve(sites_.size());
        for (std::size_t i = 0; i < sites_.size(); ++i) {
            const auto& site = sites_[i];
            report_.domains.push_back({*site.first->domain, site.first->category, site.duration, site.alongside,
                                       site.visits,
                                       items(pages[i], [&](const ItemTally::Row& row) { return pageItem(row); })});
        }
        sortLongestFirst(
            report_.domains, [](const auto& site) { return site.duration + site.alongside; },
            [](const auto& site) -> const std::string& { return site.domain; });
    }

    UsageItem pageItem(const ItemTally::Row& row) const {
        auto item = usageItem(row, texts_);
        item.title = titleOr(row, row.latest->url.value_or(row.latest->domain.value_or("")));
        item.subtitle = latestURL(row);
        item.url = item.subtitle;
        return item;
    }

    void finishProjects() {
        const auto apps = projectApps_.longest(projects_.size(), ReportBuilder::projectAppLimit, texts_);
        const auto work = projectItems_.longest(projects_.size(), ReportBuilder::itemLimit, texts_);
        report_.projects.reserve(projects_.size());
        for (std::size_t i = 0; i < projects_.size(); ++i) {
            const auto& project = projects_[i];
            report_.projects.push_back({*project.first->project, project.duration,
                                        items(apps[i], [&](const ItemTally::Row& row) { return projectAppItem(row); }),
                                        items(work[i], [&](const ItemTally::Row& row) { return projectItem(row); }),
                                        project.first->start, project.lastSeen});
        }
        sortLongestFirst(
            report_.projects, [](const auto& project) { return project.duration; },
            [](const auto& project) -> const std::string& { return project.name; });
    }

    UsageItem projectAppItem(const ItemTally::Row& row) const {
        auto item = usageItem(row, texts_);
        item.title = row.latest->appName;
        return item;
    }

    UsageItem projectItem(const ItemTally::Row& row) const {
        auto item = usageItem(row, texts_);
        item.title = titleOr(row, row.latest->appName);
        item.subtitle = row.latest->appName;
        item.url = latestURL(row);
        return item;
    }

    static std::uint32_t value(TextNumber number) { return static_cast<std::uint32_t>(number); }

    const Classification& classification_;
    ActivityReport report_;
    TextNumbers texts_;
    Numbers previous_; // of the pass under way; without a session at its beginning

    KeyNumbers categoryNumbers_; // by application and site
    std::vector<ActivityCategory> categories_;
    KeyNumbers ruleNumbers_; // by title, address and detected project
    std::vector<TextNumber> projectsByRule_;

    CategoryTimes categoryTimes_;
    IntervalWalk days_;
    Date lastDay_;
    BucketSums buckets_;
    KeyNumbers appNumbers_;
    std::vector<App> apps_;
    ItemTally titles_;
    ItemTally alongsideTitles_;
    KeyNumbers siteNumbers_;
    std::vector<Site> sites_;
    ItemTally pages_;
    KeyNumbers projectNumbers_;
    std::vector<Project> projects_;
    ItemTally projectApps_;
    ItemTally projectItems_;
    VideoTally videos_{texts_};
    KeyNumbers alongsideNumbers_;
    Timeline focusTimeline_{ReportBuilder::focusGap};
    Timeline alongsideTimeline_{ReportBuilder::alongsideGap};
};

} // namespace

ActivityReport ReportBuilder::build(std::vector<ActivitySession> sessions, DateInterval interval,
                                    Granularity granularity, const Calendar& calendar,
                                    const Classification& classification) {
    return Building(interval, granularity, calendar, classification).report(std::move(sessions));
}

std::vector<SimpleBucket> ReportBuilder::buckets(std::span<const ClassifiedSession> sessions, Granularity granularity,
                                                 const Calendar& calendar) {
    BucketSums sums(calendar, granularity);
    for (const auto& session : sessions)
        sums.add(session.start, session.end, session.category);
    return sums.simpleBuckets();
}

} // namespace kestrio
