// What both panels have in common: they know whether they are seen, work only then, and pass on what the agent would
// not do.
//
// Belongs to the main queue; the parts outlive it.
#pragma once

#include "Kestrio/Views/Window/Panels/PanelParts.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class PanelModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with its panel.")
    Q_PROPERTY(QVariant panel READ panel NOTIFY changed)
    /// Why what the person asked for was not done; empty when it was.
    Q_PROPERTY(QString failure READ failure NOTIFY failureChanged)
    /// Whether there is something worth showing, so that a panel does not appear empty first.
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)

public:
    explicit PanelModel(const PanelParts& parts) : parts_(parts) {}

    const QVariantMap& panel() const { return panel_; }
    const QString& failure() const { return failure_; }
    virtual bool isReady() const = 0;

    virtual void setShown(bool isShown) = 0;

    Q_INVOKABLE void openSettings();

Q_SIGNALS:
    void changed();
    void failureChanged();
    /// What the person did leads elsewhere.
    void closeRequested();

protected:
    const PanelParts& parts() const { return parts_; }
    void setPanel(QVariantMap panel);
    /// Opens another window, and has this one closed.
    void leaveFor(const std::function<void()>& open);

    /// Has the agent do something that can fail. `done` is called when it was done.
    void act(
        std::function<Background::Failure(Background&)> action, std::function<void()> done = [] {});

private:
    const PanelParts& parts_;
    QVariantMap panel_;
    QString failure_;
    std::shared_ptr<PanelModel*> self_ = std::make_shared<PanelModel*>(this); // answers on the way hold it weakly
};

} // namespace kestrio
