pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// What is open at this moment, or the state where nothing is: `value` is a `LiveActivityRow`.
ColumnLayout {
    id: live

    required property var value
    readonly property var focusLine: value.focus
    readonly property bool isSession: focusLine.kind === "session"

    spacing: Theme.s

    RowLayout {
        Accessible.description: live.isSession ? live.focusLine.title : ""
        Accessible.name: live.isSession ? live.focusLine.appName : live.focusLine.label
        Accessible.role: Accessible.StaticText
        Layout.fillWidth: true
        spacing: Theme.m

        RowIcon {
            icon: live.isSession ? live.focusLine.icon : {
                "kind": "symbol",
                "symbol": live.focusLine.symbol
            }
            size: Theme.scaled(30)
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1

            Line {
                Accessible.ignored: true
                Layout.fillWidth: true
                font: Theme.bodyStrong
                text: live.isSession ? live.focusLine.appName : live.focusLine.label
            }

            Line {
                id: title

                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.small
                text: live.isSession ? live.focusLine.title : ""
                visible: text !== ""

                Help {
                    text: title.truncated ? title.text : ""
                }
            }
        }

        VideoThumbnail {
            Layout.preferredHeight: implicitHeight
            Layout.preferredWidth: Theme.scaled(64)
            value: live.focusLine.thumbnail ?? ({})
            visible: live.focusLine.thumbnail !== undefined
        }
    }

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        id: column

        Layout.fillWidth: true
        spacing: Theme.s
        visible: live.value.alongside.length > 0

        Repeater {
            model: RowsModel {
                rows: live.value.alongside
            }

            RowLayout {
                id: line

                required property var row

                Accessible.description: row.badge?.title ?? ""
                Accessible.name: row.title !== "" ? row.title : row.appName
                Accessible.role: Accessible.StaticText
                spacing: Theme.m
                width: column.width

                Item {
                    implicitHeight: Theme.scaled(20)
                    implicitWidth: Theme.scaled(30)

                    RowIcon {
                        anchors.centerIn: parent
                        icon: line.row.icon
                        size: Theme.scaled(20)
                    }
                }

                Line {
                    id: words

                    Accessible.ignored: true
                    Layout.fillWidth: true
                    color: Theme.textSecondary
                    font: Theme.small
                    text: line.row.title !== "" ? line.row.title : line.row.appName

                    Help {
                        text: words.whole
                    }
                }

                AlongsideBadge {
                    Accessible.ignored: true
                    value: line.row.badge ?? ({})
                    visible: line.row.badge !== undefined
                }
            }
        }
    }
}
