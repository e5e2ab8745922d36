pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// What is told of an hour or day of a chart: its head, its categories, longest first, and their sum.
Rectangle {
    id: tooltip

    property string head: ""
    property var rows: []
    property string sum: ""

    Accessible.ignored: true
    border.color: Theme.cardBorder
    color: Theme.card
    implicitHeight: column.implicitHeight + 2 * Theme.s
    implicitWidth: column.implicitWidth + 2 * Theme.m
    radius: Theme.radiusSmall

    ColumnLayout {
        id: column

        anchors.centerIn: parent
        spacing: Theme.xs

        Line {
            Accessible.ignored: true
            color: Theme.textSecondary
            font: Theme.caption
            text: tooltip.head
        }

        Repeater {
            model: tooltip.rows

            RowLayout {
                id: row

                required property var modelData

                spacing: Theme.l

                CategoryKey {
                    Layout.fillWidth: true
                    font: Theme.small
                    textColor: Theme.text
                    value: row.modelData.category
                }

                Line {
                    Accessible.ignored: true
                    Layout.alignment: Qt.AlignRight
                    font: Theme.small
                    text: row.modelData.duration
                }
            }
        }

        Line {
            Accessible.ignored: true
            font: Theme.bodyStrong
            text: tooltip.sum
        }
    }
}
