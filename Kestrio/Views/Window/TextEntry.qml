import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// A field for one line of text, with words in it that say what for while it is empty.
T.TextField {
    id: field

    property string prompt: ""

    Accessible.name: prompt
    Accessible.role: Accessible.EditableText
    color: Theme.text
    font: Theme.body
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: Theme.scaled(160)
    leftPadding: Theme.s + 2
    rightPadding: Theme.s + 2
    selectByMouse: true
    selectedTextColor: Theme.accentText
    selectionColor: Theme.accent
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: field.activeFocus ? Theme.focusRing : Theme.cardBorder
        border.width: field.activeFocus ? 2 : 1
        color: Theme.card
        radius: Theme.radiusSmall
    }

    Line {
        Accessible.ignored: true
        anchors.fill: parent
        anchors.leftMargin: field.leftPadding
        anchors.rightMargin: field.rightPadding
        color: Theme.textTertiary
        text: field.prompt
        visible: field.text === "" && field.preeditText === ""
    }
}
