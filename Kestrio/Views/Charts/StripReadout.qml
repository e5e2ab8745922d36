import QtQuick
import QtQuick.Layouts
import Kestrio.Charts
import Kestrio.Design

// What was done at the moment pointed at, in one line whose height never changes; in two where large text needs them.
Rectangle {
    id: readout

    required property StripPointer pointer
    readonly property bool isNarrow: width < Theme.scaled(480)

    Accessible.ignored: true
    color: Theme.hover
    implicitHeight: Theme.scaled(isNarrow ? 48 : 32)
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
            maximumLineCount: readout.isNarrow ? 2 : 1
            text: readout.pointer.text
            wrapMode: Text.Wrap
        }
    }

    GridLayout {
        anchors.left: parent.left
        anchors.leftMargin: Theme.s + 2
        anchors.right: parent.right
        anchors.rightMargin: Theme.s + 2
        anchors.verticalCenter: parent.verticalCenter
        columnSpacing: Theme.s
        columns: readout.isNarrow ? 1 : 2
        rowSpacing: 0
        visible: readout.pointer.isSession

        RowLayout {
            spacing: Theme.s

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
        }

        RowLayout {
            Layout.fillWidth: readout.isNarrow
            spacing: Theme.s

            CategoryKey {
                Layout.fillWidth: readout.isNarrow
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
}
