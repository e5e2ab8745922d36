pragma ComponentBehavior: Bound

import QtQml
import QtQuick
import Kestrio.Window

// What can be done from anywhere in the dashboard by keys: the controls of the range, the way through the pages.
Item {
    id: shortcuts

    required property DashboardModel model
    readonly property var controls: model.dateControls


    signal closeRequested
    signal searchRequested

    component ControlShortcut: Shortcut {
        required property var control

        enabled: shortcuts.model.isReportPage && control.isEnabled
        sequence: control.keys
    }

    ControlShortcut {
        control: shortcuts.controls.previous

        onActivated: shortcuts.model.step(-1)
    }

    ControlShortcut {
        control: shortcuts.controls.next

        onActivated: shortcuts.model.step(1)
    }

    ControlShortcut {
        control: shortcuts.controls.today

        onActivated: shortcuts.model.showToday()
    }

    ControlShortcut {
        control: shortcuts.controls.refresh

        onActivated: shortcuts.model.refresh()
    }

    Shortcut {
        enabled: shortcuts.model.isReportPage
        sequence: "F5"

        onActivated: shortcuts.model.refresh()
    }

    Shortcut {
        sequence: "Ctrl+F"

        onActivated: shortcuts.searchRequested()
    }

    Instantiator {
        model: shortcuts.model.groups

        delegate: Instantiator {
            required property var modelData

            model: modelData.sections

            delegate: Shortcut {
                required property var modelData

                sequence: modelData.keys

                onActivated: shortcuts.model.select(modelData.rawValue)
            }
        }
    }

    Shortcut {
        sequence: "Ctrl+PgUp"

        onActivated: shortcuts.model.selectNeighbour(-1)
    }

    Shortcut {
        sequence: "Ctrl+PgDown"

        onActivated: shortcuts.model.selectNeighbour(1)
    }

    Shortcut {
        sequence: "Ctrl+,"

        onActivated: shortcuts.model.openSettings()
    }

    Shortcut {
        sequence: "Ctrl+W"

        onActivated: shortcuts.closeRequested()
    }
}
