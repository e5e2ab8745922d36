#include "Programs/CommandLine/SessionTable.h"

#include "Kestrio/Base/Formatters.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <set>

namespace kestrio {
namespace {

/// A stretch without a session that is worth a line of its own.
constexpr Seconds noticeableGap{2.0};

constexpr std::size_t barColumns = 8;
constexpr std::size_t leastNameColumns = 8;
constexpr std::size_t mostNameColumns = 20;
constexpr std::size_t durationColumns = 7;
/// A narrower terminal has no room for bars.
constexpr std::size_t leastWidthForBars = 56;
constexpr std::size_t clockColumns = 8;

/// Seven shades that read on light and on dark grounds, from the 256 colours of terminals.
constexpr std::array shades{33, 37, 98, 172, 167, 65, 139};

class Painter {
public:
    explicit Painter(bool hasColour) : hasColour_(hasColour) {}

    std::string dim(const std::string& text) const { return painted("2", text); }
    std::string bold(const std::string& text) const { return painted("1", text); }
    std::string shade(std::size_t index, const std::string& text) const {
        return painted(fmt::format("38;5;{}", shades[index % shades.size()]), text);
    }

private:
    std::string painted(const std::string& code, const std::string& text) const {
        return hasColour_ && !text.empty() ? fmt::format("\x1B[{}m{}\x1B[0m", code, text) : text;
    }

    bool hasColour_;
};

std::string padded(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? text + std::string(columns - used, ' ') : text;
}

std::string paddedLeft(const std::string& text, std::size_t columns) {
    const auto used = text::columns(text);
    return used < columns ? std::string(columns - used, ' ') + text : text;
}

/// A bar in eighths of a column. What lasted at all shows at least one eighth.
std::string bar(double share) {
    static constexpr std::array<const char*, 8> eighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    const auto units = std::max<long>(1, std::lround(share * barColumns * 8));
    std::string text;
    for (long full = 0; full < units / 8; ++full)
        text += "█";
    return padded(text + eighths[static_cast<std::size_t>(units % 8)], barColumns);
}

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
                        barColumns_ > 0 ? paint_.shade(shade, bar(share)) + "  " : "",
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
        auto sum = fmt::format("{} focused in {} {}, {} {}", Fmt::duration(focused), sessions_.size(),
                               sessions_.size() == 1 ? "session" : "sessions", applications.size(),
                               applications.size() == 1 ? "application" : "applications");
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
