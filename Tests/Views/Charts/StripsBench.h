// The strips of hand-made days in a window, each a strip with its media line.
#pragma once

#include "Kestrio/Views/Charts/StripCanvasItem.h"
#include "Tests/Views/Charts/ChartBench.h"

namespace kestrio {

class ShownStrips {
public:
    static constexpr qreal left = 10;
    static constexpr qreal rowHeight = 40;

    ShownStrips(const DayStripsValue& strips, int width)
        : value(strips), window(width + 20, std::max(1, strips.dayCount()) * 40 + 20), width_(width) {
        pointer.setStrips(value);
        for (int day = 0; day < value.dayCount(); ++day) {
            items.push_back(&add(day, false, top(day, false), 24));
            items.push_back(&add(day, true, top(day, true), 8));
        }
    }

    /// In the window, in points.
    static qreal top(int day, bool isAlongside) { return 10 + day * rowHeight + (isAlongside ? 26 : 0); }

    void pointAt(int day, bool isAlongside, qreal x) { window.pointAt(left + x, top(day, isAlongside) + 4); }
    QColor colorAt(int day, bool isAlongside, qreal x, qreal y) {
        return window.colorAt(left + x, top(day, isAlongside) + y);
    }
    StripCanvasItem& strip(int day) { return *items[static_cast<std::size_t>(2 * day)]; }
    StripCanvasItem& mediaLine(int day) { return *items[static_cast<std::size_t>(2 * day + 1)]; }

    DayStripsValue value;
    ChartWindow window;
    StripPointer pointer;
    std::vector<StripCanvasItem*> items;

private:
    StripCanvasItem& add(int day, bool isAlongside, qreal y, qreal height) {
        auto& item = window.add<StripCanvasItem>(QRectF(left, y, width_, height));
        item.setDay(day);
        item.setAlongside(isAlongside);
        item.setPointer(&pointer);
        return item;
    }

    qreal width_;
};

} // namespace kestrio
