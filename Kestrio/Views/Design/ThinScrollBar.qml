import QtQuick
import QtQuick.Templates as T

// A scroll bar that is there only while there is something to scroll, and grows under the pointer.
T.ScrollBar {
    id: bar

    Accessible.ignored: true
    implicitHeight: orientation === Qt.Vertical ? 100 : 12
    implicitWidth: orientation === Qt.Vertical ? 12 : 100
    minimumSize: 0.06
    padding: 3
    visible: size < 1

    contentItem: Rectangle {
        color: Theme.textTertiary
        implicitHeight: 6
        implicitWidth: 6
        opacity: bar.pressed ? 0.7 : bar.hovered || bar.active ? 0.5 : 0.25
        radius: 3

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.animation
            }
        }
    }
}
