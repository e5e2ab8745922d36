import QtQuick
import QtQuick.Templates as T

// What lies under a button: nothing at rest, a tint below the pointer, more of it when pressed.
Rectangle {
    id: ground

    required property T.AbstractButton control
    property color restColor: "transparent"

    color: restColor
    radius: Theme.radiusSmall

    Rectangle {
        anchors.fill: parent
        color: ground.control.down || ground.control.checked ? Theme.pressed : Theme.hover
        opacity: ground.control.enabled && (ground.control.down || ground.control.checked || ground.control.hovered) ? 1 : 0
        radius: parent.radius

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.animation
            }
        }
    }

    FocusRing {
        radius: ground.radius + 2
        shown: ground.control.activeFocus
    }
}
