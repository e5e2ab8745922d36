pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// A menu of entries as `MenuButton` has them.
T.Menu {
    id: popupMenu

    property var entries: []
    readonly property bool hasMarks: entries.some(entry => entry.isCurrent !== undefined || entry.symbol !== undefined)

    signal chosen(int index)

    // Where the keyboard begins: at the entry that holds, or the first.
    function goToCurrent() {
        if (LastInput.wasKey)
            goTo(Math.max(0, entries.findIndex(entry => entry.isCurrent ?? false)), 1);
    }

    // The first entry that can be chosen, from this place on in this direction.
    function goTo(place: int, step: int) {
        while (place >= 0 && place < count && !itemAt(place).enabled)
            place += step;
        if (place >= 0 && place < count)
            currentIndex = place;
    }

    cascade: false
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside | T.Popup.CloseOnReleaseOutside
    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: Math.max(Theme.scaled(140), widest() + leftPadding + rightPadding)
    margins: Theme.s
    overlap: 1
    padding: Theme.xs

    function widest(): real {
        let width = 0;
        for (let i = 0; i < count; ++i)
            width = Math.max(width, itemAt(i)?.implicitWidth ?? 0);
        return width;
    }

    background: PopupGround {}
    contentItem: ListView {
        clip: contentHeight > height
        currentIndex: popupMenu.currentIndex
        implicitHeight: contentHeight
        interactive: contentHeight > height
        model: popupMenu.contentModel

        Keys.onPressed: event => {
            if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
                return;
            const isHome = event.key === Qt.Key_Home;
            popupMenu.goTo(isHome ? 0 : popupMenu.count - 1, isHome ? 1 : -1);
            event.accepted = true;
        }
    }
    enter: Transition {
        NumberAnimation {
            duration: Theme.animation
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation {
            duration: Theme.animation / 2
            property: "opacity"
            to: 0
        }
    }

    // Nothing else gives the keyboard back.
    onClosed: parent.forceActiveFocus(Qt.PopupFocusReason)

    Instantiator {
        model: popupMenu.entries

        delegate: PopupMenuItem {
            required property var modelData
            required property int index

            entry: modelData
            hasMarks: popupMenu.hasMarks
            width: popupMenu.availableWidth

            // What is chosen may change the entries, and one that went does not close the menu any more.
            onTriggered: {
                popupMenu.close();
                popupMenu.chosen(index);
            }
        }

        onObjectAdded: (index, object) => popupMenu.insertItem(index, object as T.MenuItem)
        onObjectRemoved: (index, object) => popupMenu.removeItem(object as T.MenuItem)
    }
}
