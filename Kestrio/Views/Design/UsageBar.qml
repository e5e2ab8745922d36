import QtQuick

// How much of the whole, as a thin bar. What it shows stands beside it in words.
Rectangle {
    id: bar

    property real fraction: 0 // 0 to 1
    property color tint: Theme.accent
    readonly property real share: Math.max(0, Math.min(1, fraction || 0))

    color: Theme.track
    implicitHeight: 4
    implicitWidth: Theme.scaled(80)
    radius: height / 2

    Rectangle {
        anchors.left: parent.left
        color: bar.tint
        height: parent.height
        radius: parent.radius
        visible: bar.share > 0
        // Never less than a dot: a little is not nothing.
        width: Math.max(height, bar.share * parent.width)
    }
}
