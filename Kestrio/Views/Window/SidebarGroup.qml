pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design
import Kestrio.Window

Column {
    id: group

    required property var modelData
    required property DashboardModel dashboard

    bottomPadding: Theme.m

    Line {
        Accessible.name: text
        Accessible.role: Accessible.Heading
        bottomPadding: Theme.xs
        color: Theme.textTertiary
        font: Theme.caption
        leftPadding: Theme.s + 2
        text: group.modelData.title
        topPadding: Theme.xs
        width: group.width
    }

    Repeater {
        model: group.modelData.sections

        SidebarRow {
            dashboard: group.dashboard
            width: group.width
        }
    }
}
