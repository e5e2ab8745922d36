#include "Tests/Examples/ExampleHistory.h"

#include "Kestrio/Activity/Database.h"
#include "Kestrio/Base/LoopQueue.h"
#include "Tests/Examples/Dice.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace kestrio {
namespace {

constexpr std::array projects{"harbour", "lantern", "field-notes", "tidewater", "website", "dotfiles"};
constexpr std::array folders{"Parser", "Store", "Views", "Sync", "Export", "Tests", "Model", "Layout"};
constexpr std::array parts{"Reader", "Writer",  "Cache", "Index", "Session",
                           "Queue",  "Palette", "Table", "Menu",  "Clock"};
constexpr std::array endings{".cpp", ".h", ".md", ".qml", ".py"};
constexpr std::array shellCommands{"ninja", "git log", "vim", "ctest", "less", "ssh build", "git rebase -i", "htop"};
constexpr std::array channels{"general", "releases", "design", "random", "support", "field-notes", "coffee"};
constexpr std::array people{"Ada", "Mirela", "Jonas", "Noor", "Chiara", "Émile", "Søren", "Yuki"};
constexpr std::array subjects{"Minutes of Tuesday", "The offer, once more",        "Re: dates for the review",
                              "Invoice 2231",       "A question about the export", "Your train on Friday"};
constexpr std::array documents{"Roadmap", "Notes of the week", "Reading list", "Interview questions", "Budget"};
constexpr std::array questions{"sqlite wal checkpoint", "c++ string_view lifetime", "qml listview sections",
                               "icu date skeleton",     "best bread flour",         "trains to trieste",
                               "rainy day hikes",       "cmake presets inherit",    "how to descale a kettle",
                               "x11 idle time"};
constexpr std::array talks{"Rust in anger – a field report",
                           "A history of tidal power",
                           "CppCon: the allocator you already have",
                           "Lo-fi beats for a rainy afternoon",
                           "Baking sourdough, from the start",
                           "Night train to Narvik, cab view",
                           "What every chart hides",
                           "Building a cabin, part seven",
                           "The mathematics of knots"};
constexpr std::array songs{"Harbour Lights", "Slow Tram",     "Weather Report, Tomorrow", "Kites",
                           "Blue Kettle",    "North of Here", "Two Left Shoes",           "The Long Corridor",
                           "Ferry at Dusk",  "Small Hours"};
constexpr std::array articles{"The last lighthouse keepers", "Why bridges hum", "A town without cars",
                              "How paper maps survived", "The quiet return of the night train"};

/// The text that stands for a number in addresses, always eleven characters.
std::string videoID(std::size_t number) {
    return fmt::format("vid{:08}", number);
}

ActivitySample sample(const char* bundleID, const char* appName, std::string title) {
    ActivitySample made;
    made.bundleID = bundleID;
    made.appName = appName;
    made.title = std::move(title);
    return made;
}

ActivitySample page(std::string title, const char* domain, std::string path) {
    auto made = sample("com.google.Chrome", "Google Chrome", std::move(title));
    made.url = fmt::format("https://{}{}", domain, path);
    made.domain = domain;
    return made;
}

class Person {
public:
    Person(const Calendar& calendar, const ExampleHistoryOptions& options)
        : calendar_(calendar), dice_(options.seed), perWorkday_(options.sessionsPerWorkday) {}

    void live(DateInterval day) {
        const auto weekday = calendar_.components(day.start).weekday;
        const bool isWeekend = weekday == 1 || weekday == 7;
        if (isWeekend) {
            if (dice_.chance(0.7))
                spend(day, dice_.uniform(10, 12), dice_.uniform(13, 15), 0.15);
        } else {
            project_ = dice_.favourite(projects.size());
            const auto lunch = dice_.uniform(12, 13);
            spend(day, dice_.uniform(8, 9.5), lunch, 0.9);
            spend(day, lunch + dice_.uniform(0.5, 1), dice_.uniform(16.8, 18.5), 0.85);
        }
        if (dice_.chance(0.6))
            spend(day, dice_.uniform(20, 21), dice_.uniform(21.5, 23.4), 0.1);
    }

    std::vector<ActivitySession> takeSessions() {
        std::stable_sort(sessions_.begin(), sessions_.end(),
                         [](const auto& a, const auto& b) { return a.start < b.start; });
        std::int64_t id = 0;
        for (auto& session : sessions_)
            session.id = ++id;
        return std::move(sessions_);
    }

private:
    /// A stretch at the computer between two hours of the day; `work` is how much of it goes into work.
    void spend(DateInterval day, double fromHour, double toHour, double work) {
        auto now = day.start + Seconds(3600 * fromHour);
        const auto end = day.start + Seconds(3600 * toHour);
        constexpr double workdayHours = 8.2;
        const double mean = workdayHours * 3600 / perWorkday_;
        while (now < end) {
            const auto stretchEnd = std::min(end, now + Seconds(dice_.length(1200) + 120));
            const bool works = dice_.chance(work);
            if (works && dice_.chance(0.3))
                listen(now, stretchEnd);
            else if (works && dice_.chance(0.12))
                watchBeside(now, stretchEnd);
            while (now < stretchEnd) {
                const auto next = std::min(stretchEnd, now + Seconds(dice_.length(mean)));
                add(works ? atWork() : atLeisure(), now, next);
                now = next;
            }
            if (dice_.chance(0.35)) // away for a moment
                now += Seconds(dice_.length(420));
        }
    }

    void add(const ActivitySample& sample, Date start, Date end) {
        if (end - start >= Seconds(1))
            sessions_.push_back(activitySession(0, sample, start, end));
    }

    ActivitySample atWork() {
        const auto draw = dice_.uniform(0, 1);
        if (draw < 0.38)
            return editor();
        if (draw < 0.52)
            return terminal();
        if (draw < 0.74)
            return reference();
        if (draw < 0.86)
            return chat();
        if (draw < 0.92)
            return mail();
        if (draw < 0.96)
            return sample("md.obsidian", "Obsidian", dice_.one(documents));
        return page(fmt::format("{} – Google Docs", dice_.one(documents)), "docs.google.com",
                    fmt::format("/document/d/{}/edit", dice_.below(40)));
    }

    ActivitySample atLeisure() {
        const auto draw = dice_.uniform(0, 1);
        if (draw < 0.4)
            return video();
        if (draw < 0.5)
            return search();
        if (draw < 0.65)
            return page(fmt::format("{} : r/trains", dice_.one(articles)), "reddit.com",
                        fmt::format("/r/trains/comments/{}", dice_.below(5000)));
        if (draw < 0.8)
            return page(dice_.one(articles), "longread.example", fmt::format("/{}", dice_.below(900)));
        if (draw < 0.9)
            return sample("org.telegram.desktop", "Telegram", dice_.one(people));
        return sample("org.gnome.Nautilus", "Files", "Pictures");
    }

    ActivitySample editor() {
        if (dice_.chance(0.3))
            file_ = dice_.favourite(folders.size() * parts.size() * endings.size());
        const auto name =
            fmt::format("{}{}{}", folders[file_ % folders.size()], parts[file_ / folders.size() % parts.size()],
                        endings[file_ / folders.size() / parts.size() % endings.size()]);
        auto made = sample("com.microsoft.VSCode", "Code", fmt::format("{} — {}", name, projects[project_]));
        made.project = projects[project_];
        return made;
    }

    ActivitySample terminal() {
        auto made = sample("net.kovidgoyal.kitty", "kitty",
                           fmt::format("{} ~/{}", dice_.one(shellCommands), projects[project_]));
        made.project = projects[project_];
        return made;
    }

    ActivitySample reference() {
        const auto draw = dice_.uniform(0, 1);
        if (draw < 0.45) {
            const auto number = dice_.below(4000);
            return page(fmt::format("{} {} · Issue #{} · team/{}", dice_.one(folders), dice_.one(parts), number,
                                    projects[project_]),
                        "github.com", fmt::format("/team/{}/issues/{}", projects[project_], number));
        }
        if (draw < 0.65) {
            const auto number = dice_.below(20'000);
            return page(fmt::format("{} - Stack Overflow", dice_.one(questions)), "stackoverflow.com",
                        fmt::format("/questions/{}", number));
        }
        if (draw < 0.85)
            return page(fmt::format("{} – Reference", dice_.one(parts)), "docs.lantern.example",
                        fmt::format("/api/{}", dice_.below(300)));
        const auto& words = dice_.one(questions);
        return page(fmt::format("{} - Google Search", words), "google.com",
                    fmt::format("/search?q={}", dice_.below(3000)));
    }

    ActivitySample chat() {
        return sample("com.tinyspeck.slackmacgap", "Slack",
                      dice_.chance(0.5) ? fmt::format("{} (Channel)", dice_.one(channels))
                                        : fmt::format("{} (DM)", dice_.one(people)));
    }

    ActivitySample mail() {
        return sample("org.mozilla.Thunderbird", "Thunderbird",
                      dice_.chance(0.4) ? "Inbox" : fmt::format("{} – {}", dice_.one(subjects), dice_.one(people)));
    }

    ActivitySample video() {
        const auto number = dice_.favourite(600);
        if (dice_.chance(0.2))
            return page(fmt::format("#shorts {} - YouTube", talks[number % talks.size()]), "youtube.com",
                        "/shorts/" + videoID(10'000 + number));
        return page(fmt::format("{} ({}) - YouTube", talks[number % talks.size()], 1 + number / talks.size()),
                    "youtube.com", "/watch?v=" + videoID(number));
    }

    ActivitySample search() {
        std::string words = dice_.one(questions);
        auto query = words;
        std::replace(query.begin(), query.end(), ' ', '+');
        return page(words + " - YouTube", "youtube.com", "/results?search_query=" + query);
    }

    void listen(Date start, Date end) {
        while (start < end) {
            const auto next = std::min(end, start + Seconds(dice_.uniform(150, 280)));
            auto song =
                sample("com.spotify.client", "Spotify", fmt::format("{} – {}", dice_.one(people), dice_.one(songs)));
            song.kind = SessionKind::listening;
            add(song, start, next);
            start = next;
        }
    }

    void watchBeside(Date start, Date end) {
        auto talk = video();
        talk.kind = SessionKind::watching;
        add(talk, start, end);
    }

    const Calendar& calendar_;
    Dice dice_;
    const double perWorkday_;
    std::size_t project_ = 0;
    std::size_t file_ = 0;
    std::vector<ActivitySession> sessions_;
};

} // namespace

std::vector<ActivitySession> exampleHistory(Date lastDay, const Calendar& calendar,
                                            const ExampleHistoryOptions& options) {
    Person person(calendar, options);
    for (int i = options.days - 1; i >= 0; --i)
        person.live(calendar.day(calendar.addingDays(lastDay, -i)));
    return person.takeSessions();
}

bool writeHistory(const std::filesystem::path& file, const std::vector<ActivitySession>& sessions) {
    try {
        WorkerQueue queue("Kestrio.database");
        Database make(file, queue); // the schema
    } catch (const DatabaseError&) {
        return false;
    }
    sqlite3* raw = nullptr;
    sqlite3_open(file.c_str(), &raw);
    const sqlite::Connection connection(raw);
    sqlite::Transaction transaction(raw);
    sqlite::Statement insert(
        raw, "INSERT INTO sessions (start, end, bundle_id, app_name, title, url, domain, project, kind) "
             "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (const auto& session : sessions) {
        insert.bind(1, session.start);
        insert.bind(2, session.end);
        insert.bind(3, std::string_view(session.bundleID));
        insert.bind(4, std::string_view(session.appName));
        insert.bind(5, std::string_view(session.title));
        insert.bind(6, session.url);
        insert.bind(7, session.domain);
        insert.bind(8, session.project);
        insert.bind(9, rawValue(session.kind));
        if (insert.step() != sqlite::Step::done)
            return false;
        insert.reset();
    }
    return transaction.commit();
}

} // namespace kestrio
