pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A stretch in one application; a click shows what it consisted of.
ListRow {
    id: block

    required property var value
    required property bool isOpen
    readonly property bool isNarrow: width < Theme.scaled(480) // then its times stand below the headline
    required property real rangeWidth

    signal toggled

    Accessible.description: [isOpen ? Words.opened : Words.closed, value.times, value.count, value.category.label].join(", ")
    bottomPadding: Theme.xs + 2
    leftInset: Theme.l
    leftPadding: Theme.xl
    rightInset: Theme.l
    rightPadding: Theme.xl
    text: [value.headline, value.duration].join(", ")
    topPadding: Theme.xs + 2
    width: parent?.width ?? implicitWidth

    Accessible.onPressAction: clicked()
    Keys.onLeftPressed: event => {
        event.accepted = isOpen;
        if (isOpen)
            toggled();
    }
    Keys.onRightPressed: event => {
        event.accepted = !isOpen;
        if (!isOpen)
            toggled();
    }
    onClicked: toggled()

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: Theme.m

        Line {
            Accessible.ignored: true
            Layout.preferredWidth: block.rangeWidth
            color: Theme.textSecondary
            font: Theme.small
            text: block.value.times
            visible: !block.isNarrow
        }

        Rectangle {
            Layout.fillHeight: true
            color: Theme.named(block.value.category.color)
            implicitWidth: 3
            radius: 1.5
        }

        RowIcon {
            icon: block.value.icon
            size: Theme.scaled(24)
        }

        GridLayout {
            Layout.fillWidth: true
            columnSpacing: Theme.m
            columns: 3
            rowSpacing: 0

            Line {
                id: headline

                Accessible.ignored: true
                Layout.columnSpan: block.isNarrow ? 3 : 1
                Layout.fillWidth: true
                text: block.value.headline
            }

            Line {
                Accessible.ignored: true
                color: Theme.textSecondary
                font: Theme.small
                text: block.value.times
                visible: block.isNarrow
            }

            AlongsideBadge {
                value: block.value.badge ?? ({})
                visible: block.value.badge !== undefined
            }

            Line {
                Accessible.ignored: true
                Layout.fillWidth: block.isNarrow
                color: Theme.textTertiary
                font: Theme.caption
                text: block.value.count
            }
        }

        Line {
            Accessible.ignored: true
            Layout.preferredWidth: Theme.scaled(block.isNarrow ? 56 : 76)
            horizontalAlignment: Text.AlignRight
            text: block.value.duration
        }

        Symbol {
            color: Theme.textTertiary
            mirrored: block.mirrored
            name: block.isOpen ? "chevron.down" : "chevron.right"
            size: Theme.scaled(14)
        }
    }

    Help {
        text: headline.truncated ? headline.text : ""
    }
}
