import QtQuick
import Kestrio.Charts
import Kestrio.Design

// One day: its name, its strip, and below it the line of what played alongside.
Item {
    id: row

    required property int day
    required property StripPointer pointer
    required property real labelWidth
    readonly property var strips: pointer.strips
    readonly property var label: strips.dayLabel(day)

    Item {
        id: names

        Accessible.name: row.label.help ?? (row.label.title ?? "") + ", " + (row.label.detail ?? "")
        Accessible.role: Accessible.StaticText
        anchors.left: parent.left
        height: row.strips.stripHeight
        implicitHeight: lines.implicitHeight
        width: row.labelWidth

        Column {
            id: lines

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter

            Line {
                Accessible.ignored: true
                font: row.strips.isDense ? Theme.caption : Theme.small
                text: row.label.title ?? ""
                width: parent.width
            }

            Line {
                Accessible.ignored: true
                color: Theme.textTertiary
                font: Theme.caption
                text: row.label.detail ?? ""
                visible: text !== ""
                width: parent.width
            }
        }

        Help {
            text: row.label.help ?? ""
        }
    }

    StripCanvas {
        id: strip

        anchors.left: names.right
        anchors.right: parent.right
        day: row.day
        height: row.strips.stripHeight
        palette: ChartTheme
        pointer: row.pointer
    }

    StripCanvas {
        anchors.left: strip.left
        anchors.right: parent.right
        anchors.top: strip.bottom
        anchors.topMargin: 2
        day: row.day
        height: row.strips.mediaHeight
        isAlongside: true
        palette: ChartTheme
        pointer: row.pointer
        visible: row.strips.showsAlongside
    }
}
