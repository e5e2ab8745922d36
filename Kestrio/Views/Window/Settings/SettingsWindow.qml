pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Kestrio.Design
import Kestrio.Window

// The settings: the tabs, and beside them the picked one.
Window {
    id: window

    required property SettingsModel model

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    color: Theme.window
    height: 600
    minimumHeight: 360
    minimumWidth: 560
    title: model.words.windowTitle
    width: 760

    Shortcut {
        sequence: "Ctrl+PgUp"

        onActivated: window.model.selectNeighbour(-1)
    }

    Shortcut {
        sequence: "Ctrl+PgDown"

        onActivated: window.model.selectNeighbour(1)
    }

    Shortcut {
        sequence: "Ctrl+W"

        onActivated: window.close()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        SettingsTabList {
            Layout.fillHeight: true
            Layout.preferredWidth: Math.min(Theme.scaled(184), window.width * 0.35)
            model: window.model
        }

        Hairline {
            Layout.fillHeight: true
        }

        ColumnLayout {
            Layout.fillHeight: true
            Layout.fillWidth: true
            spacing: 0

            Banner {
                Layout.bottomMargin: 0
                Layout.fillWidth: true
                Layout.margins: Theme.l
                value: window.model.agentNotice
                visible: value !== undefined

                onActivated: window.model.startAgent()
            }

            Loader {
                id: tab

                function load() {
                    setSource(window.model.tabSource, {
                        "tab": window.model.tabModel
                    });
                }

                Accessible.name: window.model.tabLabel
                Accessible.role: Accessible.Pane
                Layout.fillHeight: true
                Layout.fillWidth: true

                Component.onCompleted: load()

                Connections {
                    function onTabChanged() {
                        tab.load();
                    }

                    target: window.model
                }
            }
        }
    }
}
