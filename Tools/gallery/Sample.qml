import QtQuick
import Kestrio.Design

// A named place of the gallery.
Column {
    id: sample

    required property string name

    spacing: Theme.s
    width: parent?.width ?? implicitWidth

    Line {
        color: Theme.textTertiary
        font: Theme.small
        text: sample.name
    }
}
