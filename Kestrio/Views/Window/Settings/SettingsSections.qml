pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Design
import Kestrio.Window

// Sections of a form, one below the other.
Repeater {
    id: all

    required property SettingsFormModel form
    required property var sections

    delegate: SettingsSection {
        required property var row

        value: row

        onChosen: (setting, place) => all.form.choose(setting, place)
        onPressed: (setting, button) => all.form.press(setting, button)
        onTurned: (setting, on) => all.form.turn(setting, on)
    }
    model: RowsModel {
        rows: all.sections
    }
}
