#include "Kestrio/Reports/CSVExporter.h"

#include "Kestrio/Base/CSV.h"
#include "Kestrio/Base/ISODates.h"
#include "Kestrio/Base/Text.h"

#include <cmath>
#include <fmt/format.h>

namespace kestrio::CSVExporter {
namespace {

constexpr std::size_t pieceSize = 1 << 16;

std::string dateText(Date date, const Calendar& calendar) {
    return isoDateTime(date, calendar.secondsFromUTC(date));
}

std::string escapeOrEmpty(const std::optional<std::string>& text) {
    return text ? escape(*text) : std::string();
}

} // namespace

std::string escape(std::string_view text) {
    return csvField(text);
}

std::string line(const ClassifiedSession& session, const Calendar& calendar) {
    return fmt::format("{},{},{},{},{},{},{},{},{},{},{}\n", dateText(session.start, calendar),
                       dateText(session.end, calendar), std::llround(session.duration().count()),
                       text::lowercased(label(session.kind)), escape(session.appName), escape(session.bundleID),
                       escape(label(session.category)), escapeOrEmpty(session.project), escape(session.title),
                       escapeOrEmpty(session.url), escapeOrEmpty(session.domain));
}

std::string csv(std::span<const ClassifiedSession> sessions, const Calendar& calendar) {
    std::string text;
    write(sessions, calendar, [&](std::string_view piece) { text += piece; });
    return text;
}

void write(std::span<const ClassifiedSession> sessions, const Calendar& calendar,
           const std::function<void(std::string_view)>& receive) {
    std::string piece(header);
    for (const auto& session : sessions) {
        piece += line(session, calendar);
        if (piece.size() >= pieceSize) {
            receive(piece);
            piece.clear();
        }
    }
    receive(piece);
}

} // namespace kestrio::CSVExporter
