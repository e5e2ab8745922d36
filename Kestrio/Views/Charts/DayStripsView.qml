pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design

// When somebody was active: a strip per day through the hours, and above them what was done at the moment pointed at.
// A report without sessions shows nothing.
Column {
    id: view

    required property var value // a dayStripsValue
    readonly property real labelWidth: Theme.scaled(pointer.strips.isDense ? 60 : 128)

    spacing: Theme.m
    visible: pointer.strips.dayCount > 0

    StripPointer {
        id: pointer

        strips: view.value
    }

    Column {
        spacing: Theme.xs
        width: parent.width

        Line {
            Accessible.role: Accessible.Heading
            font: Theme.headline
            text: pointer.strips.heading
            width: parent.width
        }

        Paragraph {
            font: Theme.small
            text: pointer.strips.explanation
            width: parent.width
        }
    }

    StripReadout {
        pointer: pointer
        width: parent.width
    }

    Column {
        id: rows

        Accessible.description: pointer.words
        Accessible.focusable: true
        Accessible.name: pointer.strips.heading
        Accessible.role: Accessible.Chart
        activeFocusOnTab: true
        spacing: pointer.strips.isDense ? 4 : Theme.m
        width: parent.width

        Keys.onPressed: event => {
            event.accepted = pointer.press(event.key);
        }
        onActiveFocusChanged: {
            if (!activeFocus)
                pointer.clear();
        }

        Item {
            height: hours.implicitHeight
            width: parent.width

            HourAxis {
                id: hours

                anchors.left: parent.left
                anchors.leftMargin: view.labelWidth
                anchors.right: parent.right
                height: implicitHeight
                marks: pointer.strips.hourAxis
            }
        }

        Repeater {
            model: pointer.strips.dayCount

            DayStripRow {
                required property int index

                day: index
                labelWidth: view.labelWidth
                pointer: pointer
                width: rows.width
            }
        }
    }

    Column {
        spacing: Theme.xs + 2
        width: parent.width

        Line {
            color: Theme.textTertiary
            font: Theme.caption
            text: pointer.strips.legendTitle
        }

        CategoryLegend {
            categories: pointer.strips.legend
            leastWidth: Theme.scaled(pointer.strips.leastLegendWidth)
            width: parent.width
        }
    }
}
