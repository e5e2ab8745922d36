pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

MasterDetail {
    id: view

    required property WebsitesModel page

    hasListFilter: true
    listName: page.listName

    pane: DetailPane {
        id: pane

        page: view.page

        accessory: CategoryMenu {
            value: pane.detail.categoryMenu ?? ({})

            onSelected: category => view.page.setCategory(category ?? "")
        }

        ItemsCard {
            Layout.fillWidth: true
            value: pane.detail.pages ?? ({})

            onTyped: filter => view.page.filter = filter
        }

        TopCard {
            Layout.fillWidth: true
            delegate: AlongsideRow {}
            value: pane.detail.alongside
        }

        TrendCard {
            Layout.fillWidth: true
            page: view.page
        }
    }
}
