import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A named place of the gallery.
ColumnLayout {
    id: sample

    required property string name
    default property alias content: holder.data

    Layout.fillWidth: true
    spacing: Theme.s

    Line {
        color: Theme.textTertiary
        font: Theme.small
        text: sample.name
    }

    ColumnLayout {
        id: holder

        Layout.fillWidth: true
        spacing: Theme.m
    }
}
