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

        Repeater {
            model: RowsModel {
                rows: view.tab.schedules
            }

            ScheduleEditor {
                tab: view.tab
            }
        }

        PlainButton {
            symbol: "plus"
            text: view.tab.words.addSchedule

            onClicked: view.tab.addSchedule()
        }
    }
}
