pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Charts
import Kestrio.Design

// When somebody was active: a strip per day through the hours, and above them what was done at the moment pointed at.
// A report without sessions shows nothing.
Column {
    id: view

    required property var value // a dayStripsValue
    readonly property real labelWidth: Theme.scaled(moment.strips.isDense ? 60 : 128)

    spacing: Theme.m
    visible: moment.strips.dayCount > 0

    StripPointer {
        id: moment

        strips: view.value
    }

    Column {
        spacing: Theme.xs
        width: parent.width

        Line {
            Accessible.role: Accessible.Heading
            font: Theme.headline
            text: moment.strips.heading
            width: parent.width
        }

        Paragraph {
            font: Theme.small
            text: moment.strips.explanation
            width: parent.width
        }
    }

    StripReadout {
        pointer: moment
        width: parent.width
    }

    Column {
        id: rows

        Accessible.description: moment.words
        Accessible.focusable: true
        Accessible.name: moment.strips.heading
        Accessible.role: Accessible.Chart
        activeFocusOnTab: true
        spacing: moment.strips.isDense ? 4 : Theme.m
        width: parent.width

        Keys.onPressed: event => {
            event.accepted = moment.press(event.key);
        }
        onActiveFocusChanged: {
            if (!activeFocus)
                moment.clear();
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
                marks: moment.strips.hourAxis
            }
        }

        Repeater {
            model: moment.strips.dayCount

            DayStripRow {
                required property int index

                day: index
                labelWidth: view.labelWidth
                pointer: moment
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
            text: moment.strips.legendTitle
        }

        CategoryLegend {
            categories: moment.strips.legend
            leastWidth: Theme.scaled(moment.strips.leastLegendWidth)
            width: parent.width
        }
    }
}
