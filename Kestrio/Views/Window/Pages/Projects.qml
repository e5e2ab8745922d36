pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

MasterDetail {
    id: view

    required property ProjectsModel page

    listName: page.listName

    emptyAccessory: PlainButton {
        prominent: true
        text: view.page.words.addRulesTitle

        onClicked: view.page.showingRules = true
    }
    pane: DetailPane {
        id: pane

        page: view.page

        TrendCard {
            Layout.fillWidth: true
            page: view.page
        }

        TopCard {
            Layout.fillWidth: true
            delegate: UsageRow {}
            value: pane.detail.apps
        }

        ItemsCard {
            Layout.fillWidth: true
            value: pane.detail.items ?? ({})

            onTyped: filter => view.page.filter = filter
        }
    }
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
