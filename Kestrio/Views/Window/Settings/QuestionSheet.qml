pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design

// Asks before something that cannot be undone, as long as `value` is there: it has `title`, `text`, `confirm` and
// `cancel`.
T.Dialog {
    id: sheet

    required property var value

    signal answered(bool yes)

    anchors.centerIn: T.Overlay.overlay
    closePolicy: T.Popup.CloseOnEscape
    dim: true
    focus: true
    modal: true
    padding: Theme.xl
    visible: value !== undefined
    width: Math.min(Theme.scaled(420), (parent?.width ?? 0) - 2 * Theme.l)

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
        Accessible.name: sheet.value?.title ?? ""
        Accessible.role: Accessible.Dialog
        spacing: Theme.m

        Paragraph {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            color: Theme.text
            font: Theme.headline
            text: sheet.value?.title ?? ""
        }

        Paragraph {
            Layout.fillWidth: true
            text: sheet.value?.text ?? ""
        }

        Flow {
            Layout.fillWidth: true
            Layout.topMargin: Theme.s
            layoutDirection: Qt.RightToLeft
            spacing: Theme.s

            PlainButton {
                id: confirm

                prominent: true
                text: sheet.value?.confirm ?? ""

                onClicked: sheet.answered(true)
            }

            PlainButton {
                id: cancel

                focus: true
                text: sheet.value?.cancel ?? ""

                onClicked: sheet.answered(false)
            }
        }
    }

    onClosed: {
        if (value !== undefined)
            answered(false);
    }
}
