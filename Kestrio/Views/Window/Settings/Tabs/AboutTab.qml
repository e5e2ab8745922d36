pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

ScrollPane {
    id: view

    required property AboutSettingsModel tab
    readonly property var about: tab.about

    activeFocusOnTab: true

    ColumnLayout {
        spacing: Theme.xs
        width: parent.width

        Symbol {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.l
            color: Theme.accent
            name: view.about.symbol
            size: Theme.scaled(64)
        }

        Line {
            Accessible.name: text
            Accessible.role: Accessible.Heading
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.s
            font: Theme.largeTitle
            text: view.about.name
        }

        Line {
            Layout.alignment: Qt.AlignHCenter
            color: Theme.textSecondary
            text: view.about.version
        }

        PlainButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.m
            symbol: view.tab.copySymbol
            text: view.tab.copyTitle

            onClicked: view.tab.copy()
        }

        ColumnLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.l
            Layout.topMargin: Theme.xl
            spacing: Theme.m

            Repeater {
                model: view.about.points

                RowLayout {
                    id: point

                    required property var modelData

                    spacing: Theme.m

                    Symbol {
                        color: Theme.good
                        name: point.modelData.symbol
                        size: Theme.scaled(18)
                    }

                    Line {
                        text: point.modelData.text
                    }
                }
            }
        }

        FootButton {
            Accessible.role: Accessible.Link
            Layout.alignment: Qt.AlignHCenter
            text: Words.credit

            onClicked: WebLinks.open(Words.creditLink)
        }
    }
}
