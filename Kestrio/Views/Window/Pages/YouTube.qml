pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

Item {
    id: view

    required property YouTubeModel page

    EmptyActivityView {
        id: empty

        anchors.fill: parent
        value: view.page.empty ?? ({})
        visible: view.page.empty !== undefined
    }

    ScrollPane {
        anchors.fill: parent
        visible: !empty.visible

        ColumnLayout {
            spacing: Theme.l
            width: parent.width

            StatGrid {
                Layout.fillWidth: true
                stats: view.page.stats
            }

            Card {
                Layout.fillWidth: true
                symbol: view.page.videosHead.symbol ?? ""
                title: view.page.videosHead.title ?? ""

                accessory: [
                    FilterField {
                        Layout.fillWidth: true
                        Layout.maximumWidth: implicitWidth
                        Layout.minimumWidth: Theme.scaled(110)
                        text: view.page.filter

                        onTextChanged: view.page.filter = text
                    },
                    MenuButton {
                        entries: view.page.sorts
                        help: view.page.sortTitle
                        text: view.page.sort

                        onChosen: index => view.page.sortBy(index)
                    }
                ]

                Column {
                    Layout.fillWidth: true
                    visible: view.page.message === ""

                    Repeater {
                        model: view.page.videos

                        VideoEntry {
                            required property int index

                            isDivided: index > 0
                        }
                    }

                    PlainButton {
                        anchors.horizontalCenter: parent.horizontalCenter
                        quiet: true
                        symbol: "chevron.down"
                        symbolAtEnd: true
                        text: view.page.moreTitle
                        visible: text !== ""

                        onClicked: view.page.showMore()
                    }
                }

                Paragraph {
                    Layout.fillWidth: true
                    text: view.page.message
                    visible: text !== ""
                }
            }

            ItemsCard {
                Layout.fillWidth: true
                tint: Theme.red
                value: view.page.searches ?? ({})
                visible: view.page.searches !== undefined
            }
        }
    }
}
