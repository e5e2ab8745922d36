import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// A list that is walked through by keys while it has the focus: arrows, Page Up and Down, Home and End ask for a row with
// `asked`, letters for the row that begins with them with `typed`.
ListView {
    id: list

    property string name: ""
    property int place: currentIndex // where the keyboard is; -1 for nowhere yet
    property bool hasTypeAhead: false
    property string beginning: "" // what was typed just now

    // `step` says in which direction.
    signal asked(int place, int step)
    signal typed(string beginning)

    function pageLength(): int {
        return Math.max(1, Math.floor(height / (contentHeight / Math.max(1, count))) - 1);
    }

    function stepOf(key: int): int {
        switch (key) {
        case Qt.Key_Down:
            return 1;
        case Qt.Key_Up:
            return -1;
        case Qt.Key_PageDown:
            return pageLength();
        case Qt.Key_PageUp:
            return -pageLength();
        case Qt.Key_End:
            return count;
        case Qt.Key_Home:
            return -count;
        default:
            return 0;
        }
    }

    function isTyped(event: var): bool {
        const hasModifier = event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier);
        return hasTypeAhead && !hasModifier && event.text > " " && event.text !== "\u007f";
    }

    Accessible.focusable: true
    Accessible.name: name
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {}
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    highlightMoveDuration: 0
    keyNavigationEnabled: false
    pixelAligned: true

    Keys.onPressed: event => {
        const step = stepOf(event.key);
        if (step !== 0 && count > 0) {
            asked(Math.max(0, Math.min(count - 1, place + step)), Math.sign(step));
            event.accepted = true;
        } else if (isTyped(event)) {
            beginning += event.text;
            patience.restart();
            typed(beginning);
            event.accepted = true;
        }
    }

    Timer {
        id: patience

        interval: 1000

        onTriggered: list.beginning = ""
    }

    FocusRing {
        anchors.margins: 2
        shown: list.Window.activeFocusItem === list
    }
}
