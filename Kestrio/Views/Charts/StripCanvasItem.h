// One strip, or the media line below it, drawn by hand in one pass however many sessions it has. It compares what it
// drew with what it is to draw: another strip's pointer costs it nothing, and its own only the stretch that changed.
// Main queue; it is drawn on the scene graph's queue while the main one waits.
#pragma once

#include "Kestrio/Views/Charts/ChartItem.h"
#include "Kestrio/Views/Charts/StripPointer.h"

#include <QPointer>

namespace kestrio {

class StripCanvasItem : public kestrio::ChartItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(StripCanvas)
    /// Whose strips are drawn, and where it points.
    Q_PROPERTY(kestrio::StripPointer* pointer READ pointer WRITE setPointer NOTIFY pointerChanged)
    Q_PROPERTY(int day READ day WRITE setDay NOTIFY dayChanged)
    Q_PROPERTY(bool isAlongside READ isAlongside WRITE setAlongside NOTIFY alongsideChanged)

public:
    explicit StripCanvasItem(QQuickItem* parent = nullptr);

    StripPointer* pointer() const { return pointer_; }
    void setPointer(StripPointer* pointer);
    int day() const { return day_; }
    void setDay(int day);
    bool isAlongside() const { return isAlongside_; }
    void setAlongside(bool isAlongside);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void pointerChanged();
    void dayChanged();
    void alongsideChanged();

protected:
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;

private:
    StripCanvas currentCanvas() const;
    void follow();
    QRectF markedArea(const StripCanvas& canvas) const;
    QRectF sessionArea(const StripCanvas& canvas, const ClassifiedSession& session) const;

    void paintTrack(QPainter& painter) const;
    void paintSessions(QPainter& painter) const;
    void paintHighlight(QPainter& painter) const;
    void paintCursor(QPainter& painter) const;

    QPointer<StripPointer> pointer_;
    int day_ = 0;
    bool isAlongside_ = false;
    DayStripsValue drawn_; // keeps alive what `canvas_` looks into
    StripCanvas canvas_;
};

} // namespace kestrio
