#include "Kestrio/Views/Window/TimelineModel.h"

#include "Kestrio/Pages/DashboardSection.h"
#include "Kestrio/Views/Values/Rows.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace kestrio {
namespace {

/// Not the block's number: what goes on right now gets another one as soon as it is stored.
std::size_t identity(const TimelineBlock& block) {
    return qHashMulti(0, block.start.seconds(), static_cast<std::int64_t>(block.kind),
                      std::hash<std::string>()(block.bundleID));
}

QStringList list(const std::vector<std::string>& texts) {
    QStringList all;
    for (const auto& text : texts)
        all.append(plain(text));
    return all;
}

QVariant dayValue(const TimelineSection& section) {
    return Fields()
        .words("title", section.title)
        .words("total", section.total)
        .words("totalHelp", TimelineSection::totalHelp);
}

} // namespace

int TimelineRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(places_.size());
}

QHash<int, QByteArray> TimelineRows::roleNames() const {
    return {{kindRole, "kind"}, {valueRole, "value"}, {isOpenRole, "isOpen"}, {dayRole, "day"}};
}

QVariant TimelineRows::data(const QModelIndex& index, int role) const {
    if (!report_ || !index.isValid() || index.row() >= rowCount())
        return {};
    const auto& place = places_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case kindRole: {
        static const QString names[]{QStringLiteral("day"), QStringLiteral("block"), QStringLiteral("entry")};
        return names[static_cast<std::size_t>(place.kind)];
    }
    case valueRole: return value(place);
    case isOpenRole: return place.kind == Kind::block && open_.contains(place.identity);
    case dayRole: return shown(page_.sections[place.section].title);
    default: return {};
    }
}

QVariant TimelineRows::value(const Place& place) const {
    switch (place.kind) {
    case Kind::day: return dayValue(page_.sections[place.section]);
    case Kind::block: return toVariant(blockRow(place.block));
    case Kind::entry: return toVariant(blockRow(place.block).entries[place.entry]);
    }
    return {};
}

const TimelineBlockRow& TimelineRows::blockRow(std::size_t block) const {
    if (!latest_ || latest_->first != block)
        latest_.emplace(block, timelineBlockRow(report_->blocks[block], query_, *calendar_));
    return latest_->second;
}

TimelineRows::Place TimelineRows::blockPlace(std::size_t section, std::size_t block) const {
    return {Kind::block, section, block, 0, identity(report_->blocks[block])};
}

std::vector<TimelineRows::Place> TimelineRows::entryPlaces(const Place& block) const {
    std::vector<Place> places;
    for (std::size_t entry = 0; entry < blockRow(block.block).entries.size(); ++entry)
        places.push_back({Kind::entry, block.section, block.block, entry, qHashMulti(block.identity, entry)});
    return places;
}

std::vector<TimelineRows::Place> TimelineRows::allPlaces() const {
    std::vector<Place> places;
    for (std::size_t section = 0; section < page_.sections.size(); ++section) {
        places.push_back({Kind::day, section, 0, 0, qHash(page_.sections[section].day.seconds())});
        for (const auto block : page_.sections[section].blocks) {
            places.push_back(blockPlace(section, block));
            if (!open_.contains(places.back().identity))
                continue;
            const auto entries = entryPlaces(places.back());
            places.insert(places.end(), entries.begin(), entries.end());
        }
    }
    return places;
}

void TimelineRows::show(std::shared_ptr<const ActivityReport> report, TimelinePage page, std::string query,
                        const Calendar& calendar) {
    report_ = std::move(report);
    calendar_ = &calendar;
    page_ = std::move(page);
    query_ = std::move(query);
    latest_.reset();
    replace(allPlaces());
}

/// What both lists begin and end with stays; new rows come on top for the most part.
void TimelineRows::replace(std::vector<Place> places) {
    const auto same = [](const Place& a, const Place& b) { return a.isSameRow(b); };
    const auto [oldFirst, newFirst] = std::ranges::mismatch(places_, places, same);
    const auto [oldLast, newLast] = std::mismatch(places_.rbegin(), std::make_reverse_iterator(oldFirst),
                                                  places.rbegin(), std::make_reverse_iterator(newFirst), same);
    const auto start = static_cast<int>(oldFirst - places_.begin());
    const auto removed = static_cast<int>(oldLast.base() - oldFirst);
    const auto added = static_cast<int>(newLast.base() - newFirst);
    if (removed == rowCount()) {
        beginResetModel();
        places_ = std::move(places);
        endResetModel();
        return;
    }
    if (removed > 0) {
        beginRemoveRows({}, start, start + removed - 1);
        places_.erase(oldFirst, oldLast.base());
        endRemoveRows();
    }
    if (added > 0)
        beginInsertRows({}, start, start + added - 1);
    places_ = std::move(places);
    if (added > 0)
        endInsertRows();
    Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

int TimelineRows::stopAt(int row, int step) const {
    const auto isDay = [this](int place) { return places_[static_cast<std::size_t>(place)].kind == Kind::day; };
    while (row >= 0 && row < rowCount() && isDay(row))
        row += step;
    return row >= 0 && row < rowCount() ? row : -1;
}

void TimelineRows::toggle(int row) {
    if (!report_ || row < 0 || row >= rowCount() || places_[static_cast<std::size_t>(row)].kind != Kind::block)
        return;
    const auto place = places_[static_cast<std::size_t>(row)];
    const auto entries = entryPlaces(place);
    const auto first = places_.begin() + row + 1;
    const auto count = static_cast<int>(entries.size());
    if (open_.erase(place.identity) == 0) {
        beginInsertRows({}, row + 1, row + count);
        open_.insert(place.identity);
        places_.insert(first, entries.begin(), entries.end());
        endInsertRows();
    } else {
        beginRemoveRows({}, row + 1, row + count);
        places_.erase(first, first + count);
        endRemoveRows();
    }
    Q_EMIT dataChanged(index(row), index(row), {isOpenRole});
}

TimelineModel::TimelineModel(const WindowParts& parts) : ReportPageModel(parts) {}

void TimelineModel::setSearch(const QString& text) {
    if (text == search())
        return;
    search_.text = text.toStdString();
    Q_EMIT searchChanged();
    invalidate();
}

void TimelineModel::setHideBrief(bool hide) {
    if (hide == search_.hideBrief)
        return;
    search_.hideBrief = hide;
    Q_EMIT searchChanged();
    invalidate();
}

QVariantMap TimelineModel::samples() const {
    const auto samples = timelineSamples(parts().calendar);
    return Fields().add("ranges", list(samples.ranges)).add("times", list(samples.times));
}

QVariantMap TimelineModel::words() {
    return Fields()
        .words("listName", label(DashboardSection::timeline))
        .words("prompt", TimelineSearch::prompt)
        .words("hideBriefTitle", TimelineSearch::hideBriefTitle)
        .text("hideBriefSymbol", TimelineSearch::hideBriefSymbol)
        .words("hideBriefHelp", TimelineSearch::hideBriefHelp);
}

void TimelineModel::refresh() {
    auto answer = timelinePage(report(), search_, parts().viewpoint());
    auto* const page = std::get_if<TimelinePage>(&answer);
    empty_ = page ? QVariant() : toVariant(std::get<EmptyActivity>(answer));
    message_ = page && page->message ? plain(*page->message) : QString();
    rows_.show(sharedReport(), page ? std::move(*page) : TimelinePage{}, search_.query(), parts().calendar);
    if (std::exchange(strippedReport_, sharedReport()) != sharedReport())
        strips_ = dayStripsValue(sharedReport(), parts().viewpoint());
    Q_EMIT refreshed();
}

} // namespace kestrio
