import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The head of a day in the timeline.
Item {
    id: day

    required property var value

    implicitHeight: row.implicitHeight + Theme.l + Theme.xs

    RowLayout {
        id: row

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.xs
        anchors.left: parent.left
        anchors.leftMargin: Theme.xl
        anchors.right: parent.right
        anchors.rightMargin: Theme.xl
        spacing: Theme.s

        Line {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            font: Theme.headline
            text: day.value.title
        }

        Line {
            color: Theme.textSecondary
            text: day.value.total

            Help {
                text: day.value.totalHelp
            }
        }
    }
}
