import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A row of a panel's list: on one line the icon, the title over its bar, and the duration.
Item {
    id: usage

    required property var row

    Accessible.name: [row.title, row.duration].filter(text => text).join(", ")
    Accessible.role: Accessible.ListItem
    implicitHeight: Theme.scaled(26)

    RowLayout {
        anchors.fill: parent
        spacing: Theme.s + 2

        RowIcon {
            icon: usage.row.icon
            size: Theme.scaled(20)
            tint: Theme.named(usage.row.tint)
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Line {
                id: title

                Accessible.ignored: true
                Layout.fillWidth: true
                font: Theme.small
                text: usage.row.title
            }

            UsageBar {
                Layout.fillWidth: true
                fraction: usage.row.fraction
                implicitHeight: 3
                tint: Theme.named(usage.row.tint)
            }
        }

        Line {
            Accessible.ignored: true
            Layout.minimumWidth: Theme.scaled(52)
            color: Theme.textSecondary
            font: Theme.small
            horizontalAlignment: Text.AlignRight
            text: usage.row.duration
        }
    }

    Help {
        text: title.truncated ? title.text : ""
    }
}
