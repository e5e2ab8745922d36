pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
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
