pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// The bar of all categories, and below it a row for each: how much of the time, and how long.
ColumnLayout {
    id: breakdown

    required property var value // {bar, rows, summary}

    spacing: Theme.m

    CategoryStackBar {
        Layout.fillWidth: true
        bar: breakdown.value.bar
    }

    GridLayout {
        Layout.fillWidth: true
        columnSpacing: Theme.m
        columns: 3
        rowSpacing: Theme.s

        Repeater {
            model: breakdown.value.rows

            CategoryKey {
                required property int index
                required property var modelData

                Accessible.name: [modelData.category.label, modelData.share, modelData.duration].join(", ")
                Accessible.role: Accessible.ListItem
                Layout.column: 0
                Layout.fillWidth: true
                Layout.row: index
                font: Theme.body
                textColor: Theme.text
                value: modelData.category
            }
        }

        Repeater {
            model: breakdown.value.rows

            Line {
                required property int index
                required property var modelData

                Accessible.ignored: true
                Layout.alignment: Qt.AlignRight
                Layout.column: 1
                Layout.row: index
                color: Theme.textSecondary
                text: modelData.share
            }
        }

        Repeater {
            model: breakdown.value.rows

            Line {
                required property int index
                required property var modelData

                Accessible.ignored: true
                Layout.alignment: Qt.AlignRight
                Layout.column: 2
                Layout.row: index
                font: Theme.bodyStrong
                text: modelData.duration
            }
        }
    }

    Hairline {
        Layout.fillWidth: true
    }

    Line {
        Layout.alignment: Qt.AlignRight
        color: Theme.textSecondary
        font: Theme.small
        text: breakdown.value.summary
    }
}
