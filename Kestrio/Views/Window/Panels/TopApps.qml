pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The applications that use the most, and by what they are ranked: `value` is a `TopApps`.
ColumnLayout {
    id: apps

    required property var value
    required property var modes

    signal ranked(string mode)

    spacing: Theme.xs

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.s

        Line {
            id: title

            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            color: Theme.textSecondary
            font: Theme.small
            text: apps.value.title

            Help {
                text: apps.value.help
            }
        }

        SegmentedControl {
            choices: apps.modes
            help: apps.value.picker

            onChosen: index => apps.ranked(apps.modes[index].mode)

            Help {
                text: apps.value.pickerHelp ?? ""
            }
        }
    }

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        id: column

        Layout.fillWidth: true
        spacing: Theme.xs
        visible: apps.value.rows.length > 0

        Repeater {
            model: RowsModel {
                rows: apps.value.rows
            }

            Item {
                id: app

                required property var row

                Accessible.description: row.tip ?? ""
                Accessible.name: [row.name, row.figure].join(", ")
                Accessible.role: Accessible.ListItem
                implicitHeight: Theme.scaled(24)
                width: column.width

                RowLayout {
                    anchors.fill: parent
                    spacing: Theme.s + 2

                    RowIcon {
                        icon: app.row.icon
                        size: Theme.scaled(18)
                    }

                    Line {
                        Accessible.ignored: true
                        Layout.fillWidth: true
                        font: Theme.small
                        text: app.row.name
                    }

                    Line {
                        Accessible.ignored: true
                        color: Theme.textSecondary
                        font: Theme.small
                        text: app.row.figure
                    }
                }

                Help {
                    text: app.row.tip ?? ""
                }
            }
        }
    }

    Line {
        Layout.fillWidth: true
        color: Theme.textSecondary
        font: Theme.small
        text: apps.value.emptyText ?? ""
        visible: text !== ""
    }
}
