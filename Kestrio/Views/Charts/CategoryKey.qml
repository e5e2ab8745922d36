import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// A category's dot and name, as legends and readouts have it.
RowLayout {
    id: key

    required property var value // {label, color}
    property alias font: label.font
    property alias textColor: label.color

    spacing: Theme.xs + 2

    Rectangle {
        color: Theme.named(key.value?.color ?? "gray")
        implicitHeight: Theme.scaled(8)
        implicitWidth: implicitHeight
        radius: height / 2
    }

    Line {
        id: label

        Accessible.ignored: true
        Layout.fillWidth: true
        color: Theme.textSecondary
        font: Theme.caption
        text: key.value?.label ?? ""
    }
}
