import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The head of a section, with the explanation that it has for whoever asks.
ColumnLayout {
    id: header

    property string title: ""
    property string help: ""

    spacing: Theme.s

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.xs

        Line {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            font: Theme.headline
            text: header.title
        }

        HelpButton {
            id: button

            subject: header.title
            visible: header.help !== ""
        }

        Item {
            Layout.fillWidth: true
        }
    }

    HelpText {
        Layout.fillWidth: true
        text: header.help
        visible: button.isOpen
    }
}
