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
    property bool hadFocus: false // something in it

    // What had the keyboard may go: a page with its controls, a band, a button. It is then never nowhere.
    function keepFocus() {
        const isLost = activeFocusItem === null || activeFocusItem === contentItem || activeFocusItem instanceof Loader;
        if (isLost && active && hadFocus && !detail.takeFocus())
            sidebar.takeFocus();
    }

    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    color: Theme.window
    height: model.size.height
    minimumHeight: 400
    minimumWidth: 480
    title: model.words.windowTitle
    width: model.size.width

    onActiveFocusItemChanged: {
        if (active && activeFocusItem !== null && activeFocusItem !== contentItem)
            hadFocus = true;
        patience.restart();
    }
    onClosing: {
        if (visibility === Window.Windowed)
            model.rememberSize(Qt.size(width, height));
    }
    onVisibilityChanged: model.setOnScreen(visibility !== Window.Hidden && visibility !== Window.Minimized)

    // Menus give it back by themselves, in less.
    Timer {
        id: patience

        interval: 250

        onTriggered: window.keepFocus()
    }

    DashboardShortcuts {
        model: window.model

        onCloseRequested: window.close()
        onSearchRequested: detail.takeSearch()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Sidebar {
            id: sidebar

            Layout.fillHeight: true
            Layout.preferredWidth: isCompact ? Theme.scaled(40) + 2 * Theme.m : Theme.scaled(216)
            isCompact: window.width < Theme.scaled(640)
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
