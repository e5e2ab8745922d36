// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified

import QtQuick
import Kestrio.Design
import Kestrio.Window

// Pauses the recording for a while, or resumes it.
Loader {
    id: control

    required property DashboardModel model
    property bool isCompact: false
    readonly property var value: model.pauseControl
    readonly property bool isPaused: value?.kind === "resume"

    sourceComponent: isPaused ? resume : menu

    Component {
        id: menu

        MenuButton {
            compact: control.isCompact
            entries: control.value?.entries ?? []
            focus: true // where the other one had it
            symbol: control.value?.symbol ?? ""
            text: control.value?.title ?? ""

            onChosen: index => {
                // The other one takes its place, and the keyboard.
                control.forceActiveFocus(Qt.PopupFocusReason);
                control.model.pause(index);
            }
        }
    }

    Component {
        id: resume

        PlainButton {
            Accessible.name: control.value?.title ?? ""
            focus: true
            help: control.isCompact ? control.value?.title ?? "" : ""
            prominent: true
            symbol: control.value?.symbol ?? ""
            text: control.value?.title ?? ""

            onClicked: control.model.resume()
        }
    }
}
