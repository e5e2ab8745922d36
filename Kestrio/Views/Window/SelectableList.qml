pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Kestrio.Design
import Kestrio.Window

// The rows of a page, one of which can be selected: with the pointer, or with the arrow keys while the list has the focus.
ListView {
    id: list

    required property MasterDetailModel page
    property string name: ""

    function go(place: int) {
        const there = Math.max(0, Math.min(count - 1, place));
        page.selectPlace(there);
        positionViewAtIndex(there, ListView.Contain);
    }

    function pageLength(): int {
        return Math.max(1, Math.floor(height / (contentHeight / Math.max(1, count))) - 1);
    }

    Accessible.name: name
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {}
    activeFocusOnTab: true
    bottomMargin: Theme.s
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    // None: a view follows its current row, which a fresh report may move, away from where somebody reads.
    currentIndex: -1
    keyNavigationEnabled: false
    leftMargin: Theme.s
    model: page.rows
    pixelAligned: true
    reuseItems: true
    rightMargin: Theme.s
    topMargin: Theme.s

    Keys.onDownPressed: go(page.selectedPlace + 1)
    Keys.onPressed: event => {
        const place = {
            [Qt.Key_Home]: 0,
            [Qt.Key_End]: count - 1,
            [Qt.Key_PageUp]: page.selectedPlace - pageLength(),
            [Qt.Key_PageDown]: page.selectedPlace + pageLength()
        }[event.key];
        if (place === undefined)
            return;
        go(place);
        event.accepted = true;
    }
    Keys.onUpPressed: go(page.selectedPlace - 1)

    delegate: ListRow {
        id: item

        required property var row

        Accessible.description: [row.duration, row.subtitle].filter(text => text).join(", ")
        activeFocusOnTab: false
        focusPolicy: Qt.NoFocus
        selected: row.key === list.page.selection
        text: row.title
        width: list.width - list.leftMargin - list.rightMargin

        Accessible.onPressAction: clicked()
        onClicked: {
            list.page.selection = row.key;
            list.forceActiveFocus(Qt.MouseFocusReason);
        }

        UsageRow {
            Accessible.ignored: true
            row: item.row
            verticalPadding: 0
        }

        FocusRing {
            anchors.margins: 0
            parent: item
            shown: item.selected && list.activeFocus
        }
    }

    Line {
        anchors.centerIn: parent
        color: Theme.textSecondary
        text: list.page.message
        visible: text !== ""
    }

    FocusRing {
        anchors.margins: 2
        shown: list.activeFocus && list.page.selectedPlace < 0
    }
}
