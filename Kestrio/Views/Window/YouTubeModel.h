// What was watched on the video site, as QML reads it. The list of videos is whole and shown in portions.
#pragma once

#include "Kestrio/Pages/ExpandableList.h"
#include "Kestrio/Pages/YouTubePage.h"
#include "Kestrio/Views/Window/PageModel.h"
#include "Kestrio/Views/Window/ValueRows.h"

#include <QVariant>

namespace kestrio {

class YouTubeModel final : public kestrio::ReportPageModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")
    /// `EmptyActivity`; undefined when there is something to show.
    Q_PROPERTY(QVariant empty READ empty NOTIFY refreshed)
    Q_PROPERTY(QVariantList stats READ stats NOTIFY refreshed)
    Q_PROPERTY(QVariant videosHead READ videosHead NOTIFY refreshed)
    Q_PROPERTY(kestrio::RowList* videos READ videos CONSTANT)
    /// Of the button below the videos; empty when all show.
    Q_PROPERTY(QString moreTitle READ moreTitle NOTIFY refreshed)
    /// In place of the videos.
    Q_PROPERTY(QString message READ message NOTIFY refreshed)
    /// `ItemCard`; undefined without searches.
    Q_PROPERTY(QVariant searches READ searches NOTIFY refreshed)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY choiceChanged)
    Q_PROPERTY(QString sortTitle READ sortTitle CONSTANT)
    /// The orders as a menu lists them: each `title` and `isCurrent`.
    Q_PROPERTY(QVariantList sorts READ sorts NOTIFY choiceChanged)
    /// The present one's title.
    Q_PROPERTY(QString sort READ sort NOTIFY choiceChanged)

public:
    explicit YouTubeModel(const WindowParts& parts);

    QVariant empty() const { return empty_; }
    QVariantList stats() const { return stats_; }
    QVariant videosHead() const { return videosHead_; }
    RowList* videos() { return &videos_; }
    QString moreTitle() const;
    QString message() const { return message_; }
    QVariant searches() const { return searches_; }
    QString filter() const { return filter_; }
    void setFilter(const QString& typed);
    static QString sortTitle();
    QVariantList sorts() const;
    QString sort() const;

    /// The order at this place of the menu; a place that is none changes nothing.
    Q_INVOKABLE void sortBy(int place);
    Q_INVOKABLE void showMore();

Q_SIGNALS:
    void refreshed();
    void choiceChanged();

protected:
    void refresh() override;

private:
    void showPortion();

    QVariant empty_;
    QVariantList stats_;
    QVariant videosHead_;
    std::vector<VideoRow> all_;
    ExpandableList portion_{YouTubePage::initialVideos};
    ValueRows<VideoRow> videos_;
    QString message_;
    QVariant searches_;
    QString filter_;
    VideoSort sort_ = VideoSort::watchTime;
    Subscription settings_;
};

} // namespace kestrio
