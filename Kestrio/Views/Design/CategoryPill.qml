import QtQuick

// A category: its colour and its name.
Rectangle {
    id: pill

    required property var value
    readonly property color tint: Theme.named(value?.color ?? "gray")

    Accessible.name: value?.label ?? ""
    Accessible.role: Accessible.StaticText
    border.color: Theme.isHighContrast ? tint : "transparent"
    color: Theme.faded(tint, Theme.isHighContrast ? 0 : Theme.isDark ? 0.22 : 0.13)
    implicitHeight: Theme.scaled(22)
    implicitWidth: row.implicitWidth + 2 * Theme.s + 2
    radius: height / 2

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Theme.xs + 2

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: pill.tint
            height: Theme.scaled(8)
            radius: height / 2
            width: height
        }

        Line {
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            font: Theme.small
            text: pill.value?.label ?? ""
        }
    }
}
