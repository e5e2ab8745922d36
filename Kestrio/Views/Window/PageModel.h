// What every page of the dashboard is bound to: a model that lives as long as its page shows, and works out what it
// says only while somebody can see it.
//
// Belongs to the main queue. The parts outlive it.
//
// Models are derived from bases, and have properties of types, that are named with their namespace: the tools for QML
// find them by that name alone.
#pragma once

#include "Kestrio/Pages/ItemFilter.h"
#include "Kestrio/Views/Window/WindowParts.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class PageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")

public:
    explicit PageModel(const WindowParts& parts) : parts_(parts) {}

    /// Whether somebody can see the page. What changed meanwhile is caught up with.
    void setShown(bool isShown);

Q_SIGNALS:
    /// The page wants another one shown, by its raw text.
    void navigationRequested(const QString& section);

protected:
    const WindowParts& parts() const { return parts_; }

    /// To be called when what the page shows is no longer right: refreshes now, or when the page is seen again.
    void invalidate();

    /// Works out everything anew.
    virtual void refresh() = 0;

private:
    const WindowParts& parts_;
    bool isShown_ = false;
    bool isStale_ = true;
};

/// A page that shows the dashboard's report.
class ReportPageModel : public kestrio::PageModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Pages are made by the dashboard.")

public:
    explicit ReportPageModel(const WindowParts& parts);

protected:
    /// Finds what was typed in the way of the person's language.
    ItemFilter itemFilter(const QString& typed) const {
        return ItemFilter(typed.toStdString(), parts().calendar.locale());
    }

    const ActivityReport& report() const { return parts().dashboard.report().value(); }
    /// The same for whoever holds on to it.
    std::shared_ptr<const ActivityReport> sharedReport() const { return parts().dashboard.report().share(); }

private:
    Subscription changes_;
};

} // namespace kestrio
