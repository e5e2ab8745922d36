// The words and symbols that the components themselves carry, from the pages' constants: the singleton `Words`.
#pragma once

#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/CreditLine.h"
#include "Kestrio/Pages/Icons.h"
#include "Kestrio/Pages/ItemFilter.h"
#include "Kestrio/Pages/MonthGrid.h"
#include "Kestrio/Pages/Rows.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class Words : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString seeAll MEMBER seeAll CONSTANT)
    Q_PROPERTY(QString seeAllSymbol MEMBER seeAllSymbol CONSTANT)
    Q_PROPERTY(QString openLink MEMBER openLink CONSTANT)
    Q_PROPERTY(QString openLinkSymbol MEMBER openLinkSymbol CONSTANT)
    Q_PROPERTY(QString chartNoteSymbol MEMBER chartNoteSymbol CONSTANT)
    Q_PROPERTY(QString filterPrompt MEMBER filterPrompt CONSTANT)
    Q_PROPERTY(QString filterSymbol MEMBER filterSymbol CONSTANT)
    Q_PROPERTY(QString clearFilter MEMBER clearFilter CONSTANT)
    Q_PROPERTY(QString clearFilterSymbol MEMBER clearFilterSymbol CONSTANT)
    Q_PROPERTY(QString changeCategory MEMBER changeCategory CONSTANT)
    Q_PROPERTY(QString menuSymbol MEMBER menuSymbol CONSTANT)
    Q_PROPERTY(QString currentSymbol MEMBER currentSymbol CONSTANT)
    Q_PROPERTY(QString missingAppSymbol MEMBER missingAppSymbol CONSTANT)
    Q_PROPERTY(QString videoSiteSymbol MEMBER videoSiteSymbol CONSTANT)
    Q_PROPERTY(QString thumbnailSymbol MEMBER thumbnailSymbol CONSTANT)
    Q_PROPERTY(QString previousMonth MEMBER previousMonth CONSTANT)
    Q_PROPERTY(QString previousMonthSymbol MEMBER previousMonthSymbol CONSTANT)
    Q_PROPERTY(QString nextMonth MEMBER nextMonth CONSTANT)
    Q_PROPERTY(QString nextMonthSymbol MEMBER nextMonthSymbol CONSTANT)
    Q_PROPERTY(QString opened MEMBER opened CONSTANT)
    Q_PROPERTY(QString closed MEMBER closed CONSTANT)
    Q_PROPERTY(QString about MEMBER about CONSTANT)
    Q_PROPERTY(QString credit MEMBER credit CONSTANT)
    Q_PROPERTY(QString creditLink MEMBER creditLink CONSTANT)

private:
    const QString seeAll = SeeAllButton::title;
    const QString seeAllSymbol = SeeAllButton::symbol;
    const QString openLink = OpenLinkButton::title;
    const QString openLinkSymbol = OpenLinkButton::symbol;
    const QString chartNoteSymbol = ChartNote::symbol;
    const QString filterPrompt = ItemFilter::prompt;
    const QString filterSymbol = ItemFilter::symbol;
    const QString clearFilter = ItemFilter::clearTitle;
    const QString clearFilterSymbol = ItemFilter::clearSymbol;
    const QString changeCategory = CategoryMenu::help;
    const QString menuSymbol = CategoryMenu::symbol;
    const QString currentSymbol = CategoryMenu::currentSymbol;
    const QString missingAppSymbol = AppIcon::missingSymbol;
    const QString videoSiteSymbol = VideoSiteBadge::symbol;
    const QString thumbnailSymbol = VideoThumbnail::placeholderSymbol;
    const QString previousMonth = MonthGrid::previousTitle;
    const QString previousMonthSymbol = MonthGrid::previousSymbol;
    const QString nextMonth = MonthGrid::nextTitle;
    const QString nextMonthSymbol = MonthGrid::nextSymbol;
    const QString opened = Disclosure::opened;
    const QString closed = Disclosure::closed;
    const QString about = CreditLine::aboutTitle;
    const QString credit = CreditLine::credit;
    const QString creditLink = CreditLine::link;
};

} // namespace kestrio
