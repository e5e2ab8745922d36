import QtQuick
import QtQuick.Layouts

// A row with a bar below its title and the duration at its end.
DividedRow {
    id: usage

    required property var row
    property real iconSize: Theme.scaled(28)

    Accessible.description: row.subtitle ?? ""
    Accessible.name: [row.title, row.duration].filter(text => text).join(", ")
    Accessible.role: Accessible.ListItem
    verticalPadding: Theme.xs + 1

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        RowIcon {
            Layout.alignment: Qt.AlignVCenter
            icon: usage.row.icon
            size: usage.iconSize
            tint: Theme.named(usage.row.tint ?? "gray")
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Theme.xs

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.s

                Line {
                    id: title

                    Accessible.ignored: true
                    Layout.fillWidth: true
                    text: usage.row.title ?? ""
                }

                Line {
                    Accessible.ignored: true
                    color: Theme.textSecondary
                    font: Theme.body
                    text: usage.row.duration ?? ""
                }
            }

            UsageBar {
                Layout.fillWidth: true
                fraction: usage.row.fraction ?? 0
                tint: Theme.named(usage.row.tint ?? "gray")
            }

            Line {
                id: subtitle

                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textTertiary
                font: Theme.caption
                text: usage.row.subtitle ?? ""
                visible: text !== ""
            }
        }
    }

    Help {
        lines: [title.whole, subtitle.whole]
    }
}
