#include "Kestrio/Reports/CSVImporter.h"

#include "Kestrio/Base/ISODates.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kestrio::CSVImporter {
namespace {

/// In the order of `Column`.
constexpr std::array<std::string_view, 9> columnNames{"start",   "end",   "kind", "app",   "bundle_id",
                                                      "project", "title", "url",  "domain"};

SessionKind kind(std::string_view text) {
    const auto name = text::lowercased(text);
    if (name == "watching" || name == "1")
        return SessionKind::watching;
    if (name == "listening" || name == "2")
        return SessionKind::listening;
    return SessionKind::focus;
}

std::optional<Date> date(std::string_view text) {
    return parseISODateTime(text::trimmedOfBlanks(text));
}

} // namespace

ImportError ImportError::notAnExport(std::vector<std::string> missing) {
    const auto description =
        fmt::format("This doesn't look like a Kestrio export (missing column: {}).", fmt::join(missing, ", "));
    return {description, std::move(missing)};
}

Result parse(std::string_view text) {
    Result result;
    Reader reader([&](ActivitySession session) { result.sessions.push_back(std::move(session)); });
    reader.read(text);
    reader.finish();
    result.skipped = reader.skipped();
    return result;
}

std::optional<Reader::Column> Reader::column(std::string_view name) {
    static_assert(columnNames.size() == columnCount);
    const auto* found = std::find(columnNames.begin(), columnNames.end(), name);
    if (found == columnNames.end())
        return std::nullopt;
    return static_cast<Column>(found - columnNames.begin());
}

void Reader::takeField(std::size_t position, std::optional<std::string_view> text) {
    if (isInHeader_)
        return takeColumnName(position, text.value_or(""));
    isBlank_ = position == 0 && text && text->empty();
    if (position >= columns_.size() || !columns_[position])
        return;
    isTooLong_ = isTooLong_ || !text;
    values_[static_cast<std::size_t>(*columns_[position])] = text.value_or("");
}

void Reader::takeColumnName(std::size_t position, std::string_view name) {
    if (const auto known = column(text::lowercased(text::trimmedOfBlanks(name))))
        positions_[static_cast<std::size_t>(*known)] = position; // of a name that comes twice the later one counts
}

void Reader::endRecord() {
    if (isInHeader_)
        return endHeader();
    if (!isBlank_) {
        if (auto found = session())
            takeSession_(std::move(*found));
        else
            ++skipped_;
    }
    clearRecord();
}

void Reader::endHeader() {
    isInHeader_ = false;
    std::vector<std::string> missing;
    for (const auto required : {Column::start, Column::end, Column::bundleID})
        if (!positions_[static_cast<std::size_t>(required)])
            missing.emplace_back(columnNames[static_cast<std::size_t>(required)]);
    if (!missing.empty())
        throw ImportError::notAnExport(std::move(missing));
    for (std::size_t i = 0; i < columnCount; ++i)
        if (const auto position = positions_[i]) {
            columns_.resize(std::max(columns_.size(), *position + 1));
            columns_[*position] = static_cast<Column>(i);
        }
}

std::optional<ActivitySession> Reader::session() const {
    const auto start = date(value(Column::start));
    const auto end = start ? date(value(Column::end)) : std::nullopt;
    if (isTooLong_ || !start || !end || *end <= *start || *end - *start > longestSession ||
        value(Column::bundleID).empty())
        return std::nullopt;

    ActivitySession session;
    session.start = *start;
    session.end = *end;
    session.bundleID = value(Column::bundleID);
    session.appName = value(value(Column::app).empty() ? Column::bundleID : Column::app);
    session.title = value(Column::title);
    session.url = valueOrAbsent(Column::url);
    session.domain = valueOrAbsent(Column::domain);
    if (!session.domain && session.url)
        session.domain = URLTools::domain(*session.url);
    session.project = valueOrAbsent(Column::project);
    session.kind = kind(value(Column::kind));
    return session;
}

std::optional<std::string> Reader::valueOrAbsent(Column column) const {
    const auto& text = value(column);
    return text.empty() ? std::nullopt : std::optional(text);
}

void Reader::clearRecord() {
    for (auto& text : values_)
        text.clear();
    isBlank_ = true;
    isTooLong_ = false;
}

} // namespace kestrio::CSVImporter
