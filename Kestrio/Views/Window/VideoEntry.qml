import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A watched video: its picture or the place of one, what is told of it, and the way to it.
DividedRow {
    id: entry

    required property var row

    Accessible.description: [row.badge, row.detail].filter(text => text).join(", ")
    Accessible.name: [row.title, row.duration].filter(text => text).join(", ")
    Accessible.role: Accessible.ListItem

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        VideoThumbnail {
            Layout.preferredHeight: implicitHeight
            Layout.preferredWidth: Theme.scaled(72)
            value: entry.row.thumbnail
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            RowLayout {
                Layout.fillWidth: true
                spacing: Theme.s

                Line {
                    id: title

                    Accessible.ignored: true
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth + 1
                    text: entry.row.title ?? ""
                }

                Badge {
                    Accessible.ignored: true
                    text: entry.row.badge ?? ""
                    tint: Theme.red
                    visible: text !== ""
                }

                Symbol {
                    color: Theme.purple
                    name: entry.row.alongsideSymbol ?? ""
                    size: Theme.scaled(14)
                    visible: entry.row.alongsideHelp !== undefined

                    Help {
                        text: entry.row.alongsideHelp ?? ""
                    }
                }

                Item {
                    Layout.fillWidth: true
                }
            }

            Line {
                id: detail

                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textTertiary
                font: Theme.caption
                maximumLineCount: 2
                text: entry.row.detail ?? ""
                wrapMode: Text.Wrap
            }
        }

        OpenLinkButton {
            Accessible.description: entry.row.title ?? ""
            link: entry.row.link ?? ""
        }

        Line {
            Accessible.ignored: true
            Layout.minimumWidth: Theme.scaled(56)
            horizontalAlignment: Text.AlignRight
            text: entry.row.duration ?? ""
        }
    }

    Help {
        lines: [title.whole, detail.whole]
    }
}
