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

    UsageTrendPlot {
        Accessible.name: card.page.trend?.words ?? ""
        Accessible.role: Accessible.Chart
        Layout.fillWidth: true
        Layout.preferredHeight: Theme.scaled(150)
        font: Theme.caption
        mirrored: LayoutMirroring.enabled
        trend: card.page.trend

        palette: ChartPalette {
            categories: ["development", "work", "learning", "communication", "entertainment", "social", "other"].map(name => Theme.category(name))
            grid: Theme.separator
            ink: Theme.text
            label: Theme.textTertiary
        }
    }
}
