pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// What moves the range, in as many lines as it takes.
Flow {
    id: row

    required property DashboardModel model
    readonly property var controls: model.dateControls
    // In one line.
    readonly property real wholeWidth: units.implicitWidth + steps.implicitWidth + (day.visible ? day.implicitWidth + spacing : 0) + refresh.implicitWidth + 2 * spacing

    spacing: Theme.s

    component ControlButton: IconButton {
        required property var control

        Accessible.description: control.help ?? ""
        Accessible.name: control.title
        enabled: control.isEnabled
        help: control.help ?? control.title
        keys: control.keys
        symbol: control.symbol
    }

    SegmentedControl {
        id: units

        choices: row.controls.units
        help: row.controls.rangeLabel

        onChosen: index => row.model.setMode(row.controls.units[index].mode)
    }

    RowLayout {
        id: steps

        spacing: 0

        ControlButton {
            control: row.controls.previous

            onClicked: row.model.step(-1)
        }

        PlainButton {
            help: row.controls.today.title
            keys: row.controls.today.keys
            text: row.controls.today.title

            onClicked: row.model.showToday()
        }

        ControlButton {
            control: row.controls.next

            onClicked: row.model.step(1)
        }
    }

    DatePicker {
        id: day

        date: row.model.anchor
        help: row.controls.dateLabel
        now: row.model.now
        visible: row.controls.hasDatePicker

        onPicked: date => row.model.pickDay(date)
    }

    ControlButton {
        id: refresh

        control: row.controls.refresh

        onClicked: row.model.refresh()
    }
}
