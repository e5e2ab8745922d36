pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// A tab of sections; what the tab has of its own stands among them.
Item {
    id: view

    required property SettingsFormModel form
    default property alias content: own.data

    ScrollPane {
        activeFocusOnTab: true
        anchors.fill: parent
        padding: Theme.l

        ColumnLayout {
            spacing: Theme.xl
            width: parent.width

            SettingsSections {
                form: view.form
                sections: view.form.sections
            }

            ColumnLayout {
                id: own

                Layout.fillWidth: true
                spacing: Theme.xl
                visible: children.length > 0
            }

            SettingsSections {
                form: view.form
                sections: view.form.sectionsBelow
            }
        }
    }

    QuestionSheet {
        value: view.form.question

        onAnswered: yes => view.form.answer(yes)
    }
}
