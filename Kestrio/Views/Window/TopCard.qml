import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The first rows of a list, with the way to its page. A `TopCard` value; hidden without one.
Card {
    id: card

    required property var value
    property bool isAlongside: false // its rows are of what played alongside
    readonly property var rows: value?.rows ?? []

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

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        Layout.fillWidth: true

        Repeater {
            model: RowsModel {
                rows: card.isAlongside ? [] : card.rows
            }

            UsageRow {
                required property int index

                isDivided: index > 0
            }
        }

        Repeater {
            model: RowsModel {
                rows: card.isAlongside ? card.rows : []
            }

            AlongsideRow {
                required property int index

                isDivided: index > 0
            }
        }
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
