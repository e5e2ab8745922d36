import QtQuick
import Kestrio.Design
import Kestrio.Window

Item {
    id: view

    required property ProjectSettingsModel tab

    ProjectRulesEditor {
        anchors.fill: parent
        anchors.margins: Theme.l
        rules: view.tab.rules
    }
}
