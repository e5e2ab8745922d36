import QtQuick
import QtQuick.Layouts

// One figure: what it is, how much, and a line about it.
Rectangle {
    id: card

    required property var value

    Accessible.description: value.help ?? ""
    Accessible.name: [value.title, value.value, value.detail].filter(text => text).join(", ")
    Accessible.role: Accessible.StaticText
    border.color: Theme.cardBorder
    color: Theme.card
    implicitHeight: column.implicitHeight + 2 * Theme.m + 2
    implicitWidth: Theme.scaled(148)
    radius: Theme.radius

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.margins: Theme.m + 2
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: Theme.m
        spacing: Theme.xs

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.xs + 2

            Symbol {
                color: Theme.named(card.value.tint ?? "gray")
                name: card.value.symbol ?? ""
                size: Theme.scaled(14)
            }

            Line {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.small
                text: card.value.title ?? ""
            }
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            font: Theme.figure
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Theme.body.pixelSize
            text: card.value.value ?? ""
        }

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            font: Theme.caption
            text: card.value.detail ?? " "
        }
    }

    Help {
        text: card.value.help ?? ""
    }
}
