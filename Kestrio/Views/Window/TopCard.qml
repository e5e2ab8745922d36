import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The first rows of a list, with the way to its page. A `TopCard` value; hidden without one.
Card {
    id: card

    required property var value
    property Component delegate: UsageRow {}

    signal seeAllRequested(string section)

    Layout.alignment: Qt.AlignTop
    Layout.fillHeight: true
    Layout.fillWidth: true
    Layout.preferredWidth: 1
    symbol: value?.head.symbol ?? ""
    title: value?.head.title ?? ""
    visible: value !== undefined

    accessory: SeeAllButton {
        Accessible.description: card.title
        visible: card.value?.seeAll !== undefined

        onClicked: card.seeAllRequested(card.value.seeAll)
    }

    ChartNote {
        Layout.fillWidth: true
        text: card.value?.note ?? ""
        visible: text !== ""
    }

    ExpandableList {
        Layout.fillWidth: true
        delegate: card.delegate
        items: card.value?.rows ?? []
        visible: items.length > 0
    }

    Paragraph {
        Layout.fillWidth: true
        text: card.value?.message ?? ""
        visible: text !== ""
    }

    Item {
        Layout.fillHeight: true
    }
}
