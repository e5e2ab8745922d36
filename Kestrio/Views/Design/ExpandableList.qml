import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A long list, shown in portions, with a line between its rows. Each row is made of `delegate`, which has the property
// `row`.
ColumnLayout {
    id: list

    property var items: []
    property int initialCount: 10
    property alias delegate: repeater.delegate
    readonly property int shown: portion.shown
    readonly property string moreTitle: portion.moreTitle

    function showMore() {
        portion.showMore();
    }

    Layout.fillWidth: true
    spacing: 0
    width: parent?.width ?? implicitWidth

    ListPortion {
        id: portion

        count: list.items?.length ?? 0
        initialCount: list.initialCount
    }

    // Not a layout: a nested one may still arrange rows that a shorter list no longer has.
    Column {
        Layout.fillWidth: true

        Repeater {
            id: repeater

            model: RowsModel {
                limit: portion.shown
                rows: list.items
            }

            onItemAdded: (index, item) => {
                if (item.isDivided !== undefined)
                    item.isDivided = index > 0;
            }
        }
    }

    PlainButton {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: Theme.xs
        quiet: true
        symbol: "chevron.down"
        symbolAtEnd: true
        text: portion.moreTitle
        visible: text !== ""

        onClicked: portion.showMore()
    }
}
