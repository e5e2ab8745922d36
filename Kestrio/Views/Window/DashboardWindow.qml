pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Window
import Kestrio.Window

Window {
    id: window

    required property DashboardModel model

    width: 1240
    height: 820
    minimumWidth: 860
    minimumHeight: 560
    title: model.words.windowTitle

    Row {
        anchors.fill: parent

        Sidebar {
            width: 220
            height: parent.height
            model: window.model
        }

        Loader {
            id: page

            function load() {
                setSource(window.model.pageSource, {
                    "page": window.model.page
                });
            }

            width: parent.width - 220
            height: parent.height
            Component.onCompleted: load()

            Connections {
                target: window.model
                function onPageChanged() {
                    page.load();
                }
            }
        }
    }
}
