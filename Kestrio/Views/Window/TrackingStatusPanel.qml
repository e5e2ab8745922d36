import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// Whether anything is being recorded right now, with a light: green when it is.
Item {
    id: panel

    required property DashboardModel model
    property bool isCompact: false
    readonly property var status: model.status

    Accessible.description: status.detail ?? ""
    Accessible.name: model.words.statusName + ": " + status.label
    Accessible.role: Accessible.StaticText
    implicitHeight: row.implicitHeight

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Theme.s
        anchors.right: parent.right
        anchors.rightMargin: Theme.s
        spacing: Theme.s

        Symbol {
            color: Theme.textSecondary
            name: panel.status.symbol
            size: Theme.scaled(16)
        }

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.text
            text: panel.status.label
            visible: !panel.isCompact
        }

        Rectangle {
            color: panel.status.isActive ? Theme.green : Theme.red
            implicitHeight: Theme.scaled(8)
            implicitWidth: implicitHeight
            radius: implicitHeight / 2
        }
    }

    Help {
        text: panel.status.detail ?? ""
    }
}
