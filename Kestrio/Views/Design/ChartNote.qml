import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A small line that explains what is above it.
RowLayout {
    id: note

    property string text: ""

    spacing: Theme.xs + 2

    Symbol {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: 1
        color: Theme.textTertiary
        name: Words.chartNoteSymbol
        size: Theme.scaled(13)
    }

    Paragraph {
        Layout.fillWidth: true
        color: Theme.textTertiary
        font: Theme.caption
        text: note.text
    }
}
