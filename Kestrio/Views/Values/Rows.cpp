#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {
namespace {

Fields iconOfKind(const char* kind) {
    Fields fields;
    fields.text("kind", kind);
    return fields;
}

QString actionName(BannerAction action) {
    switch (action) {
    case BannerAction::grantAccessibility: return QStringLiteral("grantAccessibility");
    case BannerAction::requestBrowserAccess: return QStringLiteral("requestBrowserAccess");
    case BannerAction::openBrowserStep: return QStringLiteral("openBrowserStep");
    case BannerAction::dismiss: break;
    }
    return QStringLiteral("dismiss");
}

} // namespace

QVariant toVariant(const CategoryMenu::Entry& entry) {
    Fields fields;
    fields.words("title", entry.title).add("isCurrent", entry.isCurrent);
    if (entry.category)
        fields.text("category", rawValue(*entry.category));
    return fields;
}

QVariant toVariant(const PauseMenu::Entry& entry) {
    // Without its length: the time until tomorrow is another at each look, and an open menu would be made anew.
    return Fields().words("title", entry.title);
}

QVariant toVariant(const PauseMenu& menu) {
    return Fields()
        .text("kind", "menu")
        .words("title", menu.title)
        .text("symbol", menu.symbol)
        .add("entries", toVariants(menu.entries));
}

QVariant toVariant(const ResumeButton& button) {
    return Fields().text("kind", "resume").words("title", button.title).text("symbol", button.symbol);
}

QVariant toVariant(const DateControls::Unit& unit) {
    return Fields().text("mode", rawValue(unit.mode)).words("title", unit.title).add("isCurrent", unit.isCurrent);
}

QVariant toVariant(const BannerButton& button) {
    return Fields().words("title", button.title).text("symbol", button.symbol).add("action", actionName(button.action));
}

QVariant toVariant(const AppIcon& icon) {
    return iconOfKind("app").text("bundleID", icon.bundleID);
}

QVariant toVariant(const SymbolIcon& icon) {
    return iconOfKind("symbol").text("symbol", icon.symbol);
}

QVariant toVariant(const SiteLetter& icon) {
    const QVariantMap color{
        {"hue", icon.color.hue}, {"saturation", icon.color.saturation}, {"brightness", icon.color.brightness}};
    return iconOfKind("site").text("letter", icon.letter).add("color", color);
}

QVariant toVariant(const VideoSiteBadge& /*icon*/) {
    return iconOfKind("videoSite").text("symbol", VideoSiteBadge::symbol);
}

QVariant toVariant(const VideoThumbnail& icon) {
    return iconOfKind("thumbnail")
        .text("videoID", icon.videoID)
        .text("url", icon.url)
        .text("placeholderSymbol", VideoThumbnail::placeholderSymbol);
}

QVariant toVariant(const RowIcon& icon) {
    return std::visit([](const auto& kind) { return toVariant(kind); }, icon);
}

QVariant toVariant(const EmptyActivity& empty) {
    return Fields().words("title", empty.title).text("symbol", empty.symbol).words("message", empty.message);
}

QVariant toVariant(const Placeholder& placeholder) {
    return Fields().words("title", placeholder.title).text("symbol", placeholder.symbol);
}

QVariant toVariant(const CardHead& head) {
    return Fields().words("title", head.title).text("symbol", head.symbol);
}

QVariant toVariant(const StatCard& card) {
    return Fields()
        .words("title", card.title)
        .text("symbol", card.symbol)
        .words("value", card.value)
        .words("detail", card.detail)
        .add("tint", colorName(card.tint))
        .words("help", card.help);
}

QVariant toVariant(const UsageRow& row) {
    return Fields()
        .text("key", row.key)
        .add("icon", toVariant(row.icon))
        .text("title", row.title)
        .text("subtitle", row.subtitle)
        .words("duration", row.duration)
        .add("fraction", row.fraction)
        .add("tint", colorName(row.tint));
}

QVariant toVariant(const UsageItemRow& row) {
    return Fields()
        .text("id", row.id)
        .text("title", row.title)
        .text("subtitle", row.subtitle)
        .words("detail", row.detail)
        .text("link", row.link)
        .words("duration", row.duration)
        .add("fraction", row.fraction);
}

QVariant toVariant(const AlongsideBadge& badge) {
    return Fields().words("title", badge.title).words("help", badge.help).text("symbol", badge.symbol);
}

QVariant toVariant(const AlongsideRow& row) {
    return Fields()
        .text("id", row.id)
        .add("icon", toVariant(row.icon))
        .text("title", row.title)
        .add("badge", toVariant(row.badge))
        .text("detail", row.detail)
        .words("duration", row.duration)
        .add("fraction", row.fraction);
}

QVariant toVariant(const CategoryPill& pill) {
    return Fields().words("label", pill.label).add("color", colorName(pill.color));
}

QVariant toVariant(const CategoryMenu& menu) {
    return Fields()
        .add("current", toVariant(menu.current))
        .add("entries", toVariants(menu.entries))
        .text("symbol", CategoryMenu::symbol)
        .words("help", CategoryMenu::help)
        .text("currentSymbol", CategoryMenu::currentSymbol);
}

QVariant toVariant(const DetailHeader& header) {
    QStringList stats;
    for (const auto& stat : header.stats)
        stats.append(plain(stat));
    return Fields()
        .add("icon", toVariant(header.icon))
        .text("title", header.title)
        .words("duration", header.duration)
        .words("share", header.share)
        .add("stats", stats)
        .words("note", header.note);
}

QVariant toVariant(const ItemCard& card) {
    return Fields()
        .add("head", toVariant(card.head))
        .add("hasFilter", card.hasFilter)
        .add("initialCount", static_cast<int>(card.initialCount))
        .add("rows", toVariants(card.rows))
        .words("message", card.message);
}

QVariant toVariant(const VideoRow& row) {
    return Fields()
        .text("videoID", row.videoID)
        .text("title", row.title)
        .text("link", row.link)
        .add("thumbnail", toVariant(row.thumbnail))
        .words("badge", row.badge)
        .words("duration", row.duration)
        .words("detail", row.detail)
        .words("alongsideHelp", row.alongsideHelp)
        .text("alongsideSymbol", VideoRow::alongsideSymbol);
}

QVariant toVariant(const TimelineEntryRow& row) {
    return Fields()
        .add("id", QVariant::fromValue(row.id))
        .words("time", row.time)
        .text("title", row.title)
        .words("duration", row.duration);
}

QVariant toVariant(const TimelineBlockRow& row) {
    Fields fields;
    fields.add("id", QVariant::fromValue(row.id))
        .add("icon", toVariant(row.icon))
        .text("headline", row.headline)
        .words("times", row.times)
        .words("duration", row.duration)
        .words("count", row.count)
        .add("category", toVariant(row.category));
    if (row.badge)
        fields.add("badge", toVariant(*row.badge));
    return fields;
}

QVariant toVariant(const ControlButton& button) {
    Fields fields;
    fields.words("title", button.title)
        .text("symbol", button.symbol)
        .words("help", button.help)
        .add("isEnabled", button.isEnabled);
    if (button.key)
        fields.add("keys", "Ctrl+" + QString(QChar::fromLatin1(*button.key).toUpper()));
    return fields;
}

QVariant toVariant(const DateControls& controls) {
    return Fields()
        .words("rangeLabel", DateControls::rangeLabel)
        .words("dateLabel", DateControls::dateLabel)
        .add("units", toVariants(controls.units))
        .add("previous", toVariant(controls.previous))
        .add("next", toVariant(controls.next))
        .add("today", toVariant(controls.today))
        .add("refresh", toVariant(controls.refresh))
        .add("hasDatePicker", controls.hasDatePicker)
        .words("title", controls.title)
        .words("subtitle", controls.subtitle);
}

QVariant toVariant(const PauseControl& control) {
    return std::visit([](const auto& kind) { return toVariant(kind); }, control);
}

QVariant toVariant(const PermissionBanner& banner) {
    return Fields()
        .text("symbol", banner.symbol)
        .add("tint", colorName(banner.tint))
        .words("title", banner.title)
        .words("text", banner.text)
        .add("buttons", toVariants(banner.buttons));
}

QVariant toVariant(const AgentNotice& notice) {
    return Fields()
        .text("symbol", notice.symbol)
        .add("tint", colorName(notice.tint))
        .words("title", notice.title)
        .words("text", notice.text)
        .add("buttons", QVariantList{Fields().words("title", notice.button)});
}

QVariant toVariant(const HistoryNotice& notice) {
    return Fields()
        .text("symbol", notice.symbol)
        .add("tint", colorName(notice.tint))
        .text("title", notice.title)
        .text("text", notice.text) // in which a path stands
        .text("message", notice.text);
}

QVariant toVariant(const StateWords& words) {
    return Fields().words("label", words.label).text("symbol", words.symbol);
}

QVariant toVariant(const ActivityBanner& banner) {
    return Fields().words("headline", banner.headline).words("detail", banner.detail).add("isActive", banner.isActive);
}

QVariant toVariant(DashboardSection section) {
    return Fields().text("rawValue", rawValue(section)).words("label", label(section)).text("symbol", symbol(section));
}

QVariant toVariant(const SidebarGroup& group) {
    return Fields().words("title", group.title).add("sections", toVariants(group.sections));
}

} // namespace kestrio
