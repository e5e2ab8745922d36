#include "Kestrio/Views/Window/DashboardModel.h"

#include "Kestrio/Pages/CreditLine.h"
#include "Kestrio/Pages/DashboardWords.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Rows.h"

#include <algorithm>

namespace kestrio {
namespace {

/// How often the words that depend on the present moment are looked at again.
constexpr Seconds wordsInterval{30.0};
constexpr Seconds wordsTolerance{15.0};

QVariant toVariant(const AgentNotice& notice) {
    return Fields()
        .text("symbol", notice.symbol)
        .words("title", notice.title)
        .words("text", notice.text)
        .words("button", notice.button);
}

QDate dateOf(Date moment, const Calendar& calendar) {
    const auto parts = calendar.components(moment);
    return {parts.year, parts.month, parts.day};
}

/// The first page that there is, where the one that is wanted is not.
const PageEntry& entryOr(DashboardSection wanted) {
    const auto* const entry = pageEntry(wanted);
    return entry ? *entry : pageTable().front();
}

} // namespace

DashboardModel::DashboardModel(const WindowParts& parts) : parts_(parts) {
    const auto rangeMoved = [this](const auto&) { Q_EMIT rangeChanged(); };
    tokens_.push_back(parts.dashboard.mode().observe(rangeMoved));
    tokens_.push_back(parts.dashboard.anchor().observe(rangeMoved));
    tokens_.push_back(parts.dashboard.isLoading().observe([this](const auto&) { Q_EMIT isLoadingChanged(); }));
    tokens_.push_back(
        parts.queue.every({.interval = wordsInterval, .tolerance = wordsTolerance}, [this] { Q_EMIT rangeChanged(); }));

    tokens_.push_back(parts.agent.status().observe([this](const auto&) {
        Q_EMIT statusChanged();
        Q_EMIT bannerChanged();
    }));
    tokens_.push_back(parts.agent.presence().observe([this](AgentLink::Presence presence) {
        Q_EMIT statusChanged();
        if (presence == AgentLink::Presence::present)
            parts_.dashboard.reload(); // with what is open there
    }));
    tokens_.push_back(parts.agent.observeData([this] { parts_.dashboard.reload(); }));
    const auto classified = [this] { parts_.dashboard.reload(); };
    tokens_.push_back(parts.classification.categorizer().observe(classified));
    tokens_.push_back(parts.classification.projectRules().observe(classified));

    tokens_.push_back(parts.settings.observe([this](const std::string& key) {
        if (key == settingKey::dismissedBrowserBanner)
            Q_EMIT bannerChanged();
        else if (key == settingKey::idleMinutes)
            Q_EMIT statusChanged();
    }));
    if (parts.browserAccess)
        tokens_.push_back(parts.browserAccess->permissions().observe([this](const auto&) { Q_EMIT bannerChanged(); }));
}

DashboardModel::~DashboardModel() = default;

void DashboardModel::open(const std::optional<std::string>& page) {
    const auto requested = page ? dashboardSection(*page) : std::nullopt;
    show(entryOr(openingSection(requested, parts_.settings.get<std::string>(settingKey::dashboardSection))));
    parts_.dashboard.reload();
    parts_.dashboard.startAutoRefresh(refreshInterval);
    if (parts_.browserAccess)
        parts_.browserAccess->refresh();
}

QVariantList DashboardModel::groups() {
    return toVariants(listedGroups());
}

QString DashboardModel::section() const {
    return entry_ ? plain(rawValue(entry_->section)) : QString();
}

QString DashboardModel::sectionLabel() const {
    return entry_ ? shown(label(entry_->section)) : QString();
}

bool DashboardModel::isReportPage() const {
    return entry_ && kestrio::isReportPage(entry_->section);
}

QUrl DashboardModel::pageSource() const {
    return entry_ ? QUrl(QStringLiteral("qrc:/qt/qml/Kestrio/Window/Pages/%1.qml").arg(QLatin1StringView(entry_->file)))
                  : QUrl();
}

void DashboardModel::select(const QString& section) {
    const auto known = dashboardSection(section.toStdString());
    const auto* const entry = known ? pageEntry(*known) : nullptr;
    if (!entry || entry == entry_)
        return;
    parts_.settings.set(settingKey::dashboardSection, section.toStdString());
    show(*entry);
}

void DashboardModel::selectNeighbour(int step) {
    const auto& table = pageTable();
    const auto last = std::ssize(table) - 1;
    const auto next = std::clamp<std::ptrdiff_t>((entry_ - table.data()) + step, 0, last);
    select(plain(rawValue(table[static_cast<std::size_t>(next)].section)));
}

void DashboardModel::show(const PageEntry& entry) {
    // The page's items read their model until they are gone, which is later than the signal.
    if (auto* const left = page_.release())
        left->deleteLater();
    entry_ = &entry;
    page_ = entry.makeModel(parts_);
    connect(page_.get(), &PageModel::navigationRequested, this, &DashboardModel::select);
    page_->setShown(isOnScreen_);
    Q_EMIT pageChanged();
}

void DashboardModel::setOnScreen(bool isOnScreen) {
    if (isOnScreen == std::exchange(isOnScreen_, isOnScreen))
        return;
    parts_.dashboard.setOnScreen(isOnScreen);
    if (page_)
        page_->setShown(isOnScreen);
    if (isOnScreen)
        parts_.dashboard.reload();
}

QVariantMap DashboardModel::dateControls() const {
    const auto& store = parts_.dashboard;
    return toVariant(
               kestrio::dateControls(store.mode().value(), store.anchor().value(), parts_.clock.now(), parts_.calendar))
        .toMap();
}

QDate DashboardModel::day() const {
    return dateOf(parts_.dashboard.anchor().value(), parts_.calendar);
}

QDate DashboardModel::lastDay() const {
    return dateOf(parts_.clock.now(), parts_.calendar);
}

void DashboardModel::setMode(const QString& mode) {
    if (const auto known = rangeMode(mode.toStdString()))
        parts_.dashboard.setMode(*known);
}

void DashboardModel::step(int count) {
    parts_.dashboard.step(count);
}

void DashboardModel::showToday() {
    parts_.dashboard.setAnchor(parts_.clock.now());
}

void DashboardModel::refresh() {
    parts_.dashboard.reload();
}

void DashboardModel::pickDay(const QDate& day) {
    if (!day.isValid())
        return;
    const auto moment = parts_.calendar.date(day.year(), day.month(), day.day());
    parts_.dashboard.setAnchor(std::min(moment, parts_.clock.now()));
}

QVariantMap DashboardModel::status() const {
    const auto& agent = parts_.agent.status().value();
    if (!agent)
        return toVariant(agentAbsentWords()).toMap();
    auto map = toVariant(stateWords(agent->state)).toMap();
    const auto limit =
        std::chrono::minutes(std::max<std::int64_t>(1, parts_.settings.integer(settingKey::idleMinutes)));
    const auto app = agent->live ? std::optional(agent->live->sample.appName) : std::nullopt;
    const auto banner = activityBanner(agent->state, agent->pausedUntil, app, limit, parts_.calendar);
    map.insert(QStringLiteral("detail"), shown(banner.detail));
    map.insert(QStringLiteral("isActive"), banner.isActive);
    return map;
}

PauseControl DashboardModel::currentPauseControl() const {
    const auto& agent = parts_.agent.status().value();
    return kestrio::pauseControl(agent ? agent->state : TrackingState::tracking,
                                 agent ? agent->pausedUntil : std::nullopt, parts_.viewpoint());
}

QVariant DashboardModel::pauseControl() const {
    return parts_.agent.status().value() ? toVariant(currentPauseControl()) : QVariant();
}

QVariant DashboardModel::agentNotice() const {
    const bool isAbsent = parts_.agent.presence().value() == AgentLink::Presence::absent;
    return isAbsent ? toVariant(kestrio::agentNotice()) : QVariant();
}

void DashboardModel::pause(int entry) {
    const auto control = currentPauseControl();
    const auto* const menu = std::get_if<PauseMenu>(&control);
    if (!menu || entry < 0 || entry >= std::ssize(menu->entries))
        return;
    parts_.agent.ask([length = menu->entries[static_cast<std::size_t>(entry)].length](
                         Background& agent) { return agent.pause(length); },
                     [](const auto&) {});
}

void DashboardModel::resume() {
    parts_.agent.ask([](Background& agent) { return agent.resume(); }, [](const auto&) {});
}

void DashboardModel::startAgent() {
    parts_.host.startAgent();
}

std::optional<PermissionBanner> DashboardModel::banner() const {
    const auto& agent = parts_.agent.status().value();
    if (!agent)
        return std::nullopt;
    static const std::vector<BrowserPermission> none;
    return kestrio::permissionBanner(agent->isAccessibilityGranted,
                                     parts_.settings.boolean(settingKey::dismissedBrowserBanner),
                                     parts_.browserAccess ? parts_.browserAccess->permissions().value() : none);
}

QVariant DashboardModel::permissionBanner() const {
    return toVariant(banner());
}

void DashboardModel::actOnBanner(const QString& action) {
    const auto shownBanner = banner();
    if (action == QLatin1StringView("grantAccessibility"))
        parts_.host.grantAccessibility();
    else if (action == QLatin1StringView("dismiss"))
        parts_.settings.set(settingKey::dismissedBrowserBanner, true);
    else if (shownBanner && shownBanner->browser && parts_.browserAccess)
        parts_.browserAccess->request(*shownBanner->browser);
}

QVariantMap DashboardModel::creditLine() {
    return Fields()
        .words("aboutTitle", CreditLine::aboutTitle)
        .words("credit", CreditLine::credit)
        .text("link", CreditLine::link);
}

QVariantMap DashboardModel::words() {
    return Fields()
        .words("windowTitle", DashboardWords::windowTitle)
        .words("sidebarName", DashboardWords::sidebarName)
        .words("statusName", DashboardWords::statusName)
        .words("loadingName", DashboardWords::loadingName);
}

} // namespace kestrio
