// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified

import QtQuick
import Kestrio.Charts
import Kestrio.Design
import Kestrio.Window

// The rows of the timeline; only those in sight exist. The keys lead from row to row, past the heads of days.
KeyboardList {
    id: list

    required property TimelineModel page
    property bool isAtTop: true

    // The tabulator leads to the row where the keyboard was last, or the first.
    function findPlace() {
        currentIndex = page.rows.stopAt(Math.max(0, currentIndex), 1);
    }

    function reveal(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y - Theme.l;
        if (top < contentY || top + item.height > contentY + height)
            contentY = Math.max(originY, top);
    }

    activeFocusOnTab: false
    highlightFollowsCurrentItem: false
    model: page.rows

    Component.onCompleted: findPlace()
    onAsked: (place, step) => {
        const ahead = page.rows.stopAt(place, step);
        const stop = ahead >= 0 ? ahead : page.rows.stopAt(place, -step);
        if (stop === currentIndex && step < 0)
            positionViewAtBeginning();
        currentIndex = stop;
    }
    onCountChanged: findPlace()

    // The columns of times are as wide as the widest line of these.
    Text {
        id: ranges

        font: Theme.small
        text: list.page.samples.ranges.join("\n")
        textFormat: Text.PlainText
        visible: false
    }

    Text {
        id: times

        font: Theme.small
        text: list.page.samples.times.join("\n")
        textFormat: Text.PlainText
        visible: false
    }

    delegate: Loader {
        id: row

        required property string kind
        required property var value
        required property bool isOpen
        required property int index

        onActiveFocusChanged: {
            if (activeFocus)
                list.positionViewAtIndex(index, ListView.Contain);
        }

        sourceComponent: kind === "block" ? block : kind === "entry" ? entry : day
        width: list.width

        Component {
            id: day

            TimelineDay {
                value: row.value
            }
        }

        Component {
            id: block

            TimelineBlock {
                focus: true
                focusPolicy: row.ListView.isCurrentItem || activeFocus ? Qt.TabFocus : Qt.NoFocus
                isOpen: row.isOpen
                rangeWidth: Math.ceil(ranges.implicitWidth)
                value: row.value

                onClicked: {
                    list.currentIndex = row.index;
                    forceActiveFocus(Qt.MouseFocusReason);
                }
                onToggled: list.page.rows.toggle(row.index)
            }
        }

        Component {
            id: entry

            TimelineEntry {
                activeFocusOnTab: row.ListView.isCurrentItem || activeFocus
                focus: true
                rangeWidth: Math.ceil(ranges.implicitWidth)
                timeWidth: Math.ceil(times.implicitWidth)
                value: row.value
            }
        }
    }
    onContentYChanged: isAtTop = atYBeginning

    footer: Item {
        height: Theme.xl
    }
    header: Item {
        // What stands above the rows grows upwards; who has not scrolled sees it from its beginning.
        onHeightChanged: {
            if (list.isAtTop)
                Qt.callLater(list.positionViewAtBeginning);
        }

        height: (list.page.message === "" ? strips.height + 2 * Theme.l : message.implicitHeight + Theme.xl)
        width: list.width

        Rectangle {
            anchors.fill: strips
            anchors.margins: -Theme.l
            border.color: Theme.cardBorder
            color: Theme.card
            radius: Theme.radius
            visible: strips.visible
        }

        DayStripsView {
            id: strips

            value: list.page.strips
            visible: list.page.message === ""
            width: list.width - 2 * (Theme.xl + Theme.l)
            x: Theme.xl + Theme.l
            y: Theme.l

            onFocused: chart => list.reveal(chart)
        }

        Paragraph {
            id: message

            horizontalAlignment: Text.AlignHCenter
            text: list.page.message
            visible: text !== ""
            width: list.width - 2 * Theme.xl
            x: Theme.xl
            y: Theme.l
        }
    }
}
