#include "Kestrio/Views/Window/DashboardModel.h"

#include "Kestrio/Pages/DashboardWords.h"
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Rows.h"

#include <algorithm>

namespace kestrio {
namespace {

/// How often the words that depend on the present moment are looked at again.
constexpr Seconds wordsInterval{30.0};
constexpr Seconds wordsTolerance{15.0};

constexpr WindowSize defaultSize{1240, 820};

/// The first page that there is, where the one that is wanted is not.
const PageEntry& entryOr(DashboardSection wanted) {
    const auto* const entry = pageEntry(wanted);
    return entry ? *entry : pageTable().front();
}

/// Its sections with the keys that lead to each: Ctrl and its place in the sidebar, the first being 1.
QVariantMap withKeys(QVariantMap group, int& place) {
    auto sections = group["sections"].toList();
    for (auto& section : sections) {
        auto fields = section.toMap();
        fields["keys"] = QStringLiteral("Ctrl+%1").arg(++place);
        section = fields;
    }
    group["sections"] = sections;
    return group;
}

} // namespace

DashboardModel::DashboardModel(const WindowParts& parts) : parts_(parts), showsNow_(parts.dashboard.isCurrent()) {
    lookAtRange();
    lookAtHistory();
    lookAtAgent();
    lookAtPermissions();
    const auto rangeMoved = [this](const auto&) {
        showsNow_ = parts_.dashboard.isCurrent();
        lookAtRange();
    };
    tokens_.push_back(parts.dashboard.mode().observe(rangeMoved));
    tokens_.push_back(parts.dashboard.anchor().observe(rangeMoved));
    const auto historyRead = [this](const auto&) { lookAtHistory(); };
    tokens_.push_back(parts.dashboard.trouble().observe(historyRead));
    tokens_.push_back(parts.dashboard.report().observe(historyRead));
    tokens_.push_back(parts.queue.every({.interval = wordsInterval, .tolerance = wordsTolerance}, [this] {
        followNow();
        lookAtRange();
        lookAtAgent();
    }));
    tokens_.push_back(parts.dashboard.isLoading().observe([this](const auto&) { Q_EMIT isLoadingChanged(); }));

    tokens_.push_back(parts.agent.status().observe([this](const auto&) {
        lookAtAgent();
        lookAtPermissions();
    }));
    tokens_.push_back(parts.agent.presence().observe([this](AgentLink::Presence presence) {
        Q_EMIT agentChanged();
        if (presence == AgentLink::Presence::present)
            parts_.dashboard.reload(); // with what is open there
    }));

    const auto reload = [this] { parts_.dashboard.reload(); };
    tokens_.push_back(parts.agent.observeData(reload));
    tokens_.push_back(parts.classification.categorizer().observe(reload));
    tokens_.push_back(parts.classification.projectRules().observe(reload));

    tokens_.push_back(parts.settings.observe([this](const std::string& key) {
        if (key == settingKey::dismissedBrowserBanner)
            lookAtPermissions();
        else if (key == settingKey::idleMinutes)
            lookAtAgent();
    }));
    if (parts.browserAccess) {
        const auto accessChanged = [this](const auto&) { lookAtPermissions(); };
        tokens_.push_back(parts.browserAccess->permissions().observe(accessChanged));
        tokens_.push_back(parts.browserAccess->stepsLeft().observe(accessChanged));
    }
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
    auto groups = toVariants(listedGroups());
    int place = 0;
    for (auto& group : groups)
        group = withKeys(group.toMap(), place);
    return groups;
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
    lookAtHistory();
}

void DashboardModel::setOnScreen(bool isOnScreen) {
    if (isOnScreen == std::exchange(isOnScreen_, isOnScreen))
        return;
    parts_.dashboard.setOnScreen(isOnScreen);
    if (page_)
        page_->setShown(isOnScreen);
    if (!isOnScreen)
        return;
    parts_.dashboard.reload();
    if (parts_.browserAccess)
        parts_.browserAccess->refresh();
}

void DashboardModel::lookAtRange() {
    const auto& store = parts_.dashboard;
    QVariantMap controls = toVariant(kestrio::dateControls(store.mode().value(), store.anchor().value(),
                                                           parts_.clock.now(), parts_.calendar))
                               .toMap();
    if (controls == dateControls_)
        return;
    dateControls_ = std::move(controls);
    Q_EMIT rangeChanged();
}

/// A person who looks at today, this week or this month goes on doing so when it is over or the clock was set; a range
/// that they went back to stays.
void DashboardModel::followNow() {
    if (showsNow_ && !parts_.dashboard.isCurrent())
        showToday();
}

void DashboardModel::lookAtHistory() {
    const auto& store = parts_.dashboard;
    const auto& trouble = isReportPage() ? store.trouble().value() : std::nullopt;
    const auto& report = store.report().value();
    const bool isAway = trouble && report.sessions.empty() && report.alongsideSessions.empty();
    const auto notice = trouble
                            ? toVariant(kestrio::historyNotice(*trouble, parts_.host.historyFile.string(),
                                                               isAway ? HistoryShown::nothing : HistoryShown::earlier))
                            : QVariant();
    if (notice == historyNotice_ && isAway == isHistoryAway_)
        return;
    historyNotice_ = notice;
    isHistoryAway_ = isAway;
    Q_EMIT historyChanged();
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

void DashboardModel::pickDay(double date) {
    parts_.dashboard.setAnchor(std::min(Date(date), parts_.clock.now()));
}

void DashboardModel::lookAtAgent() {
    if (auto status = currentStatus(); status != status_) {
        status_ = std::move(status);
        Q_EMIT statusChanged();
    }
    // Told on its own: a menu that is open would be made anew.
    auto pauseControl = parts_.agent.status().value() ? toVariant(currentPauseControl()) : QVariant();
    if (pauseControl == pauseControl_)
        return;
    pauseControl_ = std::move(pauseControl);
    Q_EMIT pauseControlChanged();
}

QVariantMap DashboardModel::currentStatus() const {
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

std::optional<PermissionBanner> DashboardModel::currentBanner() const {
    const auto& agent = parts_.agent.status().value();
    if (!agent)
        return std::nullopt;
    const auto* const access = parts_.browserAccess;
    return kestrio::permissionBanner(
        agent->isAccessibilityGranted, parts_.settings.boolean(settingKey::dismissedBrowserBanner),
        access ? access->permissions().value() : std::vector<BrowserPermission>(),
        {.accessibility = advice_, .browsers = access ? access->stepsLeft().value() : BrowserAccess::Steps()});
}

void DashboardModel::lookAtPermissions() {
    auto banner = toVariant(currentBanner());
    if (banner == permissionBanner_)
        return;
    permissionBanner_ = std::move(banner);
    Q_EMIT bannerChanged();
}

void DashboardModel::actOnBanner(const QString& action) {
    const auto banner = currentBanner();
    if (action == QLatin1StringView("grantAccessibility"))
        advice_ = parts_.host.privacyAdvice(Permissions::accessibilityPane);
    else if (action == QLatin1StringView("dismiss"))
        parts_.settings.set(settingKey::dismissedBrowserBanner, true);
    else if (banner && banner->browser && parts_.browserAccess)
        actOnBrowser(action, *banner->browser);
    lookAtPermissions();
}

void DashboardModel::actOnBrowser(const QString& action, const BrowserApp& browser) {
    if (action == QLatin1StringView("openBrowserStep"))
        parts_.browserAccess->openStep(browser);
    else
        parts_.browserAccess->request(browser);
}

void DashboardModel::openAbout() {
    parts_.settings.set(settingKey::settingsTab, std::string(rawText(SettingsTab::about)));
    Q_EMIT settingsRequested();
}

QSize DashboardModel::size() const {
    const auto size = parts_.host.storedSize().value_or(defaultSize);
    return {size.width, size.height};
}

void DashboardModel::rememberSize(const QSize& size) {
    parts_.host.storeSize({size.width(), size.height()});
}

QVariantMap DashboardModel::words() {
    return Fields()
        .words("windowTitle", DashboardWords::windowTitle)
        .words("sidebarName", DashboardWords::sidebarName)
        .words("statusName", DashboardWords::statusName)
        .words("loadingName", DashboardWords::loadingName);
}

} // namespace kestrio
