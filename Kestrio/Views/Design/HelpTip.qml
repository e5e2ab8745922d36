import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// The bubble of a help text, below its parent, with the keys that do the same.
T.ToolTip {
    id: tip

    property string keys: ""
    readonly property real widest: Theme.scaled(300)
    readonly property real keysWidth: keys === "" ? 0 : keysMeasure.implicitWidth + Theme.s

    // Escape is for what the tip is about: a panel, a sheet.
    closePolicy: T.Popup.CloseOnPressOutsideParent
    delay: 500
    horizontalPadding: Theme.s
    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: Math.min(widest, measure.implicitWidth + 1 + keysWidth) + leftPadding + rightPadding
    margins: Theme.xs
    verticalPadding: Theme.xs + 1
    x: Math.round((parent.width - width) / 2)
    y: parent.height + Theme.xs + 2

    background: Rectangle {
        color: Theme.tooltip
        radius: Theme.radiusSmall
    }
    contentItem: RowLayout {
        spacing: Theme.s

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.tooltipText
            font: Theme.small
            text: tip.text
        }

        Line {
            Accessible.ignored: true
            color: Theme.faded(Theme.tooltipText, 0.75)
            font: Theme.small
            text: tip.keys
            visible: text !== ""
        }
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

    Text {
        id: keysMeasure

        font: Theme.small
        text: tip.keys
        textFormat: Text.PlainText
        visible: false
    }
}
