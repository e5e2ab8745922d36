// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import Kestrio.Design
import Kestrio.Window

// What stands at the end of a row, by the `kind` of `value`: words, a switch, a menu or segments of choices, buttons.
Loader {
    id: control

    required property var value
    required property string subject // what it sets, for those who do not see the row

    signal turned(bool on)
    signal chosen(int index)
    signal pressed(int index)

    sourceComponent: {
        switch (value?.kind) {
        case "switch":
            return onOff;
        case "menu":
            return menu;
        case "segments":
            return segments;
        case "buttons":
            return buttons;
        default:
            return fact;
        }
    }

    Component {
        id: fact

        Line {
            color: Theme.textSecondary
            text: control.value?.text ?? ""
        }
    }

    Component {
        id: onOff

        Switch {
            Accessible.name: control.subject
            checked: control.value?.isOn ?? false

            onToggled: control.turned(checked)
        }
    }

    Component {
        id: menu

        MenuButton {
            Accessible.description: text
            Accessible.name: control.subject !== "" ? control.subject : text
            entries: control.value?.choices ?? []
            text: control.value?.text ?? ""

            onChosen: index => control.chosen(index)
        }
    }

    Component {
        id: segments

        SegmentedControl {
            choices: control.value?.choices ?? []
            help: control.subject

            onChosen: index => control.chosen(index)
        }
    }

    Component {
        id: buttons

        SettingButtons {
            subject: control.subject
            value: control.value

            onPressed: index => control.pressed(index)
        }
    }
}
