import QtQuick
import Kestrio.Charts
import Kestrio.Design

// When one application, site or project was used; `trend` is a usageTrendValue.
UsageTrendPlot {
    id: chart

    property string title: ""

    Accessible.description: trend.words
    Accessible.name: title
    Accessible.role: Accessible.Chart
    font: Theme.caption
    implicitHeight: Theme.scaled(150)
    implicitWidth: Theme.scaled(320)
    mirrored: LayoutMirroring.enabled
    palette: ChartTheme
}
