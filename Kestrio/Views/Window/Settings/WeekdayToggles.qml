pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// The days of a week, each on or off: maps with `number`, `initial`, `name` and `isOn`.
Row {
    id: toggles

    required property var days

    signal toggled(int number, bool on)

    spacing: Theme.xs

    Repeater {
        model: RowsModel {
            rows: toggles.days
        }

        T.AbstractButton {
            id: day

            required property var row

            Accessible.checkable: true
            Accessible.checked: row.isOn
            Accessible.name: row.name
            Accessible.onPressAction: day.clicked()
            Accessible.role: Accessible.CheckBox
            activeFocusOnTab: true
            focusPolicy: Qt.TabFocus
            font: row.isOn ? Theme.bodyStrong : Theme.body
            height: Theme.controlHeight
            hoverEnabled: true
            text: row.initial
            width: Math.max(height, letter.implicitWidth + Theme.s)

            background: Rectangle {
                border.color: day.row.isOn ? "transparent" : Theme.cardBorder
                color: day.row.isOn ? Theme.accent : day.hovered ? Theme.hover : "transparent"
                radius: height / 2

                FocusRing {
                    radius: parent.radius + 2
                    shown: day.visualFocus
                }
            }
            contentItem: Line {
                id: letter

                color: day.row.isOn ? Theme.accentText : Theme.textSecondary
                font: day.font
                horizontalAlignment: Text.AlignHCenter
                text: day.text
            }

            Keys.onReturnPressed: day.clicked()
            onClicked: toggles.toggled(row.number, !row.isOn)

            Help {
                text: day.row.name
            }
        }
    }
}
