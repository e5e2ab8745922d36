import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// One figure of the machine: `value` is a `SystemTile`, with the recent trend where it has one.
Rectangle {
    id: tile

    required property var row
    readonly property color tone: Theme.tone(row.tone)
    readonly property bool isCalm: row.tone === "good"

    Accessible.name: [row.title, row.value, row.detail].filter(text => text).join(", ")
    Accessible.role: Accessible.StaticText
    border.color: isCalm ? Theme.cardBorder : Theme.faded(tone, 0.5)
    color: Theme.card
    implicitHeight: column.implicitHeight + 2 * (Theme.s + 2)
    radius: Theme.radius

    // Beside the figure, where no words are.
    Sparkline {
        anchors.right: parent.right
        anchors.rightMargin: Theme.s + 2
        anchors.top: parent.top
        anchors.topMargin: Theme.s + 2
        color: tile.tone
        height: Theme.scaled(34)
        opacity: 0.7
        values: tile.row.trend
        visible: values.length > 1
        width: Math.round(parent.width * 0.45)
    }

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.margins: Theme.s + 2
        anchors.right: parent.right
        anchors.top: parent.top
        spacing: 1

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.xs + 2

            Symbol {
                color: tile.tone
                name: tile.row.symbol
                size: Theme.scaled(14)
            }

            Line {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.small
                text: tile.row.title
            }
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: tile.isCalm ? Theme.text : tile.tone
            font: Theme.title
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Theme.small.pixelSize
            text: tile.row.value
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.textSecondary
            font: Theme.caption
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Math.round(Theme.caption.pixelSize * 0.85)
            text: tile.row.detail
        }
    }
}
