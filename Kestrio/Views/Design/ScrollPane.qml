import QtQuick
import QtQuick.Window
import QtQuick.Templates as T

// A page that scrolls up and down when it is taller than its place; its content is as wide as the place. Arrow keys, Page
// Up and Down, Home and End move it, and what the keyboard comes to is brought into sight.
Flickable {
    id: pane

    default property alias content: holder.data
    property real padding: Theme.xl
    readonly property Item focused: Window.activeFocusItem

    function scrollBy(distance: real) {
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + distance));
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor !== null; ancestor = ancestor.parent)
            if (ancestor === holder)
                return true;
        return false;
    }

    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.l;
        const bottom = top + item.height + 2 * Theme.l;
        if (bottom > contentY + height)
            scrollBy(bottom - height - contentY);
        if (top < contentY)
            scrollBy(top - contentY);
    }

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentHeight: holder.childrenRect.height + 2 * padding
    contentWidth: width
    pixelAligned: true

    T.ScrollBar.vertical: ThinScrollBar {}

    onFocusedChanged: {
        if (focused !== null && holds(focused))
            reveal(focused);
    }

    Keys.onDownPressed: scrollBy(Theme.scaled(40))
    Keys.onUpPressed: scrollBy(-Theme.scaled(40))
    Keys.onPressed: event => {
        const distance = {
            [Qt.Key_PageDown]: height * 0.9,
            [Qt.Key_PageUp]: -height * 0.9,
            [Qt.Key_End]: contentHeight,
            [Qt.Key_Home]: -contentHeight
        }[event.key];
        if (distance === undefined)
            return;
        scrollBy(distance);
        event.accepted = true;
    }

    Item {
        id: holder

        height: childrenRect.height
        width: pane.width - 2 * pane.padding
        x: pane.padding
        y: pane.padding
    }
}
