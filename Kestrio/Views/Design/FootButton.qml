import QtQuick
import QtQuick.Templates as T

// Small words that can be pressed.
T.Button {
    id: button

    Accessible.name: text
    Accessible.onPressAction: button.clicked()
    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    font: Theme.caption
    hoverEnabled: true
    implicitHeight: Theme.scaled(24)
    implicitWidth: implicitContentWidth + 2 * Theme.xs

    background: Item {
        FocusRing {
            anchors.margins: 0
            shown: button.activeFocus
        }
    }
    contentItem: Line {
        Accessible.ignored: true
        color: button.hovered ? Theme.text : Theme.textTertiary
        font: button.font
        horizontalAlignment: Text.AlignHCenter
        text: button.text
    }

    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()
}
