#include "Kestrio/Views/Design/RowsModel.h"

#include <algorithm>
#include <utility>

namespace kestrio {
namespace {

int shownOf(const QVariantList& rows, int limit) {
    const int all = static_cast<int>(rows.size());
    return limit < 0 ? all : std::min(limit, all);
}

} // namespace

void RowsModel::setRows(const QVariantList& rows) {
    if (rows_ == rows)
        return;
    const QVariantList before = std::exchange(rows_, rows);
    const int staying = std::min(shown_, shownOf(rows_, limit_));
    show(shownOf(rows_, limit_));
    for (int i = 0; i < staying; ++i)
        if (before[i] != rows_[i])
            Q_EMIT dataChanged(index(i), index(i), {rowRole});
    Q_EMIT rowsChanged();
}

void RowsModel::setLimit(int limit) {
    if (limit_ == limit)
        return;
    limit_ = limit;
    show(shownOf(rows_, limit_));
    Q_EMIT limitChanged();
}

void RowsModel::show(int count) {
    if (count == shown_)
        return;
    if (count > shown_) {
        beginInsertRows({}, shown_, count - 1);
        shown_ = count;
        endInsertRows();
    } else {
        beginRemoveRows({}, count, shown_ - 1);
        shown_ = count;
        endRemoveRows();
    }
    Q_EMIT countChanged();
}

int RowsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_;
}

QVariant RowsModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid) || role != rowRole)
        return {};
    return rows_[index.row()];
}

QHash<int, QByteArray> RowsModel::roleNames() const {
    return {{rowRole, "row"}};
}

} // namespace kestrio
