pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// Today at a glance, what is being recorded right now, and the ways on from there.
PanelWindow {
    id: window

    required property TodayPanelModel model
    readonly property var panel: model.panel

    panelModel: model
    title: panel.title

    foot: [
        PlainButton {
            help: window.panel.dashboard.help
            keys: window.panel.dashboard.keys
            prominent: true
            symbol: window.panel.dashboard.symbol
            text: window.panel.dashboard.title

            onClicked: window.model.openDashboard()
        },
        PlainButton {
            enabled: window.panel.pauseOrResume.isEnabled
            symbol: window.panel.pauseOrResume.symbol
            text: window.panel.pauseOrResume.title

            onClicked: window.model.pauseOrResume()
        },
        Item {
            Layout.fillWidth: true
        },
        IconButton {
            help: window.panel.settings.title
            keys: window.panel.settings.keys
            symbol: window.panel.settings.symbol

            onClicked: window.model.openSettings()
        },
        IconButton {
            Accessible.description: help
            Accessible.name: window.panel.quit.title
            enabled: window.panel.quit.isEnabled
            help: window.panel.quit.help
            keys: window.panel.quit.keys
            symbol: window.panel.quit.symbol

            onClicked: window.model.quit()
        }
    ]
    head: RowLayout {
        Layout.bottomMargin: Theme.m
        spacing: Theme.m

        ColumnLayout {
            spacing: 0

            Line {
                Accessible.name: text
                Accessible.role: Accessible.Heading
                color: Theme.textSecondary
                font: Theme.bodyStrong
                text: window.panel.title
            }

            Line {
                font: Theme.largeTitle
                text: window.panel.activeTime
            }
        }

        ColumnLayout {
            Layout.alignment: Qt.AlignBottom
            Layout.bottomMargin: Theme.xs
            spacing: 2

            Line {
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.small
                horizontalAlignment: Text.AlignRight
                text: window.panel.productive
            }

            Line {
                Layout.fillWidth: true
                color: Theme.textSecondary
                font: Theme.small
                horizontalAlignment: Text.AlignRight
                text: window.panel.switches
            }
        }
    }

    ActivityLight {
        Layout.fillWidth: true
        value: window.panel.banner
    }

    Paragraph {
        Accessible.name: text
        Accessible.role: Accessible.AlertMessage
        Layout.fillWidth: true
        color: Theme.critical
        text: window.panel.historyNotice ?? ""
        visible: text !== ""
    }

    LiveActivity {
        Layout.fillWidth: true
        value: window.panel.live
    }

    AccessibilityHint {
        Layout.fillWidth: true
        value: window.panel.accessibilityHint ?? ({})
        visible: window.panel.accessibilityHint !== undefined

        onAsked: window.model.allowAccessibility()
    }

    TopList {
        Layout.fillWidth: true
        rows: window.panel.topApps
        title: window.panel.topAppsTitle
    }

    TopList {
        Layout.fillWidth: true
        rows: window.panel.topWebsites
        title: window.panel.topWebsitesTitle
    }

    Item {
        implicitHeight: 1
    }

    Shortcut {
        sequence: window.panel.dashboard.keys

        onActivated: window.model.openDashboard()
    }

    Shortcut {
        sequence: window.panel.settings.keys

        onActivated: window.model.openSettings()
    }

    Shortcut {
        enabled: window.panel.quit.isEnabled
        sequence: window.panel.quit.keys

        onActivated: window.model.quit()
    }
}
