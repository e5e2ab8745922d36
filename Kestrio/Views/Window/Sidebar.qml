pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Kestrio.Window

Column {
    id: sidebar

    required property DashboardModel model

    Repeater {
        model: sidebar.model.groups

        Column {
            id: group

            required property var modelData

            Text {
                text: group.modelData.title
            }

            Repeater {
                model: group.modelData.sections

                Button {
                    required property var modelData

                    text: modelData.label
                    checked: sidebar.model.section === modelData.rawValue
                    onClicked: sidebar.model.select(modelData.rawValue)
                }
            }
        }
    }
}
