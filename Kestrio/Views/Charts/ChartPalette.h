// The colours that charts are drawn in. One object serves all charts of a theme: QML fills it, the items read it and
// draw themselves anew when it changes. On the main queue.
#pragma once

#include "Kestrio/Model/Models.h"

#include <QColor>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <array>

namespace kestrio {

class ChartPalette : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// The primary colour: tracks, the cursor and rules are made of it, thinned.
    Q_PROPERTY(QColor ink READ ink WRITE setInk NOTIFY changed)
    /// Of the numbers and times along the axes.
    Q_PROPERTY(QColor label READ label WRITE setLabel NOTIFY changed)
    Q_PROPERTY(QColor grid READ grid WRITE setGrid NOTIFY changed)
    /// The names of all categories, in the order of `ActivityCategory`.
    Q_PROPERTY(QStringList categoryNames READ categoryNames CONSTANT)
    /// Their colours in that order; gray where there are too few.
    Q_PROPERTY(QVariantList categories READ categories WRITE setCategories NOTIFY changed)

public:
    explicit ChartPalette(QObject* parent = nullptr);

    QColor ink() const { return ink_; }
    void setInk(const QColor& color) { set(ink_, color); }
    QColor label() const { return label_; }
    void setLabel(const QColor& color) { set(label_, color); }
    QColor grid() const { return grid_; }
    void setGrid(const QColor& color) { set(grid_, color); }
    static QStringList categoryNames();
    QVariantList categories() const;
    void setCategories(const QVariantList& colors);

    /// The primary colour at an opacity.
    QColor ink(qreal opacity) const;
    QColor color(ActivityCategory category) const { return categories_[static_cast<std::size_t>(category)]; }
    QColor color(SystemColor color) const;

Q_SIGNALS:
    void changed();

private:
    void set(QColor& member, const QColor& color);

    QColor ink_ = Qt::black;
    QColor label_ = Qt::darkGray;
    QColor grid_ = Qt::lightGray;
    std::array<QColor, allActivityCategories.size()> categories_;
};

/// The category that is drawn in a colour; each has its own.
ActivityCategory categoryOf(SystemColor color);

} // namespace kestrio
