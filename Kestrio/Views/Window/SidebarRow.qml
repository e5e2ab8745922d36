import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// One page in the sidebar. The tabulator leads to the picked one, the arrows from there to the others.
ListRow {
    id: row

    required property var modelData
    required property DashboardModel dashboard
    required property bool isCompact

    function pickBeside(step: int) {
        dashboard.selectNeighbour(step);
    }

    activeFocusOnTab: selected || activeFocus
    bottomPadding: Theme.xs + 2
    selected: dashboard.section === modelData.rawValue
    text: modelData.label
    topPadding: Theme.xs + 2

    Accessible.onPressAction: clicked()
    Keys.onDownPressed: pickBeside(1)
    Keys.onUpPressed: pickBeside(-1)
    onClicked: dashboard.select(modelData.rawValue)
    onSelectedChanged: {
        if (selected && Window.activeFocusItem instanceof SidebarRow)
            forceActiveFocus(Qt.TabFocusReason);
    }

    RowLayout {
        spacing: Theme.s
        width: row.isCompact ? implicitWidth : parent.width
        x: row.isCompact ? Math.round((parent.width - width) / 2) : 0

        Symbol {
            color: row.selected ? Theme.accent : Theme.textSecondary
            name: row.modelData.symbol
            size: Theme.scaled(16)
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            font: row.selected ? Theme.bodyStrong : Theme.body
            text: row.text
            visible: !row.isCompact
        }
    }

    Help {
        text: row.isCompact ? row.text : ""
    }
}
