pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The pages in their groups, and below them what is being recorded. Where large text has little room, the symbols alone.
Rectangle {
    id: sidebar

    required property DashboardModel model
    property bool isCompact: false

    // The picked page.
    function takeFocus() {
        for (let place = 0; place < parts.count; ++place)
            (parts.itemAt(place) as SidebarGroup).takeFocus();
    }

    color: Theme.sidebar

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.m
        spacing: Theme.m

        ScrollPane {
            id: pane

            Accessible.name: sidebar.model.words.sidebarName
            Accessible.role: Accessible.List
            Layout.fillHeight: true
            Layout.fillWidth: true
            padding: 0

            Column {
                id: groups

                width: parent.width

                Repeater {
                    id: parts

                    model: sidebar.model.groups

                    SidebarGroup {
                        dashboard: sidebar.model
                        isCompact: sidebar.isCompact
                        width: groups.width
                    }
                }
            }
        }

        TrackingStatusPanel {
            Layout.fillWidth: true
            isCompact: sidebar.isCompact
            model: sidebar.model
        }

        PauseControl {
            Layout.fillWidth: true
            isCompact: sidebar.isCompact
            model: sidebar.model
            visible: sidebar.model.pauseControl !== undefined
        }
    }
}
