pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// Stat cards side by side, as many in a row as have room for their least width, all equally wide, those of a row equally
// tall. Places them itself: a layout that follows its own width misses changes.
Item {
    id: grid

    property var stats: []
    readonly property real gap: Theme.m
    readonly property int fitting: Math.max(1, Math.floor((width + gap) / (Theme.scaled(148) + gap)))
    readonly property int rowCount: Math.ceil(stats.length / fitting)
    // Rows as full as each other: of six where five fit three stand above three.
    readonly property int columns: Math.max(1, Math.ceil(stats.length / Math.max(1, rowCount)))
    readonly property real cellWidth: (width - (columns - 1) * gap) / columns
    readonly property var rowHeights: tallest(cards.count)

    // Per row the height of its tallest card.
    function tallest(count: int): var {
        const heights = Array(rowCount).fill(0);
        for (let i = 0; i < count; ++i) {
            const row = Math.floor(i / columns);
            heights[row] = Math.max(heights[row], cards.itemAt(i)?.implicitHeight ?? 0);
        }
        return heights;
    }

    // Of so many rows with the gaps below them.
    function heightOf(rows: int): real {
        return rowHeights.slice(0, rows).reduce((sum, height) => sum + height + gap, 0);
    }

    Layout.fillWidth: true
    implicitHeight: heightOf(rowCount) - gap
    implicitWidth: Theme.scaled(148)

    Repeater {
        id: cards

        model: RowsModel {
            rows: grid.stats
        }

        StatCard {
            required property var row
            required property int index
            readonly property int column: index % grid.columns
            readonly property int line: Math.floor(index / grid.columns)

            height: grid.rowHeights[line] ?? implicitHeight
            value: row
            width: Math.round(grid.cellWidth)
            x: Math.round((grid.LayoutMirroring.enabled ? grid.columns - 1 - column : column) * (grid.cellWidth + grid.gap))
            y: grid.heightOf(line)
        }
    }
}
