import QtQuick

// A thin line between things.
Rectangle {
    color: Theme.separator
    implicitHeight: 1
    implicitWidth: 1
}
