import QtQuick
import Kestrio.Charts
import Kestrio.Design

// A report's hours or days as stacked columns, with a tooltip for the one under the pointer or chosen with the arrows.
Item {
    id: chart

    required property var value // an activityChartValue
    property string title: ""
    readonly property bool mirrored: LayoutMirroring.enabled

    implicitHeight: Theme.scaled(190) + Theme.m + legend.implicitHeight
    implicitWidth: Theme.scaled(320)

    ActivityChartPlot {
        id: plot

        Accessible.description: words
        Accessible.focusable: true
        Accessible.name: chart.title
        Accessible.role: Accessible.Chart
        activeFocusOnTab: true
        anchors.bottom: legend.top
        anchors.bottomMargin: Theme.m
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        chart: chart.value
        font: Theme.caption
        mirrored: chart.mirrored
        palette: ChartTheme

        FocusRing {
            shown: plot.activeFocus
        }

        ChartTooltip {
            readonly property real gap: Theme.s
            readonly property bool fitsAfter: plot.markedRight + gap + width <= plot.width

            head: plot.tooltipHead
            rows: plot.tooltipRows
            sum: plot.tooltipSum
            visible: plot.isMarked
            x: Math.round(Math.max(0, fitsAfter ? plot.markedRight + gap : plot.markedLeft - gap - width))
        }
    }

    CategoryLegend {
        id: legend

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        categories: chart.value?.legend ?? []
    }
}
