import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A card of items with a filter where it has one: `value` is an `ItemCard`. What is typed comes with `typed`.
Card {
    id: card

    required property var value
    property color tint: Theme.accent

    signal typed(string filter)

    symbol: value.head?.symbol ?? ""
    title: value.head?.title ?? ""

    accessory: FilterField {
        Layout.fillWidth: true
        Layout.maximumWidth: implicitWidth
        Layout.minimumWidth: Theme.scaled(110)
        visible: card.value.hasFilter ?? false

        onTextChanged: card.typed(text)
    }

    ExpandableList {
        Layout.fillWidth: true
        initialCount: card.value.initialCount ?? 0
        items: card.value.rows ?? []
        visible: items.length > 0

        delegate: UsageItemRow {
            tint: card.tint // qmllint disable unqualified
        }
    }

    Paragraph {
        Layout.fillWidth: true
        text: card.value.message ?? ""
        visible: text !== ""
    }
}
