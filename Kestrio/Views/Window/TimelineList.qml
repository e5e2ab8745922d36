pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Kestrio.Design
import Kestrio.Window

// The rows of the timeline; only those in sight exist. The arrows lead from block to block.
ListView {
    id: list

    required property TimelineModel page

    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: -1
    keyNavigationEnabled: true
    model: page.rows
    pixelAligned: true

    T.ScrollBar.vertical: ThinScrollBar {}

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
                value: row.value

                onToggled: list.page.rows.toggle(row.index)
            }
        }

        Component {
            id: entry

            TimelineEntry {
                value: row.value
            }
        }
    }
    footer: Item {
        height: Theme.xl
    }
    header: Item {
        height: message.visible ? message.implicitHeight + Theme.xl : 0
        width: list.width

        Paragraph {
            id: message

            horizontalAlignment: Text.AlignHCenter
            text: list.page.message
            visible: text !== ""
            width: parent.width
            y: Theme.l
        }
    }
}
