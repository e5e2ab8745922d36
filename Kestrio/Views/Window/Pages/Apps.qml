pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

MasterDetail {
    id: view

    required property AppsModel page

    listName: page.listName

    pane: DetailPane {
        id: pane

        page: view.page

        accessory: CategoryMenu {
            value: pane.detail.categoryMenu ?? ({})

            onSelected: category => view.page.setCategory(category ?? "")
        }

        TopCard {
            Layout.fillWidth: true
            delegate: UsageRow {}
            value: pane.detail.websites
        }

        ItemsCard {
            Layout.fillWidth: true
            value: pane.detail.windows ?? ({})

            onTyped: filter => view.page.filter = filter
        }

        ItemsCard {
            Layout.fillWidth: true
            tint: Theme.purple
            value: pane.detail.alongside ?? ({})
            visible: pane.detail.alongside !== undefined
        }

        TrendCard {
            Layout.fillWidth: true
            page: view.page
        }
    }
}
