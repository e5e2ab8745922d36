#include "Programs/Agent/HostTray.h"

#include "Kestrio/Drawing/TrayIcons.h"
#include "Kestrio/Shell/HostWords.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Shell/SystemMenuParts.h"

#include <algorithm>
#include <utility>

namespace kestrio {
namespace {

using Kind = TrayMenuEntry::Kind;

/// An entry is known by its text, which stays when the menu around it changes.
TrayMenuEntry trayEntry(const BarMenuEntry& entry) {
    TrayMenuEntry result{entry.action ? Kind::choice : Kind::words, entry.text, hostWords(entry.text), {}};
    for (const auto& below : entry.entries) {
        result.kind = Kind::submenu;
        result.entries.push_back(trayEntry(below));
    }
    return result;
}

std::vector<TrayMenuEntry> trayMenu(const BarMenu& menu) {
    std::vector<TrayMenuEntry> entries;
    for (const auto& group : menu) {
        if (!entries.empty())
            entries.push_back({Kind::separator, {}, {}, {}});
        for (const auto& entry : group)
            entries.push_back(trayEntry(entry));
    }
    return entries;
}

TrayItem::Tip trayTip(const BarTip& tip) {
    return {hostWords(tip.title), hostWords(tip.text)};
}

/// Bars that know no place say 0, 0.
std::optional<ScreenPoint> placeOf(const TrayClick& click) {
    return click.x == 0 && click.y == 0 ? std::nullopt : std::optional(ScreenPoint{click.x, click.y});
}

PanelKind panelOf(const std::string& item) {
    return item == HostTray::systemItem ? PanelKind::system : PanelKind::today;
}

std::vector<std::string> identifiers(const std::vector<SystemInsight>& insights) {
    std::vector<std::string> result;
    for (const auto& insight : insights)
        result.push_back(insight.id);
    return result;
}

} // namespace

HostTray::HostTray(Parts parts) : parts_(std::move(parts)) {
    status_.id = statusItem;
    status_.title = "Kestrio";
    systemShown_.id = systemItem;
    systemShown_.title = "Kestrio: System";
    tokens_.push_back(parts_.settings.observe([this](const std::string& key) { noteSetting(key); }));
    tokens_.push_back(parts_.model.trackingState().observe([this](TrackingState state) { noteState(state); }));
    tokens_.push_back(parts_.model.pausedUntil().observe([this](const auto&) { updateStatus(); }));
    tokens_.push_back(
        parts_.model.queue().every({.interval = timeInterval, .tolerance = timeTolerance}, [this] { lookAtTime(); }));
    tokens_.push_back(parts_.tray.observe(
        [this](const TrayEvent& event) { std::visit([this](const auto& each) { hear(each); }, event); }));
    updateStatus();
    lookAtTime();
}

void HostTray::noteSetting(const std::string& key) {
    if (key == settingKey::showTimeInMenuBar || key == settingKey::showActivityLight)
        updateStatus();
    if (key == settingKey::showSystemMonitor || key == settingKey::systemMenuStyle)
        updateSystem();
}

void HostTray::noteState(TrackingState) {
    updateStatus();
    day_.reset(); // the last session has its end now
    lookAtTime();
}

/// While nothing is recorded the time stands still, until the day changes.
void HostTray::lookAtTime() {
    const auto day = parts_.calendar.day(parts_.model.clock().now());
    if (day_ == day && parts_.model.trackingState().value() != TrackingState::tracking)
        return;
    askForTime(day);
}

void HostTray::askForTime(DateInterval day) {
    day_ = day;
    parts_.timeInFront(day, [weak = std::weak_ptr(self_), day](Seconds time) {
        const auto self = weak.lock();
        if (!self || (*self)->day_ != day)
            return; // gone, or another day by now
        (*self)->activeToday_ = time;
        (*self)->updateStatus();
    });
}

void HostTray::updateStatus() {
    const auto label = menuBarLabel(parts_.model.trackingState().value(), activeToday_,
                                    {.showTime = parts_.settings.boolean(settingKey::showTimeInMenuBar),
                                     .showActivityLight = parts_.settings.boolean(settingKey::showActivityLight)});
    if (statusDrawn_ != label) {
        status_.icon = trayIcon(label);
        statusDrawn_ = label;
    }
    status_.accessibleText = hostWords(label.accessibilityLabel);
    status_.tip = trayTip(statusTip(label, activeToday_));
    status_.menu = trayMenu(menu(statusItem));
    parts_.tray.show(status_);
}

SystemMenuParts HostTray::systemParts() const {
    if (!parts_.settings.boolean(settingKey::showSystemMonitor))
        return systemMenuParts(SystemMenuStyle::hidden);
    return systemMenuParts(choice<SystemMenuStyle>(parts_.settings, settingKey::systemMenuStyle));
}

bool HostTray::isSystemIconShown() const {
    return systemParts() != systemMenuParts(SystemMenuStyle::hidden) && parts_.tray.isShown();
}

void HostTray::showSystem(const SystemMonitor::State& state) {
    system_ = state;
    updateSystem();
}

void HostTray::updateSystem() {
    const double cpu = system_.snapshot ? system_.snapshot->cpu : 0;
    const auto label = systemMenuLabel(systemParts(), cpu, system_.insights);
    if (label.isHidden() || !system_.snapshot) {
        if (std::exchange(isSystemIn_, false))
            parts_.tray.remove(systemItem);
        return;
    }
    if (systemDrawn_ != label) {
        systemShown_.icon = trayIcon(label);
        systemDrawn_ = label;
    }
    const auto tip = systemTip(cpu, system_.insights);
    systemShown_.tip = trayTip(tip);
    systemShown_.accessibleText = hostWords(tip.title);
    // Figures within the words change all the time; bars that keep a menu ask for them as they open it.
    if (auto listed = identifiers(system_.insights); !isSystemIn_ || listed != insightsListed_) {
        insightsListed_ = std::move(listed);
        systemShown_.menu = trayMenu(menu(systemItem));
    }
    isSystemIn_ = true;
    parts_.tray.show(systemShown_);
}

BarMenu HostTray::menu(const std::string& item) const {
    if (item == systemItem)
        return systemMenu(system_.insights);
    return statusMenu(parts_.model.trackingState().value(), parts_.model.pausedUntil().value(),
                      {parts_.model.clock().now(), parts_.calendar});
}

void HostTray::hear(const TrayClick& click) {
    if (click.button != TrayClick::Button::secondary)
        return parts_.open(PanelRequest{panelOf(click.item), placeOf(click)}, click.activationToken);
    const bool isSystem = click.item == systemItem;
    perform(ShowDashboard{isSystem ? std::optional(DashboardSection::performance) : std::nullopt}, click.item,
            click.activationToken);
}

void HostTray::hear(const TrayChoice& choice) {
    // By the menu of this moment: what was chosen may be gone, and the time until tomorrow is another.
    if (const auto action = actionOf(menu(choice.item), choice.entry))
        perform(*action, choice.item, choice.activationToken);
}

void HostTray::hear(const TrayMenuOpening& opening) {
    auto& item = opening.item == systemItem ? systemShown_ : status_;
    item.menu = trayMenu(menu(opening.item));
    parts_.tray.show(item);
}

void HostTray::perform(const BarAction& action, const std::string& item, const std::string& activationToken) {
    struct Doing {
        const Parts& parts;
        const std::string& item;
        const std::string& token;

        void operator()(const ShowPanel&) const { parts.open(PanelRequest{panelOf(item), std::nullopt}, token); }
        void operator()(const ShowDashboard& asked) const {
            parts.open(DashboardRequest{asked.page ? std::optional(std::string(rawValue(*asked.page))) : std::nullopt},
                       token);
        }
        void operator()(const ShowSettings&) const { parts.open(SettingsRequest{}, token); }
        void operator()(const PauseTracking& asked) const { parts.model.pause(asked.length); }
        void operator()(const ResumeTracking&) const { parts.model.resume(); }
        void operator()(const QuitProgram&) const { parts.quit(); }
    };
    std::visit(Doing{parts_, item, activationToken}, action);
}

} // namespace kestrio
