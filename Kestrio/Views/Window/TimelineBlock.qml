pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A stretch in one application; a click shows what it consisted of.
ListRow {
    id: block

    required property var value
    required property bool isOpen

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
            Layout.preferredWidth: Theme.scaled(104)
            color: Theme.textSecondary
            font: Theme.small
            text: block.value.times
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

        Line {
            id: headline

            Accessible.ignored: true
            Layout.fillWidth: true
            text: block.value.headline
        }

        AlongsideBadge {
            value: block.value.badge ?? ({})
            visible: block.value.badge !== undefined
        }

        Line {
            Accessible.ignored: true
            color: Theme.textTertiary
            font: Theme.caption
            text: block.value.count
        }

        Line {
            Accessible.ignored: true
            Layout.preferredWidth: Theme.scaled(76)
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
