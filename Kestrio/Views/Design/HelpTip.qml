import QtQuick
import QtQuick.Templates as T

// The bubble of a help text, below its parent.
T.ToolTip {
    id: tip

    readonly property real widest: Theme.scaled(300)

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
    delay: 500
    horizontalPadding: Theme.s
    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: Math.min(widest, measure.implicitWidth + 1) + leftPadding + rightPadding
    margins: Theme.xs
    verticalPadding: Theme.xs + 1
    x: Math.round((parent.width - width) / 2)
    y: parent.height + Theme.xs + 2

    background: Rectangle {
        color: Theme.tooltip
        radius: Theme.radiusSmall
    }
    contentItem: Paragraph {
        color: Theme.tooltipText
        font: Theme.small
        text: tip.text
    }
    enter: Transition {
        NumberAnimation {
            duration: Theme.animation
            from: 0
            property: "opacity"
            to: 1
        }
    }

    Text {
        id: measure

        font: Theme.small
        text: tip.text
        textFormat: Text.PlainText
        visible: false
    }
}
