// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified

import QtQuick
import QtQuick.Templates as T
import Kestrio.Charts
import Kestrio.Design
import Kestrio.Window

// The rows of the timeline; only those in sight exist. The arrows lead from block to block.
ListView {
    id: list

    required property TimelineModel page
    property bool isAtTop: true

    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    keyNavigationEnabled: true
    model: page.rows
    pixelAligned: true

    T.ScrollBar.vertical: ThinScrollBar {}

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
                isOpen: row.isOpen
                rangeWidth: Math.ceil(ranges.implicitWidth)
                value: row.value

                onToggled: list.page.rows.toggle(row.index)
            }
        }

        Component {
            id: entry

            TimelineEntry {
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
