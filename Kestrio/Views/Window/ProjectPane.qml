import QtQuick
import QtQuick.Layouts
import Kestrio.Window

// What is told of the selected project.
DetailPane {
    id: pane

    required property ProjectsModel page

    model: page

    TrendCard {
        Layout.fillWidth: true
        page: pane.page
    }

    TopCard {
        Layout.fillWidth: true
        value: pane.detail.apps
    }

    ItemsCard {
        Layout.fillWidth: true
        value: pane.detail.items ?? ({})

        onTyped: filter => pane.page.filter = filter
    }
}
