import QtQuick
import Kestrio.Charts
import Kestrio.Design

// A category's dot and name, as legends and readouts have it.
Row {
    id: key

    required property var value // {label, color}
    property alias font: label.font
    property alias textColor: label.color

    spacing: Theme.xs + 2

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.named(key.value?.color ?? "gray")
        height: Theme.scaled(8)
        radius: height / 2
        width: height
    }

    Line {
        id: label

        anchors.verticalCenter: parent.verticalCenter
        color: Theme.textSecondary
        font: Theme.caption
        text: key.value?.label ?? ""
    }
}
