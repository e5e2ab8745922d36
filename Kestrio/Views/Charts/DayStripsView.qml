pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Charts
import Kestrio.Design

// When somebody was active: a strip per day through the hours, and above them what was done at the moment pointed at.
// A report without sessions shows nothing. Its parts are anchored, not laid out: the height of the explanation then
// follows the width at once.
Item {
    id: view

    required property var value // a dayStripsValue
    readonly property real labelWidth: Theme.scaled(moment.strips.isDense ? 60 : 128)

    // The keyboard has come to the strips.
    signal focused(Item chart)

    implicitHeight: legend.y + legend.implicitHeight
    visible: moment.strips.dayCount > 0

    StripPointer {
        id: moment

        strips: view.value
    }

    Line {
        id: heading

        Accessible.name: text
        Accessible.role: Accessible.Heading
        anchors.left: parent.left
        anchors.right: parent.right
        font: Theme.headline
        text: moment.strips.heading
    }

    Paragraph {
        id: explanation

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: heading.bottom
        anchors.topMargin: Theme.xs
        font: Theme.small
        text: moment.strips.explanation
    }

    StripReadout {
        id: readout

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: explanation.bottom
        anchors.topMargin: Theme.m
        pointer: moment
    }

    HourAxis {
        id: hours

        anchors.left: parent.left
        anchors.leftMargin: view.labelWidth
        anchors.right: parent.right
        anchors.top: readout.bottom
        anchors.topMargin: Theme.m
        marks: moment.strips.hourAxis
    }

    Item {
        id: rows

        readonly property real spacing: moment.strips.isDense ? Theme.xs : Theme.m
        readonly property real rowHeight: moment.strips.stripHeight + (moment.strips.showsAlongside ? moment.strips.mediaHeight + 2 : 0)

        Accessible.description: moment.words
        Accessible.focusable: true
        Accessible.name: moment.strips.heading
        Accessible.role: Accessible.Chart
        activeFocusOnTab: true
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: hours.bottom
        anchors.topMargin: Theme.xs
        height: moment.strips.dayCount * (rowHeight + spacing)

        Keys.onPressed: event => {
            event.accepted = moment.press(event.key);
        }
        onActiveFocusChanged: {
            if (activeFocus)
                view.focused(rows);
            else
                moment.clear();
        }

        FocusRing {
            shown: rows.activeFocus
        }

        Repeater {
            model: moment.strips.dayCount

            DayStripRow {
                required property int index

                day: index
                height: rows.rowHeight
                labelWidth: view.labelWidth
                pointer: moment
                width: rows.width
                y: index * (rows.rowHeight + rows.spacing)
            }
        }
    }

    Line {
        id: legendTitle

        anchors.left: parent.left
        anchors.top: rows.bottom
        anchors.topMargin: Theme.s
        color: Theme.textTertiary
        font: Theme.caption
        text: moment.strips.legendTitle
    }

    CategoryLegend {
        id: legend

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: legendTitle.bottom
        anchors.topMargin: Theme.xs + 2
        categories: moment.strips.legend
        leastWidth: Theme.scaled(moment.strips.leastLegendWidth)
    }
}
