pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Kestrio.Design
import Kestrio.Window

// The frame of a panel: a rounded card without a title bar, as tall as what stands in it and no taller than its room.
// `content` scrolls where the room is too small; head and foot stay.
Window {
    id: window

    required property PanelModel panelModel
    required property size room
    property bool isBlended: true // with what is behind it: what it leaves see-through is black otherwise
    readonly property real padding: Theme.l
    property real wantedWidth: Theme.scaled(348)
    readonly property int fixedHeight: Math.round(room.height > 0 ? Math.min(frame.wantedHeight, room.height) : frame.wantedHeight)
    readonly property int fixedWidth: Math.round(room.width > 0 ? Math.min(wantedWidth, room.width) : wantedWidth)
    property alias head: headHolder.data
    property alias foot: footHolder.data
    default property alias content: contentHolder.data

    color: isBlended ? "transparent" : Theme.window
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    height: fixedHeight
    // Of one size only, or compositors that tile would stretch it.
    maximumHeight: fixedHeight
    maximumWidth: fixedWidth
    minimumHeight: fixedHeight
    minimumWidth: fixedWidth
    width: fixedWidth

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft

    Rectangle {
        id: frame

        readonly property real wantedHeight: column.implicitHeight + pane.contentHeight + 2

        Accessible.name: window.title
        Accessible.role: Accessible.Dialog
        anchors.fill: parent
        border.color: Theme.cardBorder
        color: Theme.window
        focus: true
        radius: window.isBlended ? Theme.radius + 2 : 0

        Keys.forwardTo: [pane]
        Keys.onEscapePressed: window.close()

        ColumnLayout {
            id: column

            anchors.fill: parent
            anchors.margins: 1
            spacing: 0

            ColumnLayout {
                id: headHolder

                Layout.fillWidth: true
                Layout.leftMargin: window.padding
                Layout.rightMargin: window.padding
                Layout.topMargin: window.padding
                spacing: 0
            }

            ScrollPane {
                id: pane

                Layout.fillHeight: true
                Layout.fillWidth: true
                padding: 0

                ColumnLayout {
                    id: contentHolder

                    spacing: Theme.m
                    width: pane.width - 2 * window.padding
                    x: window.padding
                }
            }

            Line {
                Accessible.role: Accessible.AlertMessage
                Layout.bottomMargin: Theme.s
                Layout.fillWidth: true
                Layout.leftMargin: window.padding
                Layout.rightMargin: window.padding
                color: Theme.critical
                font: Theme.small
                text: window.panelModel.failure
                visible: text !== ""
            }

            Hairline {
                Layout.fillWidth: true
            }

            RowLayout {
                id: footHolder

                Layout.fillWidth: true
                Layout.margins: Theme.s
                spacing: Theme.xs
            }
        }
    }
}
