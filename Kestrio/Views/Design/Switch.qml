import QtQuick
import QtQuick.Templates as T

// On or off, with its words beside it.
T.Switch {
    id: control

    readonly property real trackWidth: Theme.scaled(34)
    readonly property real trackHeight: Theme.scaled(20)

    function press() {
        toggle();
        toggled();
        clicked();
    }

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.name: text
    Accessible.role: Accessible.CheckBox
    Accessible.onPressAction: press()
    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    font: Theme.body
    hoverEnabled: true
    implicitHeight: Math.max(Theme.controlHeight, implicitContentHeight)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: mirrored ? 0 : trackWidth + (text === "" ? 0 : Theme.s)
    opacity: enabled ? 1 : 0.45
    rightPadding: mirrored ? trackWidth + (text === "" ? 0 : Theme.s) : 0

    contentItem: Line {
        Accessible.ignored: true
        font: control.font
        text: control.text
    }
    indicator: Rectangle {
        border.color: control.checked ? "transparent" : Theme.isHighContrast ? Theme.cardBorder : "transparent"
        color: control.checked ? Theme.accent : Theme.isDark ? Theme.pressed : Theme.faded(Theme.textTertiary, 0.45)
        height: control.trackHeight
        radius: height / 2
        width: control.trackWidth
        x: control.mirrored ? control.width - width : 0
        y: (control.height - height) / 2

        Rectangle {
            color: control.checked ? Theme.accentText : "#ffffff"
            height: parent.height - 4
            radius: height / 2
            width: height
            x: 2 + (control.mirrored ? 1 - control.position : control.position) * (parent.width - width - 4)
            y: 2

            Behavior on x {
                NumberAnimation {
                    duration: Theme.animation
                }
            }
        }

        FocusRing {
            radius: parent.radius + 2
            shown: control.activeFocus
        }
    }

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()
}
