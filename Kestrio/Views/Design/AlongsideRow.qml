import QtQuick
import QtQuick.Layouts

// A thing that played alongside.
DividedRow {
    id: alongside

    required property var row

    Accessible.description: [row.badge?.title, row.detail].filter(text => text).join(", ")
    Accessible.name: [row.title, row.duration].filter(text => text).join(", ")
    Accessible.role: Accessible.ListItem

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        RowIcon {
            icon: alongside.row.icon
            size: Theme.scaled(28)
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Line {
                id: title

                Accessible.ignored: true
                Layout.fillWidth: true
                text: alongside.row.title ?? ""
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.xs + 2

                AlongsideBadge {
                    Accessible.ignored: true
                    value: alongside.row.badge ?? ({})
                    visible: alongside.row.badge !== undefined
                }

                Line {
                    id: detail

                    Accessible.ignored: true
                    Layout.fillWidth: true
                    color: Theme.textTertiary
                    font: Theme.caption
                    maximumLineCount: 2
                    text: alongside.row.detail ?? ""
                    wrapMode: Text.Wrap
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: false
            Layout.preferredWidth: Theme.scaled(88)
            spacing: Theme.xs + 1

            Line {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textSecondary
                horizontalAlignment: Text.AlignRight
                text: alongside.row.duration ?? ""
            }

            UsageBar {
                Layout.fillWidth: true
                fraction: alongside.row.fraction ?? 0
                tint: Theme.purple
            }
        }
    }

    Help {
        lines: [title.whole, detail.whole]
    }
}
