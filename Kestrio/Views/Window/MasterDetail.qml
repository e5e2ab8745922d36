pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// A page with a list at its start and a pane about the selected row beside it. The pane is made anew for each selection.
Item {
    id: view

    required property MasterDetailModel page
    required property Component pane
    property string listName: ""
    property bool hasListFilter: false
    property alias emptyAccessory: empty.accessory
    property alias toolbar: toolbarHolder.data

    function focusList() {
        list.forceActiveFocus(Qt.OtherFocusReason);
    }

    EmptyActivityView {
        id: empty

        anchors.fill: parent
        value: view.page.empty ?? ({})
        visible: view.page.empty !== undefined
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        visible: !empty.visible

        ColumnLayout {
            Layout.fillHeight: true
            Layout.preferredWidth: Math.round(Math.max(Math.min(view.width * 0.36, Theme.scaled(380)), Math.min(Theme.scaled(240), view.width * 0.45)))
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.m
                Layout.rightMargin: Theme.m
                Layout.topMargin: Theme.m
                spacing: Theme.s
                visible: view.hasListFilter || toolbarHolder.children.length > 0

                FilterField {
                    Layout.fillWidth: true
                    text: view.page.listFilter
                    visible: view.hasListFilter

                    onTextChanged: view.page.listFilter = text
                }

                RowLayout {
                    id: toolbarHolder

                    Layout.fillWidth: !view.hasListFilter
                }
            }

            SelectableList {
                id: list

                Layout.fillHeight: true
                Layout.fillWidth: true
                name: view.listName
                page: view.page
            }
        }

        Hairline {
            Layout.fillHeight: true
        }

        Item {
            Layout.fillHeight: true
            Layout.fillWidth: true

            Loader {
                id: paneLoader

                active: view.page.detail !== undefined
                anchors.fill: parent
                sourceComponent: view.pane
            }

            EmptyActivityView {
                anchors.fill: parent
                value: view.page.placeholder
                visible: !paneLoader.active
            }
        }
    }
}
