pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The range that the page shows and the controls that move it, below it where there is no room beside it; of a page
// without a range its name.
Item {
    id: header

    required property DashboardModel model
    readonly property var controls: model.dateControls
    readonly property bool isWide: titles.implicitWidth + Theme.l + buttons.wholeWidth <= width
    readonly property bool mirrored: LayoutMirroring.enabled

    implicitHeight: !buttons.visible ? titles.implicitHeight : isWide ? Math.max(titles.implicitHeight, buttons.implicitHeight) : titles.implicitHeight + Theme.s + buttons.implicitHeight

    ColumnLayout {
        id: titles

        anchors.left: parent.left
        spacing: 1
        width: header.isWide && buttons.visible ? header.width - buttons.width - Theme.l : header.width

        Line {
            Accessible.name: text
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

        model: header.model
        visible: header.model.isReportPage
        width: Math.min(wholeWidth, header.width)
        x: header.isWide !== header.mirrored ? header.width - width : 0
        y: header.isWide ? Math.round((header.height - height) / 2) : titles.height + Theme.s
    }
}
