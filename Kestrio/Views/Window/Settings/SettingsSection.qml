import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// A section of a tab: its head, its rows, and what is said below them. `accessory` stands at the end of the card.
ColumnLayout {
    id: section

    required property var value
    default property alias accessory: extra.data

    signal turned(string row, bool on)
    signal chosen(string row, int index)
    signal pressed(string row, int index)

    Layout.fillWidth: true
    spacing: Theme.s

    HelpHeader {
        Layout.fillWidth: true
        help: section.value.help ?? ""
        title: section.value.title ?? ""
        visible: title !== ""
    }

    Rectangle {
        Accessible.name: section.value.title ?? ""
        Accessible.role: Accessible.Grouping
        Layout.fillWidth: true
        border.color: Theme.cardBorder
        color: Theme.card
        implicitHeight: column.implicitHeight + 2 * Theme.xs
        radius: Theme.radius
        visible: rows.count > 0 || extra.children.length > 0

        // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
        Column {
            id: column

            anchors.left: parent.left
            anchors.leftMargin: Theme.l
            anchors.right: parent.right
            anchors.rightMargin: Theme.l
            anchors.verticalCenter: parent.verticalCenter

            Repeater {
                id: rows

                model: RowsModel {
                    rows: section.value.rows ?? []
                }

                SettingRow {
                    required property int index

                    isDivided: index > 0

                    onChosen: place => section.chosen(row.id, place)
                    onPressed: button => section.pressed(row.id, button)
                    onTurned: on => section.turned(row.id, on)
                }
            }

            ColumnLayout {
                id: extra

                spacing: 0
                visible: children.length > 0
                width: column.width
            }
        }
    }

    Paragraph {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.xs
        font: Theme.small
        text: section.value.note ?? ""
        visible: text !== ""
    }
}
