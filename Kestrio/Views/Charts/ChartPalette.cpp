#include "Kestrio/Views/Charts/ChartPalette.h"

namespace kestrio {

ChartPalette::ChartPalette(QObject* parent) : QObject(parent) {
    categories_.fill(Qt::gray);
}

QStringList ChartPalette::categoryNames() {
    QStringList names;
    for (const auto category : allActivityCategories) {
        const auto name = rawValue(category);
        names.append(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    }
    return names;
}

QVariantList ChartPalette::categories() const {
    QVariantList colors;
    for (const auto& color : categories_)
        colors.append(color);
    return colors;
}

void ChartPalette::setCategories(const QVariantList& colors) {
    auto next = categories_;
    next.fill(Qt::gray);
    const auto count = std::min(next.size(), static_cast<std::size_t>(colors.size()));
    for (std::size_t i = 0; i < count; ++i)
        next[i] = colors[static_cast<qsizetype>(i)].value<QColor>();
    if (next == categories_)
        return;
    categories_ = next;
    Q_EMIT changed();
}

QColor ChartPalette::ink(qreal opacity) const {
    auto thinned = ink_;
    thinned.setAlphaF(static_cast<float>(ink_.alphaF() * opacity));
    return thinned;
}

QColor ChartPalette::color(SystemColor color) const {
    return this->color(categoryOf(color));
}

void ChartPalette::set(QColor& member, const QColor& color) {
    if (member == color)
        return;
    member = color;
    Q_EMIT changed();
}

ActivityCategory categoryOf(SystemColor color) {
    for (const auto category : allActivityCategories)
        if (kestrio::color(category) == color)
            return category;
    return ActivityCategory::other;
}

} // namespace kestrio
