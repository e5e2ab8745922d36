pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The tabs, one below the other. The tabulator leads to the picked one, the arrows from there to the others.
Rectangle {
    id: list

    required property SettingsModel model

    Accessible.name: model.words.tabsName
    Accessible.role: Accessible.List
    color: Theme.sidebar

    Column {
        id: column

        anchors.fill: parent
        anchors.margins: Theme.m
        spacing: 2

        Repeater {
            model: list.model.tabs

            ListRow {
                id: row

                required property var modelData

                activeFocusOnTab: selected || activeFocus
                bottomPadding: Theme.xs + 2
                selected: list.model.tab === modelData.rawValue
                text: modelData.label
                topPadding: Theme.xs + 2
                width: column.width

                Keys.onDownPressed: list.model.selectNeighbour(1)
                Keys.onUpPressed: list.model.selectNeighbour(-1)
                onClicked: list.model.select(modelData.rawValue)
                onSelectedChanged: {
                    if (selected && Window.activeFocusItem instanceof ListRow)
                        forceActiveFocus(Qt.TabFocusReason);
                }

                RowLayout {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    spacing: Theme.s

                    Symbol {
                        color: row.selected ? Theme.accent : Theme.textSecondary
                        name: row.modelData.symbol
                        size: Theme.scaled(16)
                    }

                    Line {
                        Accessible.ignored: true
                        Layout.fillWidth: true
                        font: row.selected ? Theme.bodyStrong : Theme.body
                        text: row.text
                    }
                }
            }
        }
    }
}
