pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// A few choices side by side, one of which holds: maps with `title` and `isCurrent`. Choosing one emits its place.
T.Control {
    id: control

    property var choices: []
    property string help: ""

    signal chosen(int index)

    Accessible.name: help
    Accessible.role: Accessible.PageTabList
    implicitHeight: Theme.controlHeight
    implicitWidth: row.implicitWidth + 4

    background: Rectangle {
        color: Theme.track
        radius: Theme.radiusSmall + 1
    }
    contentItem: Item {
        Row {
            id: row

            anchors.centerIn: parent
            height: parent.height - 4

            Repeater {
                model: control.choices

                Segment {
                    required property var modelData
                    required property int index

                    checked: modelData.isCurrent ?? false
                    height: row.height
                    text: modelData.title ?? ""

                    onClicked: control.chosen(index)
                }
            }
        }
    }
}
