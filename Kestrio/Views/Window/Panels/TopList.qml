pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The first few rows of a list under their title. Not there without any.
ColumnLayout {
    id: list

    required property string title
    required property var rows

    Accessible.name: title
    Accessible.role: Accessible.List
    spacing: 2
    visible: rows.length > 0

    Line {
        Accessible.name: text
        Accessible.role: Accessible.Heading
        Layout.fillWidth: true
        color: Theme.textSecondary
        font: Theme.small
        text: list.title
    }

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        id: column

        Layout.fillWidth: true
        spacing: 2

        Repeater {
            model: RowsModel {
                rows: list.rows
            }

            CompactUsageRow {
                width: column.width
            }
        }
    }
}
