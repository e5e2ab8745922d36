#include "Kestrio/Views/Charts/StripPointer.h"

namespace kestrio {
namespace {

std::optional<StripStep> stepOf(int key) {
    switch (key) {
    case Qt::Key_Left: return StripStep::earlier;
    case Qt::Key_Right: return StripStep::later;
    case Qt::Key_Up: return StripStep::above;
    case Qt::Key_Down: return StripStep::below;
    case Qt::Key_Home: return StripStep::first;
    case Qt::Key_End: return StripStep::last;
    default: return std::nullopt;
    }
}

template <class Part>
QString textOf(const StripReadout& readout, std::string Part::*field) {
    const auto* part = std::get_if<Part>(&readout);
    return part ? QString::fromStdString(part->*field) : QString();
}

} // namespace

StripPointer::StripPointer(QObject* parent)
    : QObject(parent), readout_(stripReadout(std::nullopt, false, Calendar("en", "GMT"))) {}

void StripPointer::setStrips(const DayStripsValue& strips) {
    if (strips_ == strips)
        return;
    strips_ = strips;
    // The place stays, so that a report made anew does not take the readout away; what is there may have changed.
    if (hover_) {
        const auto* data = strips_.data();
        const auto found = data ? std::ranges::find(data->strips.days, hover_->day, &DayStrips::Day::start)
                                : std::vector<DayStrips::Day>::const_iterator();
        if (data && found != data->strips.days.end())
            hover_ = stripHover(data->strips, *found, hover_->isAlongside, hover_->fraction * width_, width_);
        else
            hover_ = std::nullopt;
    }
    Q_EMIT stripsChanged();
    Q_EMIT hoverChanged();
    read();
    Q_EMIT readoutChanged();
}

QString StripPointer::symbol() const {
    return textOf(readout_, &ReadoutNote::symbol);
}

QString StripPointer::text() const {
    return textOf(readout_, &ReadoutNote::text);
}

QString StripPointer::bundleID() const {
    const auto* session = std::get_if<ReadoutSession>(&readout_);
    return session ? QString::fromStdString(session->icon.bundleID) : QString();
}

QString StripPointer::appName() const {
    return textOf(readout_, &ReadoutSession::appName);
}

QString StripPointer::title() const {
    return textOf(readout_, &ReadoutSession::title);
}

QVariantMap StripPointer::category() const {
    const auto* session = std::get_if<ReadoutSession>(&readout_);
    return session ? toMap(session->category) : QVariantMap();
}

QString StripPointer::times() const {
    return textOf(readout_, &ReadoutSession::times);
}

QString StripPointer::words() const {
    return hover_ ? QString::fromStdString(spoken(readout_)) : strips_.words();
}

void StripPointer::moveTo(int dayIndex, bool isAlongside, qreal x, qreal width) {
    const auto* pointed = day(dayIndex);
    if (!pointed)
        return;
    width_ = width;
    point(stripHover(strips_.data()->strips, *pointed, isAlongside, x, width));
}

void StripPointer::leave(int dayIndex, bool isAlongside) {
    const auto* left = day(dayIndex);
    if (left && hover_ && hover_->day == left->start && hover_->isAlongside == isAlongside)
        clear();
}

bool StripPointer::press(int key) {
    if (key == Qt::Key_Escape && hover_) {
        clear();
        return true;
    }
    const auto step = stepOf(key);
    if (!step || !strips_.data())
        return false;
    point(steppedHover(strips_.data()->strips, hover_, *step));
    return true;
}

const DayStrips::Day* StripPointer::day(int index) const {
    return index >= 0 && index < strips_.dayCount() ? &strips_.data()->strips.days[static_cast<std::size_t>(index)]
                                                    : nullptr;
}

void StripPointer::point(std::optional<StripHover> hover) {
    if (hover_ == hover)
        return;
    hover_ = std::move(hover);
    Q_EMIT hoverChanged();
    read();
}

void StripPointer::read() {
    if (!strips_.data())
        return;
    auto readout = stripReadout(hover_, strips_.data()->strips.layout.manyDays, strips_.data()->calendar);
    if (readout == readout_)
        return;
    readout_ = std::move(readout);
    Q_EMIT readoutChanged();
}

} // namespace kestrio
