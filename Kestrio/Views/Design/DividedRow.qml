import QtQuick
import QtQuick.Layouts

// What the rows of an `ExpandableList` are made of: room around them, and a line above each but the first.
Item {
    id: divided

    default property alias content: holder.data
    property bool isDivided: false
    property real verticalPadding: Theme.s

    Layout.fillWidth: true
    implicitHeight: holder.implicitHeight + 2 * verticalPadding
    width: parent?.width ?? implicitWidth

    Hairline {
        anchors.left: parent.left
        anchors.right: parent.right
        visible: divided.isDivided
    }

    Item {
        id: holder

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        height: implicitHeight
        implicitHeight: childrenRect.height
    }
}
