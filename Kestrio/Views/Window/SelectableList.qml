pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design
import Kestrio.Window

// The rows of a page, one of which can be selected: with the pointer, or with the keys while the list has the focus.
KeyboardList {
    id: list

    required property MasterDetailModel page

    bottomMargin: Theme.s
    // None: a view follows its current row, which a fresh report may move, away from where somebody reads.
    currentIndex: -1
    hasTypeAhead: true
    leftMargin: Theme.s
    model: page.rows
    place: page.selectedPlace
    reuseItems: true
    rightMargin: Theme.s
    topMargin: Theme.s

    onAsked: place => {
        page.selectPlace(place);
        positionViewAtIndex(place, ListView.Contain);
    }
    onTyped: beginning => {
        const found = page.placeBeginning(beginning);
        if (found >= 0)
            asked(found, 1);
    }

    delegate: ListRow {
        id: item

        required property var row

        // While it waits to be used again, assistive technology would still come to it.
        ListView.onPooled: visible = false
        Accessible.description: [row.duration, row.subtitle].filter(text => text).join(", ")
        ListView.onReused: {
            visible = true;
            if (selected && list.activeFocus)
                forceActiveFocus(Qt.OtherFocusReason);
        }
        activeFocusOnTab: false
        focus: selected
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
    }

    Line {
        anchors.centerIn: parent
        color: Theme.textSecondary
        text: list.page.message
        visible: text !== ""
    }
}
