// A page with a list at the left and what is told of the selected row at the right: the selection, both filters, and
// the two halves as QML reads them. What the halves are made of is each page's own.
//
// Selection and filters last as long as the page's view. The detail's filter starts empty with each new pane. A
// selected row that a later report does not have leaves the placeholder, and is back with the next report that has it.
#pragma once

#include "Kestrio/Pages/Rows.h"
#include "Kestrio/Pages/UsageTrend.h"
#include "Kestrio/Views/Window/PageModel.h"
#include "Kestrio/Views/Window/ValueRows.h"

#include <QVariant>

namespace kestrio {

class MasterDetailModel : public kestrio::ReportPageModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")
    /// `EmptyActivity`; undefined when there is something to show.
    Q_PROPERTY(QVariant empty READ empty NOTIFY refreshed)
    Q_PROPERTY(kestrio::RowList* rows READ rows CONSTANT)
    /// What the rows are, in a word.
    Q_PROPERTY(QString listName READ listName CONSTANT)
    /// In place of the rows, when the list's filter leaves nothing.
    Q_PROPERTY(QString message READ message NOTIFY refreshed)
    Q_PROPERTY(QString listFilter READ listFilter WRITE setListFilter NOTIFY listFilterChanged)
    /// What stands beside the list while nothing is selected.
    Q_PROPERTY(QVariant placeholder READ placeholder CONSTANT)
    /// The selected row's `key`; empty for none.
    Q_PROPERTY(QString selection READ selection WRITE select NOTIFY selectionChanged)
    /// The selected row's place in the list; -1 when it has none.
    Q_PROPERTY(int selectedPlace READ selectedPlace NOTIFY selectedPlaceChanged)
    /// Undefined when the report does not have what is selected.
    Q_PROPERTY(QVariant detail READ detail NOTIFY detailChanged)
    /// When what is selected was used: the value of a chart.
    Q_PROPERTY(QVariant trend READ trend NOTIFY trendChanged)
    /// The head of that chart's card.
    Q_PROPERTY(QVariant trendHead READ trendHead CONSTANT)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)

public:
    explicit MasterDetailModel(const WindowParts& parts) : ReportPageModel(parts) {}

    QVariant empty() const { return empty_; }
    RowList* rows() { return &rows_; }
    QString listName() const { return shown(label(section())); }
    QString message() const { return message_; }
    QString listFilter() const { return listFilter_; }
    void setListFilter(const QString& typed);
    QVariant placeholder() const { return toVariant(nothingSelected()); }
    QString selection() const { return selection_; }
    void select(const QString& key);
    int selectedPlace() const { return selectedPlace_; }
    QVariant detail() const { return detail_; }
    QVariant trend() const { return trendValue_; }
    static QVariant trendHead() { return toVariant(CardHead{UsageTrend::title, UsageTrend::symbol}); }
    QString filter() const { return filter_; }
    void setFilter(const QString& typed);

    /// Selects the row at this place of the list; nothing happens where there is none.
    Q_INVOKABLE void selectPlace(int place);

    /// The place of a row whose title begins with what was typed, without regard to case and accents: the selected one
    /// or the next one after it, after the last one again the first. A single character always leads on. -1 for none.
    Q_INVOKABLE int placeBeginning(const QString& typed) const;

Q_SIGNALS:
    void refreshed();
    void listFilterChanged();
    void selectionChanged();
    void selectedPlaceChanged();
    void detailChanged();
    void trendChanged();
    void filterChanged();

protected:
    struct List {
        std::optional<EmptyActivity> empty = {};
        std::vector<UsageRow> rows = {};
        std::optional<std::string> message = {};
    };
    struct Detail {
        QVariantMap fields;
        UsageTrend trend;
    };
    virtual DashboardSection section() const = 0;
    virtual List list(const ItemFilter& filter) const = 0;
    virtual Placeholder nothingSelected() const = 0;
    /// Absent when the report does not have what is selected.
    virtual std::optional<Detail> detailOf(const std::string& key, const ItemFilter& filter) const = 0;

    std::string selectedKey() const { return selection_.toStdString(); }
    void refresh() override;

private:
    void refreshList();
    void refreshDetail();
    void clearFilter();
    void findSelection();
    void setDetail(QVariant detail);
    void setTrend(UsageTrend trend);

    QVariant empty_;
    ValueRows<UsageRow> rows_;
    QString message_;
    QString listFilter_;
    QString selection_;
    int selectedPlace_ = -1;
    QVariant detail_;
    UsageTrend trend_;
    QVariant trendValue_;
    QString filter_;
};

} // namespace kestrio
