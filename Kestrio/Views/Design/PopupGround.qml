pragma ComponentBehavior: Bound

import QtQuick

// What lies under menus and other popups: a card that stands a little above the window.
Rectangle {
    id: ground

    border.color: Theme.cardBorder
    color: Theme.card
    radius: Theme.radius

    // A soft edge without effects, which the painting without a graphics driver does not have.
    Repeater {
        model: Theme.isHighContrast ? 0 : 4

        Rectangle {
            required property int index

            anchors.bottomMargin: -3 - index
            anchors.fill: parent
            anchors.margins: -1 - index
            anchors.topMargin: 1 - index
            border.color: Theme.faded(Theme.shadow, 0.8 - 0.2 * index)
            border.width: 3
            color: "transparent"
            radius: ground.radius + 1 + index
            z: -1
        }
    }
}
