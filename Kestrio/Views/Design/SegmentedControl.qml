pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// A few choices side by side, one of which holds: maps with `title` and `isCurrent`. Choosing one emits its place. The
// tabulator leads to the one that holds, the arrows from there to the others.
T.GroupBox {
    id: control

    property var choices: []
    property string help: ""

    signal chosen(int index)

    function choose(place: int) {
        const segment = segments.itemAt(place);
        if (segment === null)
            return;
        chosen(place);
        segment.forceActiveFocus(Qt.TabFocusReason);
    }

    focusPolicy: Qt.NoFocus
    implicitHeight: Theme.controlHeight
    implicitWidth: row.implicitWidth + 4
    title: help

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
                id: segments

                model: RowsModel {
                    rows: control.choices
                }

                Segment {
                    id: segment

                    required property var row
                    required property int index

                    checked: segment.row.isCurrent ?? false
                    height: parent.height
                    text: segment.row.title ?? ""

                    Keys.onLeftPressed: control.choose(index + (control.mirrored ? 1 : -1))
                    Keys.onRightPressed: control.choose(index + (control.mirrored ? -1 : 1))
                    onClicked: control.chosen(index)
                }
            }
        }
    }
}
