pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import QtQuick.Templates as T
import Kestrio.Design
import Kestrio.Window

// The rules' editor over the page that asked for it.
T.Dialog {
    id: sheet

    required property ProjectRulesModel rules
    required property string done
    property Item opener: null // had the keyboard before

    anchors.centerIn: T.Overlay.overlay
    closePolicy: T.Popup.CloseOnEscape
    dim: true
    focus: true
    height: Math.min(Theme.scaled(520), (parent?.height ?? 0) - 2 * Theme.l)
    modal: true
    padding: Theme.xl
    width: Math.min(Theme.scaled(620), (parent?.width ?? 0) - 2 * Theme.l)

    onAboutToShow: opener = parent.Window.activeFocusItem
    onClosed: opener?.forceActiveFocus(Qt.PopupFocusReason)

    T.Overlay.modal: Rectangle {
        color: Theme.faded(Theme.shadow, 4)
    }
    background: Rectangle {
        Accessible.ignored: true
        border.color: Theme.cardBorder
        color: Theme.window
        radius: Theme.radius
    }
    contentItem: ColumnLayout {
        Accessible.name: sheet.title
        Accessible.role: Accessible.Dialog
        spacing: Theme.l

        Line {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            font: Theme.title
            text: sheet.title
        }

        ProjectRulesEditor {
            Layout.fillHeight: true
            Layout.fillWidth: true
            rules: sheet.rules
        }

        PlainButton {
            Layout.alignment: Qt.AlignRight
            prominent: true
            text: sheet.done

            onClicked: sheet.close()
        }
    }
}
