// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design

// A button that opens a menu of `entries`: maps with `title`, and where there are any `isCurrent`, `symbol`, `isEnabled`,
// `isSeparator`, `isHeading`. Choosing one emits its place.
T.Button {
    id: button

    property var entries: []
    property string symbol: ""
    property string help: ""
    property bool quiet: false
    property bool compact: false // the symbol alone
    property color ink: Theme.text
    property color ground: quiet ? "transparent" : Theme.card
    readonly property bool isOpen: (menuLoader.item as T.Menu)?.opened ?? false

    signal chosen(int index)

    function open() {
        menuLoader.active = true;
        const menu = menuLoader.item as PopupMenu;
        menu.popup(button, mirrored ? width - menu.width : 0, height + Theme.xs);
        menu.goToCurrent();
    }

    Accessible.description: help
    Accessible.name: text !== "" ? text : help
    Accessible.role: Accessible.ButtonMenu
    Accessible.onPressAction: open()
    activeFocusOnTab: true
    down: pressed || isOpen
    focusPolicy: Qt.TabFocus
    font: Theme.bodyStrong
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: compact ? Theme.s : Theme.m - 2
    opacity: enabled ? 1 : 0.45
    rightPadding: leftPadding

    background: ButtonGround {
        border.color: button.quiet ? "transparent" : Theme.cardBorder
        border.width: button.quiet ? 0 : 1
        control: button
        restColor: button.ground
    }
    contentItem: RowLayout {
        spacing: Theme.xs + 2

        Symbol {
            color: button.ink
            mirrored: button.mirrored
            name: button.symbol
            size: Theme.scaled(15)
            visible: name !== ""
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: button.ink
            font: button.font
            text: button.text
            visible: !button.compact && text !== ""
        }

        Symbol {
            color: button.ink
            name: Words.menuSymbol
            opacity: 0.7
            size: Theme.scaled(13)
        }
    }

    Keys.onDownPressed: open()
    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()
    onClicked: open()

    Help {
        text: button.isOpen ? "" : button.help
    }

    Loader {
        id: menuLoader

        active: false
        sourceComponent: PopupMenu {
            entries: button.entries

            onChosen: index => button.chosen(index)
        }
    }
}
