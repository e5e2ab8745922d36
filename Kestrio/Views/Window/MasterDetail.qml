pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// A page with a list at its start and a pane about the selected row beside it, or below it where large text leaves no room.
Item {
    id: view

    required property MasterDetailModel model
    // The file of what tells of the selected row, made anew for each.
    required property url pane
    property string listName: ""
    property bool hasListFilter: false
    readonly property bool isStacked: width < Theme.scaled(440)
    property alias emptyAccessory: empty.accessory
    property alias toolbar: toolbarHolder.data

    function focusList() {
        list.forceActiveFocus(Qt.OtherFocusReason);
    }

    EmptyActivityView {
        id: empty

        anchors.fill: parent
        value: view.model.empty ?? ({})
        visible: view.model.empty !== undefined
    }

    GridLayout {
        anchors.fill: parent
        columnSpacing: 0
        columns: view.isStacked ? 1 : 3
        rowSpacing: 0
        visible: !empty.visible

        ColumnLayout {
            Layout.fillHeight: !view.isStacked || !pane.visible
            Layout.fillWidth: view.isStacked
            Layout.preferredHeight: Math.round(view.height * 0.45)
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
                    text: view.model.listFilter
                    visible: view.hasListFilter

                    onTextChanged: view.model.listFilter = text
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
                page: view.model
            }
        }

        Hairline {
            Layout.fillHeight: !view.isStacked
            Layout.fillWidth: view.isStacked
            visible: pane.visible
        }

        Item {
            id: pane

            Layout.fillHeight: true
            Layout.fillWidth: true
            visible: !view.isStacked || view.model.detail !== undefined

            Loader {
                readonly property bool isWanted: view.model.detail !== undefined

                function load() {
                    if (isWanted)
                        setSource(view.pane, {
                            "page": view.model
                        });
                    else
                        source = "";
                }

                anchors.fill: parent

                Component.onCompleted: load()
                onIsWantedChanged: load()
            }

            EmptyActivityView {
                anchors.fill: parent
                value: view.model.placeholder
                visible: view.model.detail === undefined
            }
        }
    }
}
