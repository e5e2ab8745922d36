// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Charts
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
    header: Column {
        bottomPadding: list.page.message === "" ? 0 : Theme.xl
        leftPadding: Theme.xl
        width: list.width

        Card {
            visible: list.page.message === ""
            width: parent.width - 2 * Theme.xl

            DayStripsView {
                Layout.fillWidth: true
                value: list.page.strips
            }
        }

        Paragraph {
            horizontalAlignment: Text.AlignHCenter
            text: list.page.message
            visible: text !== ""
            width: parent.width - 2 * Theme.xl
        }
    }
}
