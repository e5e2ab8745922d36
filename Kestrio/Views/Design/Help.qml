// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// The help text of its parent, which shows when the pointer rests on it or the keyboard is on it.
Loader {
    id: help

    property var lines: [] // instead of one text; empty and absent ones are left out
    property string text: lines.filter(line => line).join("\n")
    property string keys: "" // that do the same
    readonly property bool hasKeyboard: LastInput.wasKey && (control?.activeFocus ?? false)
    readonly property bool wanted: text !== "" && (pointer.hovered || hasKeyboard)
    readonly property T.Control control: parent as T.Control

    active: false
    sourceComponent: HelpTip {
        keys: help.keys
        parent: help.parent
        text: help.text
        visible: help.wanted
    }

    onWantedChanged: {
        if (wanted)
            active = true;
    }

    HoverHandler {
        id: pointer

        parent: help.parent
    }
}
