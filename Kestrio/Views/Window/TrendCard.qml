import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design
import Kestrio.Window

// When what is selected was used.
Card {
    required property MasterDetailModel page

    symbol: page.trendHead.symbol
    title: page.trendHead.title

    UsageTrendChart {
        Layout.fillWidth: true
        Layout.preferredHeight: Theme.scaled(150)
        trend: parent.parent.page.trend
    }
}
