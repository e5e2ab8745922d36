import QtQuick
import Kestrio.Design

// Shows around its parent where the keyboard is, to those who use it.
Rectangle {
    required property bool shown

    anchors.fill: parent
    anchors.margins: -2
    border.color: Theme.focusRing
    border.width: 2
    color: "transparent"
    radius: Theme.radiusSmall + 2
    visible: shown && LastInput.wasKey
}
