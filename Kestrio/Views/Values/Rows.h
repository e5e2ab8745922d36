// The values of the pages as QML reads them: maps whose keys are the fields' names, lists of such maps, colours and
// choices by name. Texts of this program come in the words of the host, recorded ones as they are. Pure functions.
#pragma once

#include "Kestrio/Pages/CategoryMenu.h"
#include "Kestrio/Pages/DashboardWords.h"
#include "Kestrio/Pages/DateControls.h"
#include "Kestrio/Pages/HistoryNotice.h"
#include "Kestrio/Pages/OverviewPage.h"
#include "Kestrio/Pages/PauseControl.h"
#include "Kestrio/Pages/PermissionBanner.h"
#include "Kestrio/Pages/StateWords.h"
#include "Kestrio/Pages/TimelinePage.h"
#include "Kestrio/Pages/Videos.h"
#include "Kestrio/Views/Values/Shown.h"

namespace kestrio {

/// `kind` says which it is: "app", "symbol", "site", "videoSite" or "thumbnail".
QVariant toVariant(const AppIcon& icon);
QVariant toVariant(const SymbolIcon& icon);
QVariant toVariant(const SiteLetter& icon);
QVariant toVariant(const VideoSiteBadge& icon);
QVariant toVariant(const VideoThumbnail& icon);
QVariant toVariant(const RowIcon& icon);

QVariant toVariant(const EmptyActivity& empty);
QVariant toVariant(const Placeholder& placeholder);
QVariant toVariant(const CardHead& head);
QVariant toVariant(const StatCard& card);
QVariant toVariant(const UsageRow& row);
QVariant toVariant(const UsageItemRow& row);
QVariant toVariant(const AlongsideBadge& badge);
QVariant toVariant(const AlongsideRow& row);
QVariant toVariant(const CategoryPill& pill);
QVariant toVariant(const CategoryMenu::Entry& entry);
QVariant toVariant(const CategoryMenu& menu);
QVariant toVariant(const DetailHeader& header);
QVariant toVariant(const ItemCard& card);
QVariant toVariant(const VideoRow& row);
QVariant toVariant(const TimelineEntryRow& row);
/// Without the entries, which are rows of their own.
QVariant toVariant(const TimelineBlockRow& row);

QVariant toVariant(const ControlButton& button);
QVariant toVariant(const DateControls::Unit& unit);
QVariant toVariant(const DateControls& controls);
QVariant toVariant(const PauseMenu::Entry& entry);
QVariant toVariant(const PauseMenu& menu);
QVariant toVariant(const ResumeButton& button);
/// `kind` is "menu" or "resume".
QVariant toVariant(const PauseControl& control);
QVariant toVariant(const BannerButton& button);
QVariant toVariant(const PermissionBanner& banner);
/// Shaped as the bands about permissions are.
QVariant toVariant(const AgentNotice& notice);
/// The same, with the text as `message` too.
QVariant toVariant(const HistoryNotice& notice);
QVariant toVariant(const StateWords& words);
QVariant toVariant(const ActivityBanner& banner);

/// `rawValue`, `label`, `symbol`.
QVariant toVariant(DashboardSection section);
QVariant toVariant(const SidebarGroup& group);

template <class Value>
QVariantList toVariants(const std::vector<Value>& values) {
    QVariantList list;
    list.reserve(static_cast<qsizetype>(values.size()));
    for (const auto& value : values)
        list.append(toVariant(value));
    return list;
}

/// Invalid, which QML reads as `undefined`, for an absent one.
template <class Value>
QVariant toVariant(const std::optional<Value>& value) {
    return value ? toVariant(*value) : QVariant();
}

template <class Row>
QVariant toVariant(const TopCard<Row>& card) {
    Fields fields;
    fields.add("head", toVariant(card.head)).add("rows", toVariants(card.rows));
    if (card.seeAll)
        fields.add("seeAll", plain(rawValue(*card.seeAll)));
    return fields.words("message", card.message).words("note", card.note);
}

} // namespace kestrio
