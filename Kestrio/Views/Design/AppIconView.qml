import QtQuick

// The icon of an application by its bundle identifier or its path; a symbol where the host has none. It is found without
// the window waiting for it.
Image {
    property string bundleID: ""
    property real size: 28

    Accessible.ignored: true
    fillMode: Image.PreserveAspectFit
    height: size
    source: bundleID === "" ? "" : "image://app/" + bundleID + "?color=" + String(Theme.textTertiary).substring(1)
    sourceSize.height: size
    sourceSize.width: size
    width: size
}
