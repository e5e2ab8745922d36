import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A card of rows: `value` is a `TopCard`, each of its rows made of `delegate`.
Card {
    id: card

    required property var value
    required property Component delegate
    property int initialCount: 10

    symbol: value.head?.symbol ?? ""
    title: value.head?.title ?? ""

    ExpandableList {
        Layout.fillWidth: true
        delegate: card.delegate
        initialCount: card.initialCount
        items: card.value.rows ?? []
    }
}
