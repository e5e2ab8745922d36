import QtQuick
import QtQuick.Layouts

// A titled panel: its content stands below the head, `accessory` at the head's end.
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

        RowLayout {
            Layout.fillWidth: true
            Layout.minimumHeight: Theme.scaled(22)
            spacing: Theme.s
            visible: card.title !== ""

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
                Layout.minimumWidth: Math.min(Math.ceil(implicitWidth), card.width * 0.45)
                font: Theme.headline
                text: card.title
            }

            RowLayout {
                id: accessoryHolder

                // What can be narrower makes room for the title.
                Layout.fillWidth: true
                Layout.maximumWidth: implicitWidth
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
