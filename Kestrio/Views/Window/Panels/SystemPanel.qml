pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// How the machine is, what is worth saying about it, and who uses the most of it.
PanelWindow {
    id: window

    required property SystemPanelModel model
    readonly property var panel: model.panel
    readonly property bool hasReading: panel.message === undefined

    panelModel: model
    title: panel.header.title

    foot: [
        Repeater {
            model: RowsModel {
                rows: window.panel.buttons.filter(button => button.title !== "")
            }

            PlainButton {
                required property var row

                help: row.tip
                text: row.title

                onClicked: window.model.perform(row.action)
            }
        },
        Item {
            Layout.fillWidth: true
        },
        Repeater {
            model: RowsModel {
                rows: window.panel.buttons.filter(button => button.title === "")
            }

            IconButton {
                required property var row

                help: row.tip
                symbol: row.symbol

                onClicked: window.model.perform(row.action)
            }
        }
    ]
    head: RowLayout {
        Layout.bottomMargin: Theme.m
        spacing: Theme.m

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1

            Line {
                Accessible.name: text
                Accessible.role: Accessible.Heading
                Layout.fillWidth: true
                font: Theme.title
                text: window.panel.header.title
            }

            Line {
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.caption
                text: [window.panel.header.chip, window.panel.header.uptime].filter(text => text).join(" · ")
            }
        }

        Badge {
            text: window.panel.header.status
            tint: Theme.tone(window.panel.header.tone)
            visible: window.hasReading
        }
    }

    Line {
        Layout.fillWidth: true
        color: Theme.textSecondary
        text: window.panel.message ?? ""
        visible: !window.hasReading
    }

    GridLayout {
        Layout.fillWidth: true
        columnSpacing: Theme.s
        columns: 2
        rowSpacing: Theme.s
        visible: window.hasReading

        Repeater {
            model: RowsModel {
                rows: window.panel.tiles
            }

            SystemTile {
                Layout.preferredWidth: 1
                Layout.fillHeight: true
                Layout.fillWidth: true
            }
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.xs + 2
        visible: window.hasReading

        // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
        Column {
            id: insights

            Layout.fillWidth: true
            spacing: Theme.xs + 2

            Repeater {
                model: RowsModel {
                    rows: window.panel.insights
                }

                SymbolLine {
                    required property var row

                    symbol: row.symbol
                    text: row.text
                    tint: Theme.tone(row.tone)
                    width: insights.width
                }
            }
        }

        SymbolLine {
            Layout.fillWidth: true
            symbol: window.panel.battery?.symbol ?? ""
            text: [window.panel.battery?.figure, window.panel.battery?.words].filter(text => text).join(" · ")
            tint: Theme.tone(window.panel.battery?.tone ?? "neutral")
            visible: window.panel.battery !== undefined
        }
    }

    Hairline {
        Layout.fillWidth: true
        visible: window.hasReading
    }

    TopApps {
        Layout.fillWidth: true
        modes: window.panel.modes
        value: window.panel.topApps
        visible: window.hasReading

        onRanked: mode => window.model.rankBy(mode)
    }

    Hairline {
        Layout.fillWidth: true
        visible: window.hasReading
    }

    OptimizerStatus {
        Layout.fillWidth: true
        value: window.panel.optimizer
        visible: window.hasReading

        onResumeAll: window.model.resumeAll()
        onSettingsWanted: window.model.openOptimization()
    }

    Item {
        implicitHeight: 1
    }

    Shortcut {
        sequence: "Ctrl+,"

        onActivated: window.model.openSettings()
    }
}
