import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// An application or a website with its time and its category. `selected` comes with the raw value of the category that
// was chosen, or undefined for the default.
DividedRow {
    id: known

    required property var row
    required property int index

    signal selected(var category)

    Accessible.description: row.time
    Accessible.name: row.title
    Accessible.role: Accessible.ListItem
    isDivided: index > 0
    verticalPadding: Theme.xs

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        RowIcon {
            icon: known.row.icon
            size: Theme.scaled(22)
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            text: known.row.title
        }

        Line {
            Accessible.ignored: true
            color: Theme.textSecondary
            text: known.row.time
        }

        CategoryMenu {
            Layout.preferredWidth: Theme.scaled(160)
            value: known.row.menu

            onSelected: category => known.selected(category)
        }
    }
}
