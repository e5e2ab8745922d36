import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// One row of a section: its title, the explanation that it has for whoever asks, and its control.
DividedRow {
    id: setting

    required property var row
    readonly property string help: row.help ?? ""

    signal turned(bool on)
    signal chosen(int index)
    signal pressed(int index)

    verticalPadding: Theme.xs + 2

    // Not a layout: one within another does not hear of what changes in it.
    Column {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.s

        RowLayout {
            height: Math.max(implicitHeight, Theme.controlHeight)
            spacing: Theme.s
            width: parent.width

            RowIcon {
                icon: setting.row.icon
                size: Theme.scaled(22)
                visible: setting.row.icon !== undefined
            }

            Paragraph {
                id: title

                Layout.fillWidth: true
                Layout.maximumWidth: implicitWidth + 1
                color: Theme.text
                font: setting.row.isMain ? Theme.headline : Theme.body
                opacity: setting.row.isEnabled ? 1 : 0.6
                text: setting.row.title
                visible: text !== ""
            }

            HelpButton {
                id: button

                subject: setting.row.title
                visible: setting.help !== ""
            }

            Item {
                Layout.fillWidth: true
                Layout.preferredWidth: 0
            }

            SettingControl {
                enabled: setting.row.isEnabled
                subject: setting.row.title
                value: setting.row.control

                onChosen: index => setting.chosen(index)
                onPressed: index => setting.pressed(index)
                onTurned: on => setting.turned(on)
            }
        }

        HelpText {
            text: setting.help
            visible: button.isOpen
            width: parent.width
        }
    }
}
