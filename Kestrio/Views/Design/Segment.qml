import QtQuick
import QtQuick.Templates as T

// One choice of a `SegmentedControl`.
T.RadioButton {
    id: segment

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.name: text
    Accessible.role: Accessible.RadioButton
    Accessible.onPressAction: segment.clicked()
    autoExclusive: false
    checkable: false // what holds is the control's to say
    focusPolicy: checked || activeFocus ? Qt.TabFocus : Qt.NoFocus
    font: checked ? Theme.bodyStrong : Theme.body
    hoverEnabled: true
    implicitWidth: Math.max(measure.implicitWidth, Theme.scaled(20)) + 2 * Theme.m
    opacity: enabled ? 1 : 0.45

    background: Rectangle {
        border.color: Theme.isHighContrast && segment.checked ? Theme.cardBorder : "transparent"
        color: segment.checked ? Theme.isDark ? Theme.pressed : Theme.card : "transparent"
        radius: Theme.radiusSmall - 1

        FocusRing {
            anchors.margins: -1
            shown: segment.activeFocus
        }
    }
    contentItem: Line {
        Accessible.ignored: true
        color: segment.checked || segment.hovered ? Theme.text : Theme.textSecondary
        font: segment.font
        horizontalAlignment: Text.AlignHCenter
        text: segment.text
    }

    Keys.onReturnPressed: segment.clicked()
    Keys.onEnterPressed: segment.clicked()

    // Its width does not change with its weight.
    Text {
        id: measure

        font: Theme.bodyStrong
        text: segment.text
        textFormat: Text.PlainText
        visible: false
    }
}
