pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design
import Kestrio.Window

Column {
    id: group

    required property var modelData
    required property DashboardModel dashboard
    required property bool isCompact

    function takeFocus() {
        for (let place = 0; place < rows.count; ++place) {
            const row = rows.itemAt(place) as SidebarRow;
            if (row.selected)
                row.forceActiveFocus(Qt.TabFocusReason);
        }
    }

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
        id: rows

        model: group.modelData.sections

        SidebarRow {
            dashboard: group.dashboard
            isCompact: group.isCompact
            width: group.width
        }
    }
}
