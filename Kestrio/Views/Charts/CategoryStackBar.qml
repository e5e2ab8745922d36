import QtQuick
import Kestrio.Charts
import Kestrio.Design

// How the time divides among categories, in one bar; `bar` is a categoryStackBarValue.
StackBarPlot {
    Accessible.name: bar.words
    Accessible.role: Accessible.Chart
    implicitHeight: Theme.scaled(12)
    implicitWidth: Theme.scaled(160)
    mirrored: LayoutMirroring.enabled
    palette: ChartTheme
}
