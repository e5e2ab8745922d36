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

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        id: rows

        Layout.fillWidth: true
        spacing: Theme.s

        Repeater {
            model: RowsModel {
                rows: breakdown.value.rows
            }

            RowLayout {
                id: line

                required property var row

                Accessible.name: [row.category.label, row.share, row.duration].join(", ")
                Accessible.role: Accessible.ListItem
                spacing: Theme.m
                width: rows.width

                CategoryKey {
                    Layout.fillWidth: true
                    font: Theme.body
                    textColor: Theme.text
                    value: line.row.category
                }

                Line {
                    Accessible.ignored: true
                    color: Theme.textSecondary
                    text: line.row.share
                }

                Line {
                    Accessible.ignored: true
                    Layout.minimumWidth: Theme.scaled(60)
                    font: Theme.bodyStrong
                    horizontalAlignment: Text.AlignRight
                    text: line.row.duration
                }
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
