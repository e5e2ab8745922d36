pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design
import Kestrio.Window

Column {
    id: group

    required property var modelData
    required property DashboardModel dashboard
    required property bool isCompact

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
        visible: !group.isCompact
        width: group.width
    }

    Repeater {
        model: group.modelData.sections

        SidebarRow {
            dashboard: group.dashboard
            isCompact: group.isCompact
            width: group.width
        }
    }
}
