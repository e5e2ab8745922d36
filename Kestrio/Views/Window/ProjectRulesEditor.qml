pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design
import Kestrio.Window

// Adds and removes the rules that put activity into projects.
ColumnLayout {
    id: editor

    required property ProjectRulesModel rules
    readonly property var words: rules.editor

    function add() {
        if (!addButton.enabled)
            return;
        rules.add(keyword.text, project.text);
        keyword.clear();
        project.clear();
        keyword.forceActiveFocus(Qt.OtherFocusReason);
    }

    spacing: Theme.m

    Paragraph {
        Layout.fillWidth: true
        font: Theme.small
        text: editor.words.help
    }

    GridLayout {
        Layout.fillWidth: true
        columnSpacing: Theme.s
        columns: editor.width < Theme.scaled(460) ? 1 : 3
        rowSpacing: Theme.s

        TextEntry {
            id: keyword

            Layout.fillWidth: true
            Layout.preferredWidth: 3
            focus: true
            prompt: editor.words.keywordPrompt

            onAccepted: editor.add()
        }

        TextEntry {
            id: project

            Layout.fillWidth: true
            Layout.preferredWidth: 3
            prompt: editor.words.projectPrompt

            onAccepted: editor.add()
        }

        PlainButton {
            id: addButton

            enabled: editor.rules.canAdd(keyword.text)
            text: editor.words.addTitle

            onClicked: editor.add()
        }
    }

    Rectangle {
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.minimumHeight: Theme.scaled(90)
        border.color: Theme.cardBorder
        color: Theme.card
        radius: Theme.radiusSmall

        ListView {
            id: list

            Accessible.role: Accessible.List
            T.ScrollBar.vertical: ThinScrollBar {}
            anchors.fill: parent
            anchors.margins: 1
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            leftMargin: Theme.m
            rightMargin: Theme.m

            delegate: DividedRow {
                id: rule

                required property var row
                required property int index

                Accessible.description: row.project
                Accessible.name: row.keyword
                Accessible.role: Accessible.ListItem
                isDivided: index > 0
                verticalPadding: Theme.xs
                width: list.width - list.leftMargin - list.rightMargin

                RowLayout {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    spacing: Theme.s

                    Line {
                        Accessible.ignored: true
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        text: rule.row.keyword
                    }

                    Symbol {
                        color: Theme.textTertiary
                        mirrored: editor.LayoutMirroring.enabled
                        name: "chevron.right"
                        size: Theme.scaled(13)
                    }

                    Line {
                        Accessible.ignored: true
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        color: rule.row.isIgnored ? Theme.textTertiary : Theme.text
                        text: rule.row.project
                    }

                    IconButton {
                        Accessible.description: rule.row.keyword
                        help: editor.words.deleteTitle
                        symbol: editor.words.deleteSymbol

                        onClicked: editor.rules.remove(rule.row.id)
                    }
                }
            }
            model: RowsModel {
                rows: editor.words.rows
            }
        }

        Line {
            anchors.centerIn: parent
            color: Theme.textTertiary
            text: editor.words.emptyText
            visible: list.count === 0
        }
    }
}
