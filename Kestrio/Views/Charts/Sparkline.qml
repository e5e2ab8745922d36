import QtQuick
import Kestrio.Charts
import Kestrio.Design

// A line through a short history. What it shows stands beside it in words.
SparklinePlot {
    Accessible.ignored: true
    color: Theme.accent
    implicitHeight: Theme.scaled(28)
    implicitWidth: Theme.scaled(96)
}
