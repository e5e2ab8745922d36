import QtQuick
import QtQuick.Layouts

// A row of a detail list: title, second line, what is told of it, a link where it has one, duration and bar.
DividedRow {
    id: item

    required property var row
    property color tint: Theme.accent

    Accessible.description: row.detail ?? ""
    Accessible.name: [row.title, row.duration].filter(text => text).join(", ")
    Accessible.role: Accessible.ListItem

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Line {
                id: title

                Accessible.ignored: true
                Layout.fillWidth: true
                text: item.row.title ?? ""
            }

            Line {
                id: subtitle

                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textSecondary
                elide: Text.ElideMiddle
                font: Theme.caption
                text: item.row.subtitle ?? ""
                visible: text !== ""
            }

            Line {
                id: detail

                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textTertiary
                font: Theme.caption
                maximumLineCount: 2
                text: item.row.detail ?? ""
                visible: text !== ""
                wrapMode: Text.Wrap
            }
        }

        OpenLinkButton {
            Accessible.description: item.row.title ?? ""
            link: item.row.link ?? ""
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
                text: item.row.duration ?? ""
            }

            UsageBar {
                Layout.fillWidth: true
                fraction: item.row.fraction ?? 0
                tint: item.tint
            }
        }
    }

    Help {
        lines: [title.whole, subtitle.whole, detail.whole]
    }
}
