pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design
import Kestrio.Window

ColumnLayout {
    id: view

    required property CategorySettingsModel tab

    function add() {
        if (!addButton.enabled)
            return;
        tab.add(domain.text);
        domain.clear();
    }

    spacing: Theme.m

    Paragraph {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.l
        Layout.rightMargin: Theme.l
        Layout.topMargin: Theme.l
        font: Theme.small
        text: view.tab.words.help
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.l
        Layout.rightMargin: Theme.l
        spacing: Theme.m

        SegmentedControl {
            choices: view.tab.kinds
            help: view.tab.words.kindsName

            onChosen: index => view.tab.chooseKind(index)
        }

        Item {
            Layout.fillWidth: true
        }

        FilterField {
            Layout.fillWidth: true
            Layout.maximumWidth: Theme.scaled(240)
            text: view.tab.filter

            onTextChanged: view.tab.filter = text
        }
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.l
        Layout.rightMargin: Theme.l
        spacing: Theme.s
        visible: view.tab.isAboutWebsites

        TextEntry {
            id: domain

            Layout.fillWidth: true
            prompt: view.tab.words.domainPrompt

            onAccepted: view.add()
        }

        CategoryMenu {
            value: view.tab.newCategory

            onSelected: category => view.tab.chooseNewCategory(category)
        }

        PlainButton {
            id: addButton

            enabled: view.tab.canAdd(domain.text)
            text: view.tab.words.addTitle

            onClicked: view.add()
        }
    }

    Rectangle {
        Layout.bottomMargin: Theme.l
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.leftMargin: Theme.l
        Layout.rightMargin: Theme.l
        border.color: Theme.cardBorder
        color: Theme.card
        radius: Theme.radius

        ListView {
            id: list

            Accessible.role: Accessible.List
            T.ScrollBar.vertical: ThinScrollBar {}
            anchors.fill: parent
            anchors.margins: 1
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            leftMargin: Theme.l
            model: view.tab.rows
            rightMargin: Theme.l

            delegate: CategoryRow {
                width: list.width - list.leftMargin - list.rightMargin

                onSelected: category => view.tab.setCategory(row.id, category)
            }
        }

        Line {
            anchors.centerIn: parent
            color: Theme.textTertiary
            text: view.tab.emptyText
            visible: list.count === 0
        }
    }
}
