pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Charts
import Kestrio.Design

// The hours above the strips, from left to right in every language; where they have no room, every second, third, ...
Item {
    id: axis

    property var marks: [] // {label, fraction}
    readonly property real widest: marks.reduce((most, mark) => Math.max(most, metrics.advanceWidth(mark.label)), 0)
    readonly property real between: width / Math.max(1, marks.length - 1)
    // The outermost labels stand half their width further in than their marks.
    readonly property int step: Math.max(1, Math.ceil((1.5 * widest + Theme.xs) / Math.max(1, between)))

    Accessible.ignored: true
    implicitHeight: Math.ceil(metrics.height)

    FontMetrics {
        id: metrics

        font: Theme.caption
    }

    Repeater {
        model: axis.marks

        Line {
            Accessible.ignored: true
            required property int index
            required property var modelData

            color: Theme.textTertiary
            font: Theme.caption
            text: modelData.label
            visible: index % axis.step === 0
            x: Math.round(Math.max(0, Math.min(axis.width - width, modelData.fraction * axis.width - width / 2)))
        }
    }
}
