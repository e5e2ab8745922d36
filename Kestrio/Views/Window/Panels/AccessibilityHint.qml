import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// That titles cannot be read, and what can be done about it once somebody asks: `value` is a `PanelWarning`.
Rectangle {
    id: hint

    required property var value

    signal asked

    Accessible.description: value.advice ?? ""
    Accessible.name: value.text ?? ""
    Accessible.role: Accessible.AlertMessage
    border.color: Theme.isHighContrast ? Theme.warning : "transparent"
    color: Theme.isHighContrast ? Theme.card : Theme.faded(Theme.warning, Theme.isDark ? 0.14 : 0.12)
    implicitHeight: column.implicitHeight + 2 * Theme.s
    radius: Theme.radius

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.margins: Theme.m
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.xs

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.s

            Symbol {
                color: Theme.warning
                name: hint.value.symbol ?? ""
                size: Theme.scaled(16)
            }

            Paragraph {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.text
                font: Theme.small
                text: hint.value.text ?? ""
            }

            PlainButton {
                text: hint.value.button ?? ""
                visible: hint.value.advice === undefined

                onClicked: hint.asked()
            }
        }

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            font: Theme.small
            text: hint.value.advice ?? ""
            visible: text !== ""
        }
    }
}
