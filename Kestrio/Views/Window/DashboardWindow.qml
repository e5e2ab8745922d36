pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Kestrio.Design
import Kestrio.Window

// The dashboard: the sidebar with what is being recorded, and beside it the page of the picked section.
Window {
    id: window

    required property DashboardModel model

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    color: Theme.window
    height: model.size.height
    minimumHeight: 480
    minimumWidth: 720
    title: model.words.windowTitle
    width: model.size.width

    onClosing: {
        if (visibility === Window.Windowed)
            model.rememberSize(Qt.size(width, height));
    }
    onVisibilityChanged: model.setOnScreen(visibility !== Window.Hidden && visibility !== Window.Minimized)

    DashboardShortcuts {
        model: window.model

        onCloseRequested: window.close()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            Layout.fillHeight: true
            Layout.preferredWidth: isCompact ? Theme.scaled(40) + 2 * Theme.m : Theme.scaled(216)
            isCompact: window.width < Theme.scaled(560)
            model: window.model
        }

        Hairline {
            Layout.fillHeight: true
        }

        // Apart from this row: of a layout within another, what comes to show while the window gets its size is not
        // laid out.
        Item {
            Layout.fillHeight: true
            Layout.fillWidth: true
            implicitHeight: detail.implicitHeight
            implicitWidth: detail.implicitWidth

            DashboardDetail {
                id: detail

                anchors.fill: parent
                model: window.model
            }
        }
    }
}
