// The timeline as QML reads it: one flat list with a row per day, per block, and per entry of the blocks that are open.
// The list keeps places alone; a row's texts are made when it shows, since a month has tens of thousands.
#pragma once

#include "Kestrio/Pages/TimelinePage.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Window/PageModel.h"

#include <QAbstractListModel>
#include <QVariant>
#include <set>

namespace kestrio {

/// The rows alone, for a `ListView`. Belongs to a `TimelineModel`.
class TimelineRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the page.")

public:
    enum Role {
        kindRole = Qt::UserRole, // "day", "block" or "entry"
        valueRole,               // the day's `title`, `total` and `totalHelp`, the block's or the entry's fields
        isOpenRole,              // of a block: whether its entries show
        dayRole,                 // the day's title, of every row
    };

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Rows that were there stay, so that whoever reads them keeps their place, and blocks that were open stay open.
    void show(std::shared_ptr<const ActivityReport> report, TimelinePage page, std::string query,
              const Calendar& calendar);

    /// Opens or closes the block at this row.
    Q_INVOKABLE void toggle(int row);

    /// This row, or where it is the head of a day the nearest other in the direction of `step`, 1 or -1. -1 for none.
    Q_INVOKABLE int stopAt(int row, int step) const;

private:
    enum class Kind { day, block, entry };
    struct Place {
        Kind kind = Kind::day;
        std::size_t section = 0;  // in the page
        std::size_t block = 0;    // in the report
        std::size_t entry = 0;    // among those that the block shows
        std::size_t identity = 0; // what it stays known by when the report is made anew
        bool isSameRow(const Place& other) const { return kind == other.kind && identity == other.identity; }
    };

    std::vector<Place> allPlaces() const;
    Place blockPlace(std::size_t section, std::size_t block) const;
    std::vector<Place> entryPlaces(const Place& block) const;
    void replace(std::vector<Place> places);
    const TimelineBlockRow& blockRow(std::size_t block) const;
    QVariant value(const Place& place) const;

    std::shared_ptr<const ActivityReport> report_;
    const Calendar* calendar_ = nullptr;
    TimelinePage page_;
    std::string query_;
    std::set<std::size_t> open_; // identities of blocks
    std::vector<Place> places_;
    /// The block made last: its entries ask for it one after the other.
    mutable std::optional<std::pair<std::size_t, TimelineBlockRow>> latest_;
};

class TimelineModel : public kestrio::ReportPageModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")
    Q_PROPERTY(QVariant empty READ empty NOTIFY refreshed)
    /// When the search finds nothing.
    Q_PROPERTY(QString message READ message NOTIFY refreshed)
    Q_PROPERTY(kestrio::TimelineRows* rows READ rows CONSTANT)
    /// The strips above the list.
    Q_PROPERTY(kestrio::DayStripsValue strips READ strips NOTIFY refreshed)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(bool hideBrief READ hideBrief WRITE setHideBrief NOTIFY searchChanged)
    /// `ranges` and `times`: the columns of times are as wide as the widest of these.
    Q_PROPERTY(QVariant samples READ samples CONSTANT)
    /// `listName`, `prompt`, `hideBriefTitle`, `hideBriefSymbol`, `hideBriefHelp`.
    Q_PROPERTY(QVariant words READ words CONSTANT)

public:
    explicit TimelineModel(const WindowParts& parts);

    QVariant empty() const { return empty_; }
    QString message() const { return message_; }
    TimelineRows* rows() { return &rows_; }
    const DayStripsValue& strips() const { return strips_; }
    QString search() const { return QString::fromStdString(search_.text); }
    void setSearch(const QString& text);
    bool hideBrief() const { return search_.hideBrief; }
    void setHideBrief(bool hide);
    QVariantMap samples() const;
    static QVariantMap words();

Q_SIGNALS:
    void refreshed();
    void searchChanged();

protected:
    void refresh() override;

private:
    TimelineSearch search_;
    QVariant empty_;
    QString message_;
    TimelineRows rows_;
    DayStripsValue strips_;
    std::shared_ptr<const ActivityReport> strippedReport_; // of which the strips are
};

} // namespace kestrio
