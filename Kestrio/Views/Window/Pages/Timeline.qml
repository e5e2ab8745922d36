pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Window

ListView {
    id: timeline

    required property TimelineModel page

    model: page.rows
    delegate: Text {
        required property string kind
        required property var value
        required property int index

        text: kind + JSON.stringify(value)

        TapHandler {
            onTapped: timeline.page.rows.toggle(parent.index)
        }
    }
}
