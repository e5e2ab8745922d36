// A list of rows of the pages as a model, each under the role `row`. The values stay as they are; what QML reads is
// made of a row when it shows, since a month has thousands of sites. Rows are places in a ranking: when the list is
// replaced, which happens with every fresh report, places are told of their new value instead of being made again, so
// that the list stays where its reader scrolled it.
//
// Belongs to the main thread.
#pragma once

#include "Kestrio/Views/Values/Rows.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>
#include <algorithm>
#include <utility>
#include <vector>

namespace kestrio {

/// What does not depend on the kind of row.
class RowList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to a page.")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    static constexpr int rowRole = Qt::UserRole;

    virtual int count() const = 0;

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count(); }
    QVariant data(const QModelIndex& index, int role) const override {
        const bool isThere = index.isValid() && index.row() < count() && role == rowRole;
        return isThere ? value(static_cast<std::size_t>(index.row())) : QVariant();
    }
    QHash<int, QByteArray> roleNames() const override { return {{rowRole, "row"}}; }

Q_SIGNALS:
    void countChanged();

protected:
    virtual QVariant value(std::size_t place) const = 0;
};

template <class Row>
class ValueRows final : public kestrio::RowList {
public:
    int count() const override { return static_cast<int>(rows_.size()); }
    const std::vector<Row>& rows() const { return rows_; }

    void set(std::vector<Row> rows) {
        const auto before = count();
        const auto after = static_cast<int>(rows.size());
        if (after < before) {
            beginRemoveRows({}, after, before - 1);
            rows_.erase(rows_.begin() + after, rows_.end());
            endRemoveRows();
        }
        if (after > before)
            beginInsertRows({}, before, after - 1);
        const auto replaced = std::exchange(rows_, std::move(rows));
        if (after > before)
            endInsertRows();
        tellOfChanges(replaced);
        if (after != before)
            Q_EMIT countChanged();
    }

protected:
    QVariant value(std::size_t place) const override { return toVariant(rows_[place]); }

private:
    /// One notice for places that stand together.
    void tellOfChanges(const std::vector<Row>& replaced) {
        const auto kept = std::min(replaced.size(), rows_.size());
        for (std::size_t first = 0; first < kept; ++first) {
            auto last = first;
            while (last < kept && !(replaced[last] == rows_[last]))
                ++last;
            if (last > first)
                Q_EMIT dataChanged(index(static_cast<int>(first)), index(static_cast<int>(last - 1)), {rowRole});
            first = last;
        }
    }

    std::vector<Row> rows_;
};

} // namespace kestrio
