pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The range that the page shows and the controls that move it; of a page without a range its name.
GridLayout {
    id: header

    required property DashboardModel model
    readonly property var controls: model.dateControls

    columnSpacing: Theme.l
    columns: titles.implicitWidth + buttons.implicitWidth + columnSpacing <= width ? 2 : 1
    rowSpacing: Theme.s

    ColumnLayout {
        id: titles

        Layout.fillWidth: true
        spacing: 1

        Line {
            Accessible.role: Accessible.Heading
            Layout.fillWidth: true
            font: Theme.title
            text: header.model.isReportPage ? header.controls.title : header.model.sectionLabel
        }

        Line {
            Layout.fillWidth: true
            color: Theme.textSecondary
            font: Theme.small
            text: header.controls.subtitle
            visible: header.model.isReportPage
        }
    }

    RangeControls {
        id: buttons

        Layout.alignment: Qt.AlignVCenter
        model: header.model
        visible: header.model.isReportPage
    }
}
