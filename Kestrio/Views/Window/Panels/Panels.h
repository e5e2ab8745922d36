// The two panels of the tray icons: one at most is open. Asked for again, the open one closes; so does one that loses
// the person's attention.
//
// Belongs to the main thread. Engine and parts outlive it.
#pragma once

#include "Kestrio/Link/WindowRequest.h"
#include "Kestrio/Views/Window/Panels/PanelModel.h"
#include "Kestrio/Views/Window/Panels/PanelPosition.h"

#include <QBasicTimer>
#include <QEventLoopLocker>
#include <QObject>
#include <QQuickWindow>
#include <memory>
#include <optional>

class QQmlEngine;

namespace kestrio {

class Panels final : public QObject {
    Q_OBJECT

public:
    /// So long after a click elsewhere closed a panel, being asked for it is taken for that click: it was on the icon.
    static constexpr int sameClickMilliseconds = 400;
    /// A panel that has nothing to show yet appears after so long all the same.
    static constexpr int patienceMilliseconds = 150;

    Panels(QQmlEngine& engine, const PanelParts& parts) : engine_(engine), parts_(parts) {}
    ~Panels() override;

    /// Opens a panel beside the clicked pixel, or closes it when it is the one that is open.
    void show(const PanelRequest& request);

    /// Closes the open one.
    void close();

    /// Null while none is open.
    QQuickWindow* window() const { return window_.get(); }

protected:
    void timerEvent(QTimerEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Later {
        void operator()(QObject* object) const { object->deleteLater(); }
    };

    bool wasClosedByThisClick(PanelKind kind) const;
    void open(const PanelRequest& request);
    std::unique_ptr<PanelModel, Later> makeModel(PanelKind kind) const;
    QQuickWindow* makeWindow(PanelKind kind);
    void appearWhenReady();
    void appear();
    void place();
    void loseAttention();

    QQmlEngine& engine_;
    const PanelParts& parts_;
    PanelKind kind_ = PanelKind::today;
    std::optional<PanelPlace> place_;
    std::unique_ptr<PanelModel, Later> model_;
    std::unique_ptr<QQuickWindow, Later> window_;
    bool wasActive_ = false; // one that the window system never gave the focus cannot lose it
    QBasicTimer patience_;
    QBasicTimer sameClick_;
    std::unique_ptr<QEventLoopLocker> holdsProcess_; // while one is open, or could be asked for by the same click
};

} // namespace kestrio
