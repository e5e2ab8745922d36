import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A button with words, and with a symbol where it has one. `prominent` for the one that a page is about, `quiet` for
// those that stand in text.
T.Button {
    id: button

    property string symbol: ""
    property bool symbolAtEnd: false
    property bool prominent: false
    property bool quiet: false
    property string help: ""
    property string keys: "" // that do the same
    readonly property color ink: prominent ? Theme.accentText : quiet ? Theme.accent : Theme.text

    Accessible.description: help
    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: button.clicked()
    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    font: Theme.bodyStrong
    hoverEnabled: true
    implicitHeight: quiet ? Theme.scaled(24) : Theme.controlHeight
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: quiet ? Theme.xs + 2 : Theme.m
    opacity: enabled ? 1 : 0.45
    rightPadding: leftPadding

    background: ButtonGround {
        border.color: button.prominent || button.quiet ? "transparent" : Theme.cardBorder
        border.width: button.prominent || button.quiet ? 0 : 1
        control: button
        restColor: button.prominent ? Theme.accent : button.quiet ? "transparent" : Theme.card
    }
    contentItem: RowLayout {
        layoutDirection: button.symbolAtEnd !== button.mirrored ? Qt.RightToLeft : Qt.LeftToRight
        LayoutMirroring.enabled: false
        spacing: Theme.xs + 2

        Symbol {
            color: button.ink
            mirrored: button.mirrored
            name: button.symbol
            size: Theme.scaled(button.quiet ? 13 : 15)
            visible: name !== ""
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: button.ink
            font: button.font
            horizontalAlignment: Text.AlignHCenter
            text: button.text
        }
    }

    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    Help {
        keys: button.keys
        text: button.help
    }
}
