#include "Kestrio/Views/Charts/StripCanvasItem.h"

#include "Kestrio/Views/Charts/PixelGrid.h"

#include <QHoverEvent>

namespace kestrio {
namespace {

/// Whether two canvases differ in what is pointed at, and in nothing else.
bool differsByPointing(StripCanvas a, const StripCanvas& b) {
    if (a.cursor == b.cursor && a.highlighted == b.highlighted)
        return false;
    a.cursor = b.cursor;
    a.highlighted = b.highlighted;
    return a == b;
}

/// The area and a little more, so that its edges lie between pixels at scales in steps of a quarter.
QRect wholePixels(const QRectF& area) {
    constexpr int step = 4;
    const auto left = static_cast<int>(std::floor(area.left() / step)) * step;
    const auto right = static_cast<int>(std::ceil(area.right() / step)) * step;
    const auto bottom = static_cast<int>(std::ceil(area.bottom() / step)) * step;
    return {left, 0, right - left, bottom};
}

} // namespace

StripCanvasItem::StripCanvasItem(QQuickItem* parent) : ChartItem(parent) {
    setAcceptHoverEvents(true);
}

void StripCanvasItem::setPointer(StripPointer* pointer) {
    if (pointer_ == pointer)
        return;
    if (pointer_)
        pointer_->disconnect(this);
    pointer_ = pointer;
    if (pointer_)
        connect(pointer_, &StripPointer::hoverChanged, this, &StripCanvasItem::follow);
    follow();
    Q_EMIT pointerChanged();
}

void StripCanvasItem::setDay(int day) {
    if (day_ == day)
        return;
    day_ = day;
    follow();
    Q_EMIT dayChanged();
}

void StripCanvasItem::setAlongside(bool isAlongside) {
    if (isAlongside_ == isAlongside)
        return;
    isAlongside_ = isAlongside;
    follow();
    Q_EMIT alongsideChanged();
}

void StripCanvasItem::hoverEnterEvent(QHoverEvent* event) {
    hoverMoveEvent(event);
}

void StripCanvasItem::hoverMoveEvent(QHoverEvent* event) {
    if (pointer_)
        pointer_->moveTo(day_, isAlongside_, event->position().x(), width());
}

void StripCanvasItem::hoverLeaveEvent(QHoverEvent*) {
    if (pointer_)
        pointer_->leave(day_, isAlongside_);
}

StripCanvas StripCanvasItem::currentCanvas() const {
    const auto* data = pointer_ ? pointer_->strips().data() : nullptr;
    if (!data || day_ < 0 || day_ >= pointer_->strips().dayCount())
        return {};
    const auto& day = data->strips.days[static_cast<std::size_t>(day_)];
    auto canvas = isAlongside_ ? data->strips.mediaLine(day) : data->strips.strip(day);
    const auto& hover = pointer_->hover();
    if (hover && hover->day == day.start && hover->isAlongside == isAlongside_) {
        canvas.cursor = hover->fraction;
        if (hover->session)
            canvas.highlighted = hover->session->id;
    }
    return canvas;
}

void StripCanvasItem::follow() {
    const auto next = currentCanvas();
    if (differsByPointing(canvas_, next))
        update(wholePixels(markedArea(canvas_) | markedArea(next)));
    else if (next != canvas_)
        drawWhole();
    // Also when they are equal: the next one may look into a newer report, and the older one can go.
    canvas_ = next;
    drawn_ = pointer_ ? pointer_->strips() : DayStripsValue();
}

/// What the cursor and the highlight cover, with room for the snapping to pixels.
QRectF StripCanvasItem::markedArea(const StripCanvas& canvas) const {
    constexpr qreal room = 2;
    QRectF area;
    if (const auto cursor = canvas.cursorLine(width()))
        area = QRectF(*cursor - room, 0, StripCanvas::cursorWidth + 2 * room, height());
    if (canvas.highlighted) {
        const auto session = std::ranges::find(canvas.sessions, *canvas.highlighted, &ClassifiedSession::id);
        if (session != canvas.sessions.end())
            area |= sessionArea(canvas, *session).adjusted(-room, 0, room, 0);
    }
    return area;
}

QRectF StripCanvasItem::sessionArea(const StripCanvas& canvas, const ClassifiedSession& session) const {
    const auto [x, width, opacity] = canvas.rectangle(session, this->width());
    return {x, 0, width, height()};
}

void StripCanvasItem::paint(QPainter* painter) {
    if (!palette() || canvas_.hours == 0)
        return;
    paintTrack(*painter);
    paintSessions(*painter);
    paintHighlight(*painter);
    paintCursor(*painter);
}

void StripCanvasItem::paintTrack(QPainter& painter) const {
    const auto radius = StripCanvas::cornerRadius(height());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette()->ink(canvas_.trackOpacity()));
    painter.drawRoundedRect(QRectF({}, size()), radius, radius);
    painter.setRenderHint(QPainter::Antialiasing, false);
    const PixelGrid pixels(painter);
    const auto lineWidth = pixels.wholeWidth(StripCanvas::hourLineWidth);
    for (const auto line : canvas_.hourLines(width()))
        painter.fillRect(QRectF(pixels.snapped(line), 0, lineWidth, height()),
                         palette()->ink(StripCanvas::hourLineOpacity));
}

void StripCanvasItem::paintSessions(QPainter& painter) const {
    const PixelGrid pixels(painter);
    const auto visible = painter.hasClipping() ? painter.clipBoundingRect() : QRectF({}, size());
    std::array<QColor, allActivityCategories.size()> colors;
    for (const auto category : allActivityCategories) {
        auto& color = colors[static_cast<std::size_t>(category)];
        color = palette()->color(category);
        color.setAlphaF(color.alphaF() * static_cast<float>(canvas_.isFaded ? 0.75 : 1));
    }
    for (const auto& session : canvas_.sessions) {
        const auto area = sessionArea(canvas_, session);
        if (area.right() + 1 < visible.left() || area.left() - 1 > visible.right())
            continue;
        painter.fillRect(pixels.snapped(area), colors[static_cast<std::size_t>(session.category)]);
    }
}

void StripCanvasItem::paintHighlight(QPainter& painter) const {
    if (!canvas_.highlighted)
        return;
    const auto session = std::ranges::find(canvas_.sessions, *canvas_.highlighted, &ClassifiedSession::id);
    if (session == canvas_.sessions.end())
        return;
    constexpr auto inset = StripCanvas::highlightInset;
    const auto area = PixelGrid(painter).snapped(sessionArea(canvas_, *session));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette()->ink(), StripCanvas::highlightWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(area.adjusted(inset, inset, -inset, -inset));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void StripCanvasItem::paintCursor(QPainter& painter) const {
    const auto line = canvas_.cursorLine(width());
    if (!line)
        return;
    const PixelGrid pixels(painter);
    painter.fillRect(QRectF(pixels.snapped(*line), 0, pixels.wholeWidth(StripCanvas::cursorWidth), height()),
                     palette()->ink(StripCanvas::cursorOpacity));
}

} // namespace kestrio
