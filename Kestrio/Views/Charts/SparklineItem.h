// A line without axes through a short history of values, over a thin filling of its own colour. Main queue.
#pragma once

#include "Kestrio/Pages/Sparkline.h"

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class SparklineItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(SparklinePlot)
    /// Oldest first.
    Q_PROPERTY(QList<qreal> values READ values WRITE setValues NOTIFY changed)
    /// What stands at the bottom and at the top.
    Q_PROPERTY(qreal lowest READ lowest WRITE setLowest NOTIFY changed)
    Q_PROPERTY(qreal highest READ highest WRITE setHighest NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    Q_PROPERTY(qreal lineWidth READ lineWidth WRITE setLineWidth NOTIFY changed)

public:
    explicit SparklineItem(QQuickItem* parent = nullptr);

    QList<qreal> values() const { return values_; }
    void setValues(const QList<qreal>& values) { set(values_, values); }
    qreal lowest() const { return lowest_; }
    void setLowest(qreal lowest) { set(lowest_, lowest); }
    qreal highest() const { return highest_; }
    void setHighest(qreal highest) { set(highest_, highest); }
    QColor color() const { return color_; }
    void setColor(const QColor& color) { set(color_, color); }
    qreal lineWidth() const { return lineWidth_; }
    void setLineWidth(qreal width) { set(lineWidth_, width); }

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    template <class Value>
    void set(Value& member, const Value& value) {
        if (member == value)
            return;
        member = value;
        update();
        Q_EMIT changed();
    }

    QList<qreal> values_;
    qreal lowest_ = 0;
    qreal highest_ = 1;
    QColor color_ = Qt::black;
    qreal lineWidth_ = 1.5;
};

} // namespace kestrio
