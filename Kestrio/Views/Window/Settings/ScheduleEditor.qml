pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// One schedule: its name and switch, when it holds, and what it says of which application.
Rectangle {
    id: editor

    required property OptimizationSettingsModel tab
    required property var row
    readonly property var words: tab.words

    Accessible.name: row.name
    Accessible.role: Accessible.Grouping
    Layout.fillWidth: true
    border.color: Theme.cardBorder
    color: Theme.card
    implicitHeight: column.implicitHeight + 2 * Theme.m
    radius: Theme.radius

    ColumnLayout {
        id: column

        anchors.left: parent.left
        anchors.leftMargin: Theme.l
        anchors.right: parent.right
        anchors.rightMargin: Theme.l
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.m

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.m

            TextEntry {
                id: name

                Layout.fillWidth: true
                Layout.maximumWidth: Theme.scaled(260)
                prompt: editor.words.name

                Component.onCompleted: text = editor.row.name
                onTextEdited: editor.tab.rename(editor.row.id, text)
            }

            Item {
                Layout.fillWidth: true
            }

            Switch {
                Accessible.name: editor.row.name
                checked: editor.row.isEnabled

                onToggled: editor.tab.enable(editor.row.id, checked)
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: Theme.l

            Row {
                spacing: Theme.s

                Line {
                    anchors.verticalCenter: parent.verticalCenter
                    text: editor.words.from
                }

                TimeField {
                    Accessible.name: editor.words.from
                    time: editor.row.start

                    onMoved: minutes => editor.tab.moveStart(editor.row.id, minutes)
                    onTyped: typed => editor.tab.setStart(editor.row.id, typed)
                }

                Line {
                    anchors.verticalCenter: parent.verticalCenter
                    text: editor.words.to
                }

                TimeField {
                    Accessible.name: editor.words.to
                    time: editor.row.end

                    onMoved: minutes => editor.tab.moveEnd(editor.row.id, minutes)
                    onTyped: typed => editor.tab.setEnd(editor.row.id, typed)
                }
            }

            WeekdayToggles {
                days: editor.row.weekdays

                onToggled: (number, on) => editor.tab.setWeekday(editor.row.id, number, on)
            }
        }

        // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
        Column {
            id: chosen

            Layout.fillWidth: true
            visible: apps.count > 0

            Repeater {
                id: apps

                model: RowsModel {
                    rows: editor.row.apps
                }

                RowLayout {
                    id: app

                    required property var row

                    spacing: Theme.xs
                    width: chosen.width

                    SettingRow {
                        Layout.fillWidth: true
                        row: app.row

                        onChosen: place => editor.tab.chooseTier(editor.row.id, app.row.id, place)
                    }

                    IconButton {
                        Accessible.description: app.row.title
                        help: editor.words.remove
                        symbol: editor.words.removeSymbol

                        onClicked: editor.tab.removeApp(editor.row.id, app.row.id)
                    }
                }
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: Theme.s

            MenuButton {
                enabled: entries.length > 0
                entries: editor.row.addable
                text: editor.words.addApp

                onChosen: index => editor.tab.addApp(editor.row.id, entries[index].id)
            }

            PlainButton {
                symbol: editor.words.deleteSymbol
                text: editor.words.deleteSchedule

                onClicked: editor.tab.removeSchedule(editor.row.id)
            }
        }
    }

    Connections {
        function onRowChanged() {
            if (!name.activeFocus)
                name.text = editor.row.name;
        }

        target: editor
    }
}
