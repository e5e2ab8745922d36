// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The figures of a range at a glance, and the first few of every list.
Item {
    id: overview

    required property OverviewModel page
    readonly property var content: page.content

    EmptyActivityView {
        anchors.fill: parent
        value: overview.page.empty ?? ({})
        visible: overview.page.empty !== undefined
    }

    Loader {
        active: overview.page.empty === undefined && overview.content.stats !== undefined
        anchors.fill: parent

        sourceComponent: ScrollPane {
            ColumnLayout {
                spacing: Theme.m
                width: parent.width

                StatGrid {
                    Layout.fillWidth: true
                    stats: overview.content.stats ?? []
                }

                OverviewCards {
                    Layout.fillWidth: true
                    content: overview.content

                    onSeeAllRequested: section => overview.page.seeAll(section)
                }
            }
        }
    }
}
