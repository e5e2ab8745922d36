#include "Programs/CommandLine/SessionTable.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>

namespace kestrio {
namespace {

/// A stretch without a session that is worth a line of its own.
constexpr Seconds noticeableGap{2.0};

constexpr std::size_t barColumns = 8;
/// What lasted no time at all still shows that it was there.
constexpr double leastShare = 0.001;
constexpr std::size_t leastNameColumns = 8;
constexpr std::size_t mostNameColumns = 20;
constexpr std::size_t durationColumns = 7;
/// A narrower terminal has no room for bars.
constexpr std::size_t leastWidthForBars = 56;
constexpr std::size_t clockColumns = 8;

class Table {
public:
    Table(const std::vector<ActivitySession>& sessions, const Calendar& calendar, const TableStyle& style)
        : sessions_(sessions),
          calendar_(calendar),
          paint_(style.hasColour),
          width_(std::max<std::size_t>(style.width, 40)),
          barColumns_(width_ < leastWidthForBars ? 0 : barColumns + 2),
          // Two at the left, and two between any two columns.
          beforeName_(2 + clockColumns + 2 + barColumns_ + durationColumns + 2),
          nameLimit_(std::clamp((width_ - beforeName_ - 2) / 2, leastNameColumns, mostNameColumns)) {
        for (const auto& session : sessions_) {
            longest_ = std::max(longest_, session.duration());
            nameColumns_ = std::max(nameColumns_, text::columns(text::fittedToColumns(session.appName, nameLimit_)));
        }
    }

    std::string text() {
        for (const auto& session : sessions_) {
            addDay(session.start);
            if (session.kind == SessionKind::focus)
                addGap(session);
            addSession(session);
        }
        addSum();
        return text_;
    }

private:
    void addDay(Date date) {
        if (day_.contains(date))
            return;
        text_ +=
            fmt::format("{}  {}\n\n", text_.empty() ? "" : "\n", paint_.bold(calendar_.localized(date, "EEEEdMMMMy")));
        day_ = calendar_.day(date);
        recordedUntil_.reset();
    }

    void addGap(const ActivitySession& next) {
        if (recordedUntil_ && next.start - *recordedUntil_ >= noticeableGap)
            text_ += fmt::format(
                "  {}\n",
                paint_.dim(fmt::format("{}  {}  nothing recorded", std::string(clockColumns + barColumns_, ' '),
                                       paddedLeft(Fmt::duration(next.start - *recordedUntil_), durationColumns))));
        recordedUntil_ = std::max(next.end, recordedUntil_.value_or(next.end));
    }

    void addSession(const ActivitySession& session) {
        const auto shade = shadeOf(session.bundleID);
        const auto share = longest_ > Seconds(0) ? session.duration() / longest_ : 0;
        const auto room = width_ - beforeName_ - nameColumns_ - 2;
        auto title = session.title;
        if (session.kind != SessionKind::focus)
            title = fmt::format("{}{}{}", label(session.kind), title.empty() ? "" : ": ", title);
        text_ +=
            fmt::format("  {}  {}{}  {}  {}\n", paint_.dim(calendar_.formatted(session.start, "HH:mm:ss")),
                        barColumns_ > 0 ? paint_.shade(shade, bar(std::max(share, leastShare), barColumns)) + "  " : "",
                        paddedLeft(Fmt::duration(session.duration()), durationColumns),
                        paint_.shade(shade, padded(text::fittedToColumns(session.appName, nameLimit_), nameColumns_)),
                        text::fittedToColumns(title, room));
        while (text_.size() > 1 && text_[text_.size() - 2] == ' ') // no blanks where there is no title
            text_.erase(text_.size() - 2, 1);
    }

    void addSum() {
        Seconds focused{};
        Seconds alongside{};
        std::set<std::string> applications;
        for (const auto& session : sessions_) {
            (session.kind == SessionKind::focus ? focused : alongside) += session.duration();
            applications.insert(session.bundleID);
        }
        auto sum = fmt::format("{} focused in {}, {}", Fmt::duration(focused), counted(sessions_.size(), "session"),
                               counted(applications.size(), "application"));
        if (alongside >= Seconds(1))
            sum += fmt::format(", {} alongside", Fmt::duration(alongside));
        text_ += fmt::format("\n  {}\n", sum);
    }

    std::size_t shadeOf(const std::string& bundleID) { return shades_.emplace(bundleID, shades_.size()).first->second; }

    const std::vector<ActivitySession>& sessions_;
    const Calendar& calendar_;
    const Painter paint_;
    const std::size_t width_;
    const std::size_t barColumns_; // with the blanks that follow; 0 without bars
    const std::size_t beforeName_;
    const std::size_t nameLimit_;
    Seconds longest_{};
    std::size_t nameColumns_ = 0;
    std::map<std::string, std::size_t> shades_; // by application, in the order of appearance
    DateInterval day_{};
    std::optional<Date> recordedUntil_;
    std::string text_;
};

} // namespace

std::string sessionTable(std::vector<ActivitySession> sessions, const Calendar& calendar, const TableStyle& style) {
    std::stable_sort(sessions.begin(), sessions.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    return Table(sessions, calendar, style).text();
}

} // namespace kestrio
