pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Charts
import Kestrio.Design

// What the colours mean, in columns at least so wide.
Grid {
    id: legend

    property var categories: []
    property real leastWidth: Theme.scaled(116)
    readonly property real cellWidth: width / columns

    columns: Math.max(1, Math.floor(width / leastWidth))
    rowSpacing: Theme.xs

    Repeater {
        model: legend.categories

        CategoryKey {
            required property var modelData

            value: modelData
            width: legend.cellWidth
        }
    }
}
