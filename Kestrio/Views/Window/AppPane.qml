import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// What is told of the selected application.
DetailPane {
    id: pane

    required property AppsModel page

    model: page

    accessory: CategoryMenu {
        value: pane.detail.categoryMenu ?? ({})

        onSelected: category => pane.page.setCategory(category ?? "")
    }

    TopCard {
        Layout.fillWidth: true
        delegate: UsageRow {}
        value: pane.detail.websites
    }

    ItemsCard {
        Layout.fillWidth: true
        value: pane.detail.windows ?? ({})

        onTyped: filter => pane.page.filter = filter
    }

    ItemsCard {
        Layout.fillWidth: true
        tint: Theme.purple
        value: pane.detail.alongside ?? ({})
        visible: pane.detail.alongside !== undefined
    }

    TrendCard {
        Layout.fillWidth: true
        page: pane.page
    }
}
