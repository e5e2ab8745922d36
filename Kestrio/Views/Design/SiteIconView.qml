import QtQuick

// The badge of a site: its letter on a colour of its own, or the video site's symbol on red. `icon` is a map: `kind`, and
// of a letter `letter` and `color` with `hue`, `saturation`, `brightness`.
Rectangle {
    id: badge

    property var icon: ({})
    property real size: 28
    readonly property bool isVideoSite: icon?.kind === "videoSite"
    readonly property color ground: {
        const shade = icon?.color;
        if (isVideoSite || shade === undefined)
            return isVideoSite ? Theme.red : Theme.gray;
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
        color: "#ffffff"
        font.family: Theme.fontFamily
        font.pixelSize: Math.round(badge.size * 0.52)
        font.weight: Font.DemiBold
        text: badge.isVideoSite ? "" : badge.icon?.letter ?? ""
        textFormat: Text.PlainText
    }
}
