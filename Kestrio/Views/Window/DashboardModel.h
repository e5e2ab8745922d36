// The dashboard window's frame as QML reads it: the sidebar, the range and its controls, the state of the recording,
// the bands above the page, and the page that shows. Each page's model is made when its page is picked and goes with
// it.
//
// Belongs to the main queue. The parts outlive it.
#pragma once

#include "Kestrio/Pages/PauseControl.h"
#include "Kestrio/Pages/PermissionBanner.h"
#include "Kestrio/Views/Window/PageTable.h"

#include <QSize>
#include <QUrl>
#include <QVariant>

namespace kestrio {

class DashboardModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program.")
    /// The sidebar: `title` and `sections` of each group, a section with the `keys` that lead to it.
    Q_PROPERTY(QVariantList groups READ groups CONSTANT)
    Q_PROPERTY(QString section READ section NOTIFY pageChanged)
    Q_PROPERTY(QString sectionLabel READ sectionLabel NOTIFY pageChanged)
    Q_PROPERTY(bool isReportPage READ isReportPage NOTIFY pageChanged)
    Q_PROPERTY(kestrio::PageModel* page READ page NOTIFY pageChanged)
    Q_PROPERTY(QUrl pageSource READ pageSource NOTIFY pageChanged)
    Q_PROPERTY(QVariantMap dateControls READ dateControls NOTIFY rangeChanged)
    /// In the range that shows, and the present: seconds since 1970, for the picker of days.
    Q_PROPERTY(double anchor READ anchor NOTIFY rangeChanged)
    Q_PROPERTY(double now READ now NOTIFY rangeChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    /// `label`, `symbol`, `detail`, `isActive`.
    Q_PROPERTY(QVariantMap status READ status NOTIFY statusChanged)
    /// Undefined while no agent runs.
    Q_PROPERTY(QVariant pauseControl READ pauseControl NOTIFY pauseControlChanged)
    /// The bands: `symbol`, `tint`, `title`, `text` and `buttons`. Undefined while there is nothing to say. The first
    /// is about an agent that does not run.
    Q_PROPERTY(QVariant agentNotice READ agentNotice NOTIFY agentChanged)
    /// Undefined while the history can be read; `message` is the text once more.
    Q_PROPERTY(QVariant historyNotice READ historyNotice NOTIFY historyChanged)
    /// Whether the notice stands in place of the page, which has nothing to show then.
    Q_PROPERTY(bool isHistoryAway READ isHistoryAway NOTIFY historyChanged)
    Q_PROPERTY(QVariant permissionBanner READ permissionBanner NOTIFY bannerChanged)
    /// Of the window when it was last closed.
    Q_PROPERTY(QVariant size READ size CONSTANT)
    /// `windowTitle`, `sidebarName`, `statusName`, `loadingName`.
    Q_PROPERTY(QVariant words READ words CONSTANT)

public:
    /// How often the shown range is loaded again while it can change.
    static constexpr Seconds refreshInterval{30.0};

    explicit DashboardModel(const WindowParts& parts);
    ~DashboardModel() override;

    static QVariantList groups();
    QString section() const;
    QString sectionLabel() const;
    bool isReportPage() const;
    PageModel* page() const { return page_.get(); }
    QUrl pageSource() const;
    const QVariantMap& dateControls() const { return dateControls_; }
    double anchor() const { return parts_.dashboard.anchor().value().seconds(); }
    double now() const { return parts_.clock.now().seconds(); }
    bool isLoading() const { return parts_.dashboard.isLoading().value(); }
    const QVariantMap& status() const { return status_; }
    const QVariant& pauseControl() const { return pauseControl_; }
    QVariant agentNotice() const;
    const QVariant& historyNotice() const { return historyNotice_; }
    bool isHistoryAway() const { return isHistoryAway_; }
    const QVariant& permissionBanner() const { return permissionBanner_; }
    QSize size() const;
    static QVariantMap words();

    /// The window comes up, with the page that was asked for by its raw text, else the stored one.
    void open(const std::optional<std::string>& page);

    /// Shows a page by its raw text and remembers it. One that has no page is passed over.
    Q_INVOKABLE void select(const QString& section);
    /// The page so many places down the sidebar, up when negative; stops at the ends.
    Q_INVOKABLE void selectNeighbour(int step);

    Q_INVOKABLE void setMode(const QString& mode);
    Q_INVOKABLE void step(int count);
    Q_INVOKABLE void showToday();
    Q_INVOKABLE void refresh();
    Q_INVOKABLE void pickDay(double date);

    /// Pauses by an entry of the menu.
    Q_INVOKABLE void pause(int entry);
    Q_INVOKABLE void resume();
    Q_INVOKABLE void startAgent();
    /// Does what a button of the band says, by its `action`.
    Q_INVOKABLE void actOnBanner(const QString& action);

    Q_INVOKABLE void openSettings() { Q_EMIT settingsRequested(); }
    Q_INVOKABLE void openAbout();

    Q_INVOKABLE void rememberSize(const QSize& size);

    /// Whether somebody can see the window.
    Q_INVOKABLE void setOnScreen(bool isOnScreen);

Q_SIGNALS:
    void pageChanged();
    void rangeChanged();
    void isLoadingChanged();
    void statusChanged();
    void pauseControlChanged();
    void agentChanged();
    void historyChanged();
    void bannerChanged();
    /// The settings are wanted, at the tab that is stored.
    void settingsRequested();

private:
    QVariantMap currentStatus() const;
    std::optional<PermissionBanner> currentBanner() const;
    void actOnBrowser(const QString& action, const BrowserApp& browser);
    PauseControl currentPauseControl() const;
    void lookAtRange();
    void followNow();
    void lookAtHistory();
    void lookAtAgent();
    void lookAtPermissions();
    void show(const PageEntry& entry);

    const WindowParts& parts_;
    const PageEntry* entry_ = nullptr;
    std::unique_ptr<PageModel> page_;
    bool isOnScreen_ = true;
    bool showsNow_;                     // whether the range was the present one when the person last moved it
    std::optional<std::string> advice_; // what can be done about titles, once the person asked
    // As they were last told, so that nothing is drawn anew which did not change.
    QVariantMap dateControls_;
    QVariantMap status_;
    QVariant pauseControl_;
    QVariant historyNotice_;
    bool isHistoryAway_ = false;
    QVariant permissionBanner_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
