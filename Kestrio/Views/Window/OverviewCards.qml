import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design
import Kestrio.Window

// The lists of the overview: two beside each other where there is room.
GridLayout {
    id: cards

    required property var content

    signal seeAllRequested(string section)

    columnSpacing: Theme.m
    columns: width >= Theme.scaled(720) ? 2 : 1
    rowSpacing: Theme.m

    Card {
        Layout.columnSpan: cards.columns
        Layout.fillWidth: true
        symbol: cards.content.activity.head.symbol
        title: cards.content.activity.head.title

        ActivityChart {
            Layout.fillWidth: true
            title: cards.content.activity.head.title
            value: cards.content.activity.value
        }
    }

    Card {
        Layout.alignment: Qt.AlignTop
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.preferredWidth: 1
        symbol: cards.content.categories.head.symbol
        title: cards.content.categories.head.title

        CategoryBreakdown {
            Layout.fillWidth: true
            value: cards.content.categories.value
        }

        Item {
            Layout.fillHeight: true
        }
    }

    TopCard {
        value: cards.content.apps

        onSeeAllRequested: section => cards.seeAllRequested(section)
    }

    TopCard {
        value: cards.content.websites

        onSeeAllRequested: section => cards.seeAllRequested(section)
    }

    TopCard {
        value: cards.content.youtube

        onSeeAllRequested: section => cards.seeAllRequested(section)
    }

    TopCard {
        value: cards.content.alongside

        delegate: AlongsideRow {}
    }

    TopCard {
        value: cards.content.projects

        onSeeAllRequested: section => cards.seeAllRequested(section)
    }
}
