import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// One title within a block that is open.
Item {
    id: entry

    required property var value
    required property real rangeWidth // of the blocks' times, which these rows leave room for
    required property real timeWidth

    Accessible.focusable: true
    Accessible.name: [value.time, value.title, value.duration].join(", ")
    Accessible.role: Accessible.ListItem
    implicitHeight: row.implicitHeight + Theme.s

    FocusRing {
        anchors.leftMargin: Theme.l
        anchors.margins: 0
        anchors.rightMargin: Theme.l
        shown: entry.activeFocus
    }

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Theme.xl
        anchors.right: parent.right
        anchors.rightMargin: Theme.xl
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.m

        Item {
            Layout.preferredWidth: entry.width < Theme.scaled(480) ? 3 : entry.rangeWidth + 3 + Theme.m
        }

        Line {
            Accessible.ignored: true
            Layout.preferredWidth: entry.timeWidth
            color: Theme.textTertiary
            font: Theme.small
            text: entry.value.time
        }

        Line {
            id: title

            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.textSecondary
            text: entry.value.title
        }

        Line {
            Accessible.ignored: true
            Layout.preferredWidth: Theme.scaled(76)
            Layout.rightMargin: Theme.scaled(14) + Theme.m
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignRight
            text: entry.value.duration
        }
    }

    Help {
        text: title.truncated ? title.text : ""
    }
}
