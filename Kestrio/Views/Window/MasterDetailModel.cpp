#include "Kestrio/Views/Window/MasterDetailModel.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Views/Charts/ChartValues.h"

namespace kestrio {

void MasterDetailModel::refresh() {
    refreshList();
    refreshDetail();
}

void MasterDetailModel::refreshList() {
    auto made = list(itemFilter(listFilter_));
    empty_ = toVariant(made.empty);
    message_ = made.message ? shown(*made.message) : QString();
    rows_.set(std::move(made.rows));
    findSelection();
    Q_EMIT refreshed();
}

void MasterDetailModel::refreshDetail() {
    auto made = selection_.isEmpty() ? std::nullopt : detailOf(selectedKey(), itemFilter(filter_));
    if (!made)
        clearFilter();
    setTrend(made ? std::move(made->trend) : UsageTrend());
    setDetail(made ? QVariant(made->fields) : QVariant());
}

/// The pane goes with what it tells of, and the next one's field is empty.
void MasterDetailModel::clearFilter() {
    if (std::exchange(filter_, {}).isEmpty())
        return;
    Q_EMIT filterChanged();
}

/// Whoever reads what has not changed is not disturbed.
void MasterDetailModel::setDetail(QVariant detail) {
    if (detail == detail_)
        return;
    detail_ = std::move(detail);
    Q_EMIT detailChanged();
}

void MasterDetailModel::setTrend(UsageTrend trend) {
    if (trend == trend_)
        return;
    trend_ = std::move(trend);
    trendValue_ = toVariant(trend_);
    Q_EMIT trendChanged();
}

void MasterDetailModel::findSelection() {
    const auto found = std::ranges::find(rows_.rows(), selectedKey(), &UsageRow::key);
    const int place =
        found == rows_.rows().end() || selection_.isEmpty() ? -1 : static_cast<int>(found - rows_.rows().begin());
    if (std::exchange(selectedPlace_, place) != place)
        Q_EMIT selectedPlaceChanged();
}

void MasterDetailModel::setListFilter(const QString& typed) {
    if (typed == listFilter_)
        return;
    listFilter_ = typed;
    Q_EMIT listFilterChanged();
    refreshList();
}

void MasterDetailModel::select(const QString& key) {
    if (key == selection_)
        return;
    selection_ = key;
    clearFilter();
    setDetail({}); // so that the pane of the new one is made anew, with nothing of the old one in it
    Q_EMIT selectionChanged();
    findSelection();
    refreshDetail();
}

void MasterDetailModel::selectPlace(int place) {
    if (place >= 0 && place < rows_.count())
        select(plain(rows_.rows()[static_cast<std::size_t>(place)].key));
}

int MasterDetailModel::placeBeginning(const QString& typed) const {
    const auto fold = [](std::string_view text) { return text::folded(text, text::Ignoring::caseAndDiacritics); };
    const auto beginning = fold(typed.toStdString());
    const int first = std::max(0, typed.size() > 1 ? selectedPlace_ : selectedPlace_ + 1);
    for (int step = 0; step < rows_.count(); ++step) {
        const int place = (first + step) % rows_.count();
        if (fold(rows_.rows()[static_cast<std::size_t>(place)].title).starts_with(beginning))
            return place;
    }
    return -1;
}

void MasterDetailModel::setFilter(const QString& typed) {
    if (typed == filter_)
        return;
    filter_ = typed;
    Q_EMIT filterChanged();
    refreshDetail();
}

} // namespace kestrio
