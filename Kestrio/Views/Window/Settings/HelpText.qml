import QtQuick
import Kestrio.Design

// An explanation that was unfolded.
Rectangle {
    property alias text: words.text

    border.color: Theme.isHighContrast ? Theme.cardBorder : "transparent"
    color: Theme.hover
    implicitHeight: words.implicitHeight + 2 * Theme.s
    radius: Theme.radiusSmall

    Paragraph {
        id: words

        anchors.left: parent.left
        anchors.margins: Theme.s + 2
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        font: Theme.small
    }
}
