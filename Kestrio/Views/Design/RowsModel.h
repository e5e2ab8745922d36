// A list of values as a model: the first so many of them, each under the role `row`. When the list is replaced, which
// happens with every fresh report, rows are told of their new value instead of being made again: what has the focus
// keeps it, and nothing flickers. Main thread.
#pragma once

#include <QtCore/QAbstractListModel>
#include <QtCore/QVariantList>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class RowsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariantList rows READ rows WRITE setRows NOTIFY rowsChanged)
    /// How many show at most; negative: all.
    Q_PROPERTY(int limit READ limit WRITE setLimit NOTIFY limitChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    static constexpr int rowRole = Qt::UserRole;

    const QVariantList& rows() const { return rows_; }
    void setRows(const QVariantList& rows);

    int limit() const { return limit_; }
    void setLimit(int limit);

    int count() const { return shown_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void rowsChanged();
    void limitChanged();
    void countChanged();

private:
    void show(int count);

    QVariantList rows_;
    int limit_ = -1;
    int shown_ = 0;
};

} // namespace kestrio
