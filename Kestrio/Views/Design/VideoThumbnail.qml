import QtQuick
import Kestrio.Design

// The picture of a video, 16 to 9. `value` has the `url` only where pictures are wanted: without it nothing is asked for.
// While it loads, and when that fails, the placeholder shows.
Rectangle {
    id: thumbnail

    property var value: ({})
    readonly property bool isLoaded: picture.isLoaded

    Accessible.ignored: true
    color: Theme.track
    implicitHeight: Math.round(width * 9 / 16)
    implicitWidth: Theme.scaled(96)
    radius: Math.min(Theme.radiusSmall, height * 0.2)

    Symbol {
        anchors.centerIn: parent
        color: Theme.textTertiary
        name: Words.thumbnailSymbol
        size: Math.round(Math.min(thumbnail.height * 0.45, Theme.scaled(18)))
        visible: !thumbnail.isLoaded
    }

    RoundedPicture {
        id: picture

        anchors.fill: parent
        radius: thumbnail.radius
        source: thumbnail.value?.url ?? ""
    }
}
