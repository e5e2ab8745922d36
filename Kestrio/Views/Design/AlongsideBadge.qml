import QtQuick

// Tells of which kind a session was.
Badge {
    required property var value

    help: value?.help ?? ""
    symbol: value?.symbol ?? ""
    text: value?.title ?? ""
    tint: Theme.purple
}
