import QtQuick
import Kestrio.Design

// Opens an address with the application that the person chose for it. Not there without one.
IconButton {
    id: button

    property string link: ""

    signal opened(string link)

    help: Words.openLink
    size: Theme.scaled(24)
    symbol: Words.openLinkSymbol
    symbolSize: Theme.scaled(14)
    visible: WebLinks.canOpen(link)

    onClicked: opened(link)
    onOpened: address => WebLinks.open(address)
}
