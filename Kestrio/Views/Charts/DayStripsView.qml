pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// When somebody was active: a strip per day through the hours, and above them what was done at the moment pointed at.
// A report without sessions shows nothing.
ColumnLayout {
    id: view

    required property var value // a dayStripsValue
    readonly property real labelWidth: Theme.scaled(moment.strips.isDense ? 60 : 128)

    spacing: Theme.m
    visible: moment.strips.dayCount > 0

    StripPointer {
        id: moment

        strips: view.value
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.xs

        Line {
            Accessible.role: Accessible.Heading
            font: Theme.headline
            Layout.fillWidth: true
            text: moment.strips.heading
        }

        Paragraph {
            font: Theme.small
            Layout.fillWidth: true
            text: moment.strips.explanation
        }
    }

    StripReadout {
        Layout.fillWidth: true
        pointer: moment
    }

    ColumnLayout {
        id: rows

        Accessible.description: moment.words
        Accessible.focusable: true
        Accessible.name: moment.strips.heading
        Accessible.role: Accessible.Chart
        Layout.fillWidth: true
        activeFocusOnTab: true
        spacing: moment.strips.isDense ? 4 : Theme.m

        Keys.onPressed: event => {
            event.accepted = moment.press(event.key);
        }
        onActiveFocusChanged: {
            if (!activeFocus)
                moment.clear();
        }

        Item {
            Layout.fillWidth: true
            implicitHeight: hours.implicitHeight

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

                Layout.fillWidth: true
                day: index
                labelWidth: view.labelWidth
                pointer: moment
            }
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.xs + 2

        Line {
            color: Theme.textTertiary
            font: Theme.caption
            text: moment.strips.legendTitle
        }

        CategoryLegend {
            categories: moment.strips.legend
            Layout.fillWidth: true
            leastWidth: Theme.scaled(moment.strips.leastLegendWidth)
        }
    }
}
