// The overview as QML reads it. Everything on it is short, so it is handed over whole with each report.
#pragma once

#include "Kestrio/Views/Window/PageModel.h"

#include <QVariant>

namespace kestrio {

class OverviewModel : public kestrio::ReportPageModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")
    /// `EmptyActivity`; undefined when there is something to show.
    Q_PROPERTY(QVariant empty READ empty NOTIFY refreshed)
    /// `stats`; the cards `apps`, `websites`, `youtube`, `alongside`, `projects`; `activity` and `categories` with
    /// their `head` and `value`, which is for the chart. Empty when there is nothing to show.
    Q_PROPERTY(QVariantMap content READ content NOTIFY refreshed)

public:
    explicit OverviewModel(const WindowParts& parts);

    QVariant empty() const { return empty_; }
    QVariantMap content() const { return content_; }

    Q_INVOKABLE void seeAll(const QString& section) { Q_EMIT navigationRequested(section); }

Q_SIGNALS:
    void refreshed();

protected:
    void refresh() override;

private:
    QVariant empty_;
    QVariantMap content_;
    Subscription settings_;
};

} // namespace kestrio
