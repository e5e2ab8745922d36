import QtQuick
import QtQuick.Templates as T

// A button that is a symbol alone; `help` says what it does, to the eye and to assistive technology.
T.Button {
    id: button

    property string symbol: ""
    property string help: ""
    property string keys: "" // that do the same
    property color ink: Theme.textSecondary
    property real size: Theme.controlHeight
    property real symbolSize: Theme.scaled(16)

    function press() {
        if (checkable) {
            toggle();
            toggled();
        }
        clicked();
    }

    Accessible.name: text !== "" ? text : help
    Accessible.onPressAction: press()
    activeFocusOnTab: true
    display: T.AbstractButton.IconOnly
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: size
    implicitWidth: size
    opacity: enabled ? 1 : 0.4

    background: ButtonGround {
        control: button
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            color: button.checked ? Theme.accent : button.hovered || button.down ? Theme.text : button.ink
            mirrored: button.mirrored
            name: button.symbol
            size: button.symbolSize
        }
    }

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    Help {
        keys: button.keys
        text: button.help !== "" ? button.help : button.text
    }
}
