import QtQuick
import Kestrio.Design

// The badge of a site: its letter on a colour of its own, or the video site's symbol on red. `icon` is a map: `kind`, and
// of a letter `letter` and `color` with `hue`, `saturation`, `brightness`.
Rectangle {
    id: badge

    property var icon: ({})
    property real size: 28
    // The same in light and dark, as the letters' grounds are.
    readonly property color videoSiteRed: "#d4343f"
    // Letters on a light ground are dark: yellow and green ones could not be read otherwise.
    readonly property real lightness: 0.299 * ground.r + 0.587 * ground.g + 0.114 * ground.b
    readonly property color ink: lightness > 0.62 ? "#1c212b" : "#ffffff"
    readonly property bool isVideoSite: icon?.kind === "videoSite"
    readonly property color ground: {
        const shade = icon?.color;
        if (isVideoSite)
            return videoSiteRed;
        if (shade === undefined)
            return Theme.gray;
        return Qt.hsva(shade.hue, shade.saturation, shade.brightness, 1);
    }

    Accessible.ignored: true
    color: ground
    height: size
    implicitHeight: size
    implicitWidth: size
    radius: size * 0.24
    width: size

    Symbol {
        anchors.centerIn: parent
        color: "#ffffff"
        name: badge.isVideoSite ? Words.videoSiteSymbol : ""
        size: Math.round(badge.size * 0.5)
    }

    Text {
        anchors.centerIn: parent
        color: badge.ink
        font.family: Theme.fontFamily
        font.pixelSize: Math.round(badge.size * 0.52)
        font.weight: Font.DemiBold
        text: badge.isVideoSite ? "" : badge.icon?.letter ?? ""
        textFormat: Text.PlainText
    }
}
