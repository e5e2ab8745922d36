pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// Every stretch of activity, the newest first under its day.
Item {
    id: timeline

    required property TimelineModel page

    EmptyActivityView {
        anchors.fill: parent
        value: timeline.page.empty ?? ({})
        visible: timeline.page.empty !== undefined
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.m
        visible: timeline.page.empty === undefined

        TimelineTools {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.xl
            Layout.rightMargin: Theme.xl
            Layout.topMargin: Theme.s
            page: timeline.page
        }

        TimelineList {
            Layout.fillHeight: true
            Layout.fillWidth: true
            name: timeline.page.words.listName
            page: timeline.page
        }
    }
}
