pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// Lists, heads, bands and empty places.
Column {
    id: lists

    property int selected: 0

    spacing: Theme.l
    width: parent?.width ?? implicitWidth

    Banner {
        width: parent.width
        value: ({
                "symbol": "lock.shield",
                "tint": "orange",
                "title": "Window titles aren't being recorded",
                "text": "Accessibility access lets Kestrio read the title of the window in front, so that it can tell documents and projects apart.",
                "buttons": [
                    {
                        "title": "Grant Access",
                        "action": "grantAccessibility"
                    },
                    {
                        "title": "Dismiss",
                        "symbol": "xmark",
                        "action": "dismiss"
                    }
                ]
            })
    }

    RowLayout {
        width: parent.width
        spacing: Theme.l

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.preferredWidth: Theme.scaled(300)

            Repeater {
                model: 3

                ListRow {
                    id: listRow

                    required property int index

                    Layout.fillWidth: true
                    selected: lists.selected === index
                    text: "Row " + index

                    onClicked: lists.selected = index

                    UsageRow {
                        row: ({
                                "icon": {
                                    "kind": "app",
                                    "bundleID": ["org.example.editor", "org.example.browser", "org.example.mail"][listRow.index]
                                },
                                "title": ["Editor", "Browser", "Mail"][listRow.index],
                                "duration": ["2h 52m", "1h 31m", "12m"][listRow.index],
                                "fraction": [1, 0.53, 0.07][listRow.index],
                                "tint": ["blue", "teal", "orange"][listRow.index]
                            })
                        verticalPadding: 0
                    }
                }
            }
        }

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true

            DetailHeader {
                Layout.fillWidth: true
                value: ({
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.editor"
                        },
                        "title": "Editor",
                        "duration": "2h 52m",
                        "share": "43% of active time",
                        "stats": ["128 sessions", "org.example.editor"],
                        "note": "2h 40m focused · 12m alongside"
                    })
                accessory: CategoryMenu {
                    value: ({
                            "current": {
                                "label": "Development",
                                "color": "blue"
                            },
                            "entries": []
                        })
                }
            }

            RowLayout {
                Layout.topMargin: Theme.m
                spacing: Theme.m

                VideoThumbnail {
                    value: ({
                            "videoID": "abc"
                        })
                }

                Repeater {
                    model: ["A", "W", "7", "Ж"]

                    SiteIconView {
                        required property string modelData
                        required property int index

                        icon: ({
                                "kind": "site",
                                "letter": modelData,
                                "color": {
                                    "hue": index / 4,
                                    "saturation": 0.55,
                                    "brightness": 0.78
                                }
                            })
                        size: 32
                    }
                }

                SiteIconView {
                    icon: ({
                            "kind": "videoSite"
                        })
                    size: 32
                }
            }
        }
    }

    Card {
        width: parent.width

        EmptyActivityView {
            Layout.fillWidth: true
            value: ({
                    "title": "No projects detected",
                    "symbol": "folder",
                    "message": "Projects are detected from the titles of editors and terminals. Add rules to put anything else into a project."
                })
            accessory: PlainButton {
                prominent: true
                text: "Add Project Rules…"
            }
        }
    }

    CreditLine {}
}
