import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design
import Kestrio.Window

// When what is selected was used.
Card {
    id: card

    required property MasterDetailModel page

    symbol: page.trendHead.symbol
    title: page.trendHead.title

    UsageTrendChart {
        Layout.fillWidth: true
        Layout.preferredHeight: implicitHeight
        title: card.title
        trend: card.page.trend
    }
}
