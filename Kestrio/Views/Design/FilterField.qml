import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// A search field: what is typed is `text` at once; Escape or the button at its end clears it.
T.TextField {
    id: field

    property string prompt: Words.filterPrompt
    readonly property real symbolRoom: Theme.scaled(16) + 2 * Theme.s - 2

    Accessible.name: prompt
    Accessible.role: Accessible.EditableText
    Accessible.searchEdit: true
    color: Theme.text
    font: Theme.body
    horizontalAlignment: TextInput.AlignLeft
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: Theme.scaled(180)
    leftPadding: symbolRoom
    rightPadding: symbolRoom
    selectByMouse: true
    selectedTextColor: Theme.accentText
    selectionColor: Theme.accent
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: field.activeFocus ? Theme.focusRing : Theme.cardBorder
        border.width: field.activeFocus ? 2 : 1
        color: Theme.card
        radius: Theme.radiusSmall

        Symbol {
            anchors.left: parent.left
            anchors.leftMargin: Theme.s - 1
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.textTertiary
            name: Words.filterSymbol
            size: Theme.scaled(15)
        }
    }

    Keys.onEscapePressed: event => {
        event.accepted = text !== "";
        clear();
    }

    Line {
        Accessible.ignored: true
        anchors.left: parent.left
        anchors.leftMargin: field.symbolRoom
        anchors.right: parent.right
        anchors.rightMargin: Theme.s
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textTertiary
        text: field.prompt
        visible: field.text === "" && field.preeditText === ""
    }

    IconButton {
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        help: Words.clearFilter
        ink: Theme.textTertiary
        size: field.height - 4
        symbol: Words.clearFilterSymbol
        symbolSize: Theme.scaled(14)
        visible: field.text !== ""

        HoverHandler {
            cursorShape: Qt.ArrowCursor
        }

        onClicked: {
            field.clear();
            field.forceActiveFocus();
        }
    }
}
