// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T

// The help text of its parent, which shows when the pointer rests on it or the keyboard is on it.
Loader {
    id: help

    property var lines: [] // instead of one text; empty and absent ones are left out
    property string text: lines.filter(line => line).join("\n")
    readonly property bool wanted: text !== "" && (pointer.hovered || (control?.visualFocus ?? false))
    readonly property T.Control control: parent as T.Control

    active: false
    sourceComponent: HelpTip {
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
