pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Window

Item {
    id: overview

    required property OverviewModel page

    Text {
        text: JSON.stringify(overview.page.content.stats)
        width: parent.width
        wrapMode: Text.Wrap
    }
}
