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
    readonly property int everyPage: 100 // more than there are

    function pickBeside(step: int) {
        dashboard.selectNeighbour(step);
    }

    bottomPadding: Theme.xs + 2
    focusPolicy: selected || activeFocus ? Qt.TabFocus : Qt.NoFocus
    selected: dashboard.section === modelData.rawValue
    text: modelData.label
    topPadding: Theme.xs + 2

    Accessible.onPressAction: clicked()
    Keys.onDownPressed: pickBeside(1)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
            return;
        pickBeside(event.key === Qt.Key_Home ? -everyPage : everyPage);
        event.accepted = true;
    }
    Keys.onUpPressed: pickBeside(-1)
    onClicked: dashboard.select(modelData.rawValue)
    onSelectedChanged: {
        if (selected && Window.activeFocusItem instanceof SidebarRow)
            forceActiveFocus(Qt.TabFocusReason);
    }

    Help {
        keys: row.modelData.keys
        text: row.text
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
}
