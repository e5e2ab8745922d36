import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// What is told of the selected site.
DetailPane {
    id: pane

    required property WebsitesModel page

    model: page

    accessory: CategoryMenu {
        value: pane.detail.categoryMenu ?? ({})

        onSelected: category => pane.page.setCategory(category ?? "")
    }

    ItemsCard {
        Layout.fillWidth: true
        value: pane.detail.pages ?? ({})

        onTyped: filter => pane.page.filter = filter
    }

    TopCard {
        Layout.fillWidth: true
        delegate: AlongsideRow {}
        value: pane.detail.alongside
    }

    TrendCard {
        Layout.fillWidth: true
        page: pane.page
    }
}
