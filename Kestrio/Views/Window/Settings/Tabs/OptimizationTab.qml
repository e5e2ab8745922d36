pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

SettingsForm {
    id: view

    required property OptimizationSettingsModel tab

    form: tab

    ColumnLayout {
        Layout.fillWidth: true
        enabled: view.tab.isReachable
        spacing: Theme.s

        HelpHeader {
            Layout.fillWidth: true
            help: view.tab.schedulesHead.help
            title: view.tab.schedulesHead.title
        }

        // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
        Column {
            id: schedules

            Layout.fillWidth: true
            spacing: Theme.s

            Repeater {
                model: RowsModel {
                    rows: view.tab.schedules
                }

                ScheduleEditor {
                    tab: view.tab
                    width: schedules.width
                }
            }
        }

        PlainButton {
            symbol: "plus"
            text: view.tab.words.addSchedule

            onClicked: view.tab.addSchedule()
        }
    }
}
