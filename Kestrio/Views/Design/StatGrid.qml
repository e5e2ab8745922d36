import QtQuick

// Stat cards side by side, as many in a row as have room for their least width.
Item {
    id: grid

    property var stats: []
    readonly property int columns: Math.max(1, Math.min(stats.length, Math.floor((width + Theme.m) / (Theme.scaled(148) + Theme.m))))
    // Rows as full as each other: six in four columns stand as three and three.
    readonly property int evenColumns: Math.ceil(stats.length / Math.max(1, Math.ceil(stats.length / columns)))
    readonly property real cellWidth: (width - (evenColumns - 1) * Theme.m) / Math.max(1, evenColumns)

    implicitHeight: flow.implicitHeight

    Grid {
        id: flow

        columns: Math.max(1, grid.evenColumns)
        spacing: Theme.m

        Repeater {
            model: RowsModel {
                rows: grid.stats
            }

            StatCard {
                required property var row

                value: row
                width: Math.floor(grid.cellWidth)
            }
        }
    }
}
