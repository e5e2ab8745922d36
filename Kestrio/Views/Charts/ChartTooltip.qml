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

        // Two columns and not rows in layouts: a nested one may still arrange rows that a shorter list no longer has.
        Row {
            spacing: Theme.l

            Column {
                spacing: Theme.xs

                Repeater {
                    model: tooltip.rows

                    CategoryKey {
                        required property var modelData

                        font: Theme.small
                        textColor: Theme.text
                        value: modelData.category
                    }
                }
            }

            Column {
                spacing: Theme.xs

                Repeater {
                    model: tooltip.rows

                    Line {
                        required property var modelData

                        Accessible.ignored: true
                        anchors.right: parent?.right
                        font: Theme.small
                        text: modelData.duration
                    }
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
