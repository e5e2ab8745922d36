pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Window

MasterDetail {
    id: view

    required property WebsitesModel page

    hasListFilter: true
    listName: page.listName
    model: page
    pane: Qt.resolvedUrl("../WebsitePane.qml")
}
