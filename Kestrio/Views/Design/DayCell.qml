import QtQuick
import QtQuick.Templates as T

// A day of a `MonthPopup`.
T.AbstractButton {
    id: cell

    required property var row

    Accessible.name: row.fullName
    Accessible.selected: row.isSelected
    Accessible.onPressAction: cell.clicked()
    enabled: row.isEnabled
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    implicitHeight: Theme.scaled(28)
    implicitWidth: Theme.scaled(32)
    opacity: enabled ? 1 : 0.35

    background: Item {
        Rectangle {
            anchors.centerIn: parent
            border.color: cell.row.isToday ? Theme.accent : "transparent"
            border.width: 1
            color: cell.row.isSelected ? Theme.accent : cell.down ? Theme.pressed : cell.hovered ? Theme.hover : "transparent"
            height: Theme.scaled(26)
            radius: height / 2
            width: height
        }
    }
    contentItem: Line {
        Accessible.ignored: true
        color: cell.row.isSelected ? Theme.accentText : cell.row.isInMonth ? Theme.text : Theme.textTertiary
        font: cell.row.isToday || cell.row.isSelected ? Theme.bodyStrong : Theme.body
        horizontalAlignment: Text.AlignHCenter
        text: cell.row.label
    }
}
