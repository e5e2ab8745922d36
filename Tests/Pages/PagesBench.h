// Hand-made reports for the tests of pages: Friday 20 November 2026, half past five in the afternoon.
#pragma once

#include "Kestrio/Pages/Viewpoint.h"
#include "Tests/Reports/ReportBench.h"

namespace kestrio {

struct PagesBench : ReportBench {
    using ReportBench::ReportBench;
    Date at(int hours, int minutes = 0) const { return calendar.date(2026, 11, 20, hours, minutes); }
    Viewpoint viewpoint() const { return {at(17, 30), calendar}; }
};

inline UsageItem item(std::string title, double seconds, Date lastSeen, std::int64_t count = 1) {
    return {title, title, std::nullopt, std::nullopt, Seconds(seconds), count, lastSeen};
}

inline AppUsage usedApp(std::string name, double seconds, double alongside = 0) {
    AppUsage app;
    app.bundleID = "org.example." + name;
    app.name = std::move(name);
    app.duration = Seconds(seconds);
    app.alongside = Seconds(alongside);
    return app;
}

inline DomainUsage usedSite(std::string domain, double seconds, double alongside = 0) {
    DomainUsage site;
    site.domain = std::move(domain);
    site.duration = Seconds(seconds);
    site.alongside = Seconds(alongside);
    return site;
}

inline VideoUsage watchedVideo(std::string id, double seconds, double alongside = 0, bool isShort = false) {
    VideoUsage video;
    video.title = "Video " + id;
    video.videoID = std::move(id);
    video.duration = Seconds(seconds);
    video.alongside = Seconds(alongside);
    video.views = 1;
    video.isShort = isShort;
    return video;
}

/// The titles of rows, cards or entries.
template <class Rows>
std::vector<std::string> titles(const Rows& rows) {
    std::vector<std::string> all;
    for (const auto& row : rows)
        all.emplace_back(row.title);
    return all;
}

/// With an ordinary blank where the locale has a narrow one or one that does not break.
inline std::string withPlainBlanks(std::string text) {
    for (const std::string blank : {"\u202F", "\u00A0"})
        for (auto at = text.find(blank); at != std::string::npos; at = text.find(blank))
            text.replace(at, blank.size(), " ");
    return text;
}

using Texts = std::vector<std::string>;

} // namespace kestrio
