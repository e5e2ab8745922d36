import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A sentence with its symbol before it.
RowLayout {
    id: line

    property string symbol: ""
    property string text: ""
    property color tint: Theme.textSecondary

    Accessible.name: text
    Accessible.role: Accessible.StaticText
    spacing: Theme.s

    Symbol {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: 1
        color: line.tint
        name: line.symbol
        size: Theme.scaled(15)
    }

    Paragraph {
        Accessible.ignored: true
        Layout.fillWidth: true
        color: Theme.text
        font: Theme.small
        text: line.text
    }
}
