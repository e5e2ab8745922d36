import QtQuick
import QtQuick.Templates as T

// A row of a list that can be selected: `selected` shows it, its content is what stands in it.
T.ItemDelegate {
    id: row

    property bool selected: false
    default property alias content: holder.data

    Accessible.name: text
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: selected
    Accessible.onPressAction: row.clicked()
    bottomPadding: Theme.s
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    leftPadding: Theme.s + 2
    rightPadding: Theme.s + 2
    topPadding: Theme.s

    background: Rectangle {
        color: row.selected ? Theme.selection : row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"
        radius: Theme.radiusSmall + 2

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            shown: row.activeFocus
        }
    }
    contentItem: Item {
        id: holder

        implicitHeight: childrenRect.height
    }

    Keys.onReturnPressed: row.clicked()
    Keys.onEnterPressed: row.clicked()
}
