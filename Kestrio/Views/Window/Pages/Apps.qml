pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Window

MasterDetail {
    id: view

    required property AppsModel page

    listName: page.listName
    model: page
    pane: Qt.resolvedUrl("../AppPane.qml")
}
