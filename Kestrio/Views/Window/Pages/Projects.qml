pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

MasterDetail {
    id: view

    required property ProjectsModel page

    listName: page.listName
    model: page

    emptyAccessory: PlainButton {
        prominent: true
        text: view.page.words.addRulesTitle

        onClicked: view.page.showingRules = true
    }
    pane: Qt.resolvedUrl("../ProjectPane.qml")
    toolbar: [
        Line {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.s
            color: Theme.textSecondary
            font: Theme.headline
            text: view.listName
        },
        IconButton {
            help: view.page.words.rulesHelp
            symbol: view.page.words.rulesSymbol

            onClicked: view.page.showingRules = true
        }
    ]

    RulesSheet {
        done: view.page.words.sheetDone
        rules: view.page.rules
        title: view.page.words.sheetTitle
        visible: view.page.showingRules

        onClosed: view.page.showingRules = false
    }
}
