import QtQuick
import Kestrio.Design

// A thin line along which something moves while a report is loading, if that takes long enough to be noticed.
Item {
    id: bar

    property string name: ""
    property bool running: false
    readonly property bool isNoticed: running && !patience.running

    Accessible.ignored: !isNoticed
    Accessible.name: name
    Accessible.role: Accessible.ProgressBar
    clip: true
    implicitHeight: 2

    onRunningChanged: {
        if (running)
            patience.restart();
    }

    Timer {
        id: patience

        interval: 300
    }

    Rectangle {
        id: mark

        color: Theme.accent
        height: parent.height
        radius: 1
        visible: bar.isNoticed
        width: bar.width * 0.2

        NumberAnimation on x {
            duration: 1100
            from: -mark.width
            loops: Animation.Infinite
            running: bar.isNoticed && Theme.animation > 0
            to: bar.width
        }
    }
}
