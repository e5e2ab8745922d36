#include "Kestrio/Views/Window/Panels/Panels.h"

#include "Kestrio/Base/Log.h"
#include "Kestrio/Views/Window/Panels/SystemPanelModel.h"
#include "Kestrio/Views/Window/Panels/TodayPanelModel.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>
#include <QTimerEvent>

namespace kestrio {
namespace {

std::vector<PanelScreen> screens() {
    std::vector<PanelScreen> all;
    for (const auto* const screen : QGuiApplication::screens())
        all.push_back({screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()});
    return all;
}

QUrl source(PanelKind kind) {
    switch (kind) {
    case PanelKind::today: return QStringLiteral("qrc:/qt/qml/Kestrio/Window/Panels/TodayPanel.qml");
    case PanelKind::system: return QStringLiteral("qrc:/qt/qml/Kestrio/Window/Panels/SystemPanel.qml");
    }
    return {};
}

} // namespace

Panels::~Panels() {
    // Items read their models to the end.
    delete window_.release();
    delete model_.release();
}

void Panels::show(const PanelRequest& request) {
    const bool isOpen = window_ && kind_ == request.kind;
    const bool isSameClick = wasClosedByThisClick(request.kind);
    const QEventLoopLocker untilTheOtherIsOpen;
    close();
    if (!isOpen && !isSameClick)
        open(request);
}

bool Panels::wasClosedByThisClick(PanelKind kind) const {
    return sameClick_.isActive() && kind_ == kind;
}

void Panels::open(const PanelRequest& request) {
    kind_ = request.kind;
    const auto click = request.at ? std::optional(QPoint(request.at->x, request.at->y)) : std::nullopt;
    place_ = panelPlace(click, screens());
    model_ = makeModel(kind_);
    window_.reset(makeWindow(kind_));
    if (!window_)
        return;
    holdsProcess_ = std::make_unique<QEventLoopLocker>();
    wasActive_ = false;
    window_->installEventFilter(this);
    connect(window_.get(), &QQuickWindow::widthChanged, this, &Panels::place);
    connect(window_.get(), &QQuickWindow::heightChanged, this, &Panels::place);
    connect(model_.get(), &PanelModel::closeRequested, this, &Panels::close);
    model_->setShown(true);
    appearWhenReady();
}

std::unique_ptr<PanelModel, Panels::Later> Panels::makeModel(PanelKind kind) const {
    std::unique_ptr<PanelModel, Later> model;
    switch (kind) {
    case PanelKind::today: model.reset(new TodayPanelModel(parts_)); break;
    case PanelKind::system: model.reset(new SystemPanelModel(parts_)); break;
    }
    return model;
}

QQuickWindow* Panels::makeWindow(PanelKind kind) {
    QQmlComponent component(&engine_, source(kind));
    const auto room = place_ ? place_->room() : QSize();
    auto made = std::unique_ptr<QObject>(
        component.createWithInitialProperties({{QStringLiteral("model"), QVariant::fromValue(model_.get())},
                                               {QStringLiteral("room"), room},
                                               {QStringLiteral("isBlended"), parts_.window.host.blendsWindows()}}));
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window) {
        logLine("Kestrio: a panel could not be made");
        for (const auto& error : component.errors())
            logLine("Kestrio: " + error.toString().toStdString());
        return nullptr;
    }
    (void)made.release();
    return window;
}

void Panels::appearWhenReady() {
    if (model_->isReady())
        return appear();
    connect(model_.get(), &PanelModel::changed, this, [this] {
        if (patience_.isActive() && model_->isReady())
            appear();
    });
    patience_.start(patienceMilliseconds, this);
}

void Panels::appear() {
    patience_.stop();
    place();
    window_->show();
    window_->raise();
    window_->requestActivate();
}

void Panels::place() {
    if (window_ && place_)
        window_->setPosition(place_->position(window_->size()));
}

bool Panels::eventFilter(QObject* watched, QEvent* event) {
    if (watched != window_.get())
        return false;
    if (event->type() == QEvent::FocusIn)
        wasActive_ = true;
    else if (event->type() == QEvent::FocusOut && wasActive_ && window_->isVisible())
        loseAttention();
    else if (event->type() == QEvent::Close)
        close();
    return false;
}

void Panels::loseAttention() {
    auto held = std::move(holdsProcess_);
    close();
    holdsProcess_ = std::move(held);
    sameClick_.start(sameClickMilliseconds, this);
}

void Panels::close() {
    patience_.stop();
    sameClick_.stop();
    if (window_) {
        window_->removeEventFilter(this);
        window_->hide();
        model_->setShown(false);
        window_.reset();
        model_.reset();
    }
    holdsProcess_.reset();
}

void Panels::timerEvent(QTimerEvent* event) {
    if (event->timerId() == patience_.timerId())
        return appear();
    if (event->timerId() == sameClick_.timerId())
        close();
}

} // namespace kestrio
