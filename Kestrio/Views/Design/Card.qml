import QtQuick
import QtQuick.Layouts

// A titled panel: its content stands below the head, `accessory` at the head's end, or below it where there is no room.
Rectangle {
    id: card

    default property alias content: body.data
    property alias accessory: accessoryHolder.data
    property string title: ""
    property string symbol: ""
    property real padding: Theme.l
    property alias spacing: body.spacing

    Accessible.name: title
    Accessible.role: Accessible.Grouping
    border.color: Theme.cardBorder
    color: Theme.card
    implicitHeight: column.implicitHeight + 2 * padding
    implicitWidth: column.implicitWidth + 2 * padding
    radius: Theme.radius

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: card.padding
        spacing: Theme.m

        GridLayout {
            id: top

            readonly property bool isStacked: head.implicitWidth + columnSpacing + accessoryHolder.implicitWidth > card.width - 2 * card.padding

            Layout.fillWidth: true
            Layout.minimumHeight: Theme.scaled(22)
            columnSpacing: Theme.s
            columns: isStacked ? 1 : 2
            rowSpacing: Theme.s
            visible: card.title !== ""

            RowLayout {
                id: head

                Layout.fillWidth: true
                spacing: Theme.s

                Symbol {
                    color: Theme.textSecondary
                    name: card.symbol
                    size: Theme.scaled(16)
                    visible: name !== ""
                }

                Line {
                    Accessible.name: text
                    Accessible.role: Accessible.Heading
                    Layout.fillWidth: true
                    font: Theme.headline
                    text: card.title
                }
            }

            RowLayout {
                id: accessoryHolder

                Layout.fillWidth: top.isStacked
                spacing: Theme.s
            }
        }

        ColumnLayout {
            id: body

            Layout.fillHeight: true
            Layout.fillWidth: true
            spacing: Theme.s
        }
    }
}
