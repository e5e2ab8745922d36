import QtQuick
import Kestrio.Design

// A symbol by the name that pages have for it, in one colour. For the eye only: what it says stands beside it in words.
Image {
    id: symbol

    property string name: ""
    property color color: Theme.text
    property real size: 16
    // Whether the reading direction is from right to left: what points somewhere is then turned around.
    property bool mirrored: false

    Accessible.ignored: true
    fillMode: Image.PreserveAspectFit
    height: size
    mirror: mirrored && Symbols.isDirectional(name)
    source: name === "" ? "" : "image://symbol/" + name + "?color=" + String(color).substring(1)
    sourceSize.height: size
    sourceSize.width: size
    width: size
}
