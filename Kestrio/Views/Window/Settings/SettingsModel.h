// The settings window's frame as QML reads it: its tabs and the one that shows. Each tab's model is made when its tab
// is picked and goes with it.
//
// Belongs to the main queue. The parts outlive it.
#pragma once

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

#include <QUrl>

namespace kestrio {

class SettingsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program.")
    /// Each with `rawValue`, `label` and `symbol`.
    Q_PROPERTY(QVariantList tabs READ tabs CONSTANT)
    Q_PROPERTY(QString tab READ tab NOTIFY tabChanged)
    Q_PROPERTY(QString tabLabel READ tabLabel NOTIFY tabChanged)
    Q_PROPERTY(kestrio::SettingsTabModel* tabModel READ tabModel NOTIFY tabChanged)
    Q_PROPERTY(QUrl tabSource READ tabSource NOTIFY tabChanged)
    /// As the dashboard has it: undefined while an agent runs.
    Q_PROPERTY(QVariant agentNotice READ agentNotice NOTIFY agentChanged)
    /// `windowTitle`, `tabsName`.
    Q_PROPERTY(QVariant words READ words CONSTANT)

public:
    explicit SettingsModel(const WindowParts& parts);
    ~SettingsModel() override;

    static QVariantList tabs();
    QString tab() const;
    QString tabLabel() const;
    SettingsTabModel* tabModel() const { return tabModel_.get(); }
    QUrl tabSource() const;
    QVariant agentNotice() const;
    static QVariantMap words();

    /// The window comes up, with the tab that was asked for by its raw text, else the stored one.
    void open(const std::optional<std::string>& tab);

    /// Shows a tab by its raw text and remembers it. One that there is not is passed over.
    Q_INVOKABLE void select(const QString& tab);
    /// The tab so many places down, up when negative; stops at the ends.
    Q_INVOKABLE void selectNeighbour(int step);
    Q_INVOKABLE void startAgent();

Q_SIGNALS:
    void tabChanged();
    void agentChanged();

private:
    void show(SettingsTab tab);

    const WindowParts& parts_;
    SettingsTab tab_ = SettingsTab::general;
    std::unique_ptr<SettingsTabModel> tabModel_;
    Subscription presence_;
};

} // namespace kestrio
