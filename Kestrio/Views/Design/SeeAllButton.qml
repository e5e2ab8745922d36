import QtQuick
import Kestrio.Design

// Leads to the page that has the whole list.
PlainButton {
    quiet: true
    symbol: Words.seeAllSymbol
    symbolAtEnd: true
    text: Words.seeAll
}
