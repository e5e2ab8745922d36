import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// What was done at the moment pointed at, in one line whose height never changes.
Rectangle {
    id: readout

    required property StripPointer pointer

    Accessible.ignored: true
    color: Theme.hover
    implicitHeight: Theme.scaled(32)
    radius: Theme.radiusSmall

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.s + 2
        anchors.rightMargin: Theme.s + 2
        spacing: Theme.s
        visible: !readout.pointer.isSession

        Symbol {
            color: Theme.textTertiary
            name: readout.pointer.symbol
            size: Theme.scaled(15)
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.textSecondary
            text: readout.pointer.text
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.s + 2
        anchors.rightMargin: Theme.s + 2
        spacing: Theme.s
        visible: readout.pointer.isSession

        AppIconView {
            bundleID: readout.pointer.bundleID
            size: Theme.scaled(18)
        }

        Line {
            Accessible.ignored: true
            font: Theme.bodyStrong
            text: readout.pointer.appName
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            Layout.minimumWidth: Theme.scaled(40)
            color: Theme.textSecondary
            text: readout.pointer.title
        }

        CategoryKey {
            Layout.fillWidth: false
            font: Theme.small
            value: readout.pointer.category
        }

        Line {
            Accessible.ignored: true
            color: Theme.textSecondary
            font: Theme.small
            text: readout.pointer.times
        }
    }
}
