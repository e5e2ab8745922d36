import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// Rows, badges and figures.
Column {
    id: rows

    spacing: Theme.l
    width: parent?.width ?? implicitWidth

    StatGrid {
        width: parent.width
        stats: [
            {
                "title": "Active Time",
                "symbol": "clock",
                "value": "6h 42m",
                "detail": "08:12 – 17:56",
                "tint": "blue"
            },
            {
                "title": "Productive",
                "symbol": "bolt.fill",
                "value": "4h 51m",
                "detail": "72% of active time",
                "tint": "green"
            },
            {
                "title": "Distracting",
                "symbol": "flame.fill",
                "value": "38m",
                "detail": "9% of active time",
                "tint": "red"
            },
            {
                "title": "Alongside",
                "symbol": "rectangle.on.rectangle",
                "value": "1h 20m",
                "detail": "20m video · 1h audio",
                "tint": "purple",
                "help": "Video on another screen or audio in the background while you worked. Not part of active time."
            },
            {
                "title": "YouTube",
                "symbol": "play.rectangle.fill",
                "value": "52m",
                "detail": "7 videos, 3 shorts",
                "tint": "red"
            },
            {
                "title": "App Switches",
                "symbol": "arrow.left.arrow.right",
                "value": "284",
                "detail": "17 apps · 41 sites",
                "tint": "gray"
            }
        ]
    }

    RowLayout {
        width: parent.width
        spacing: Theme.l

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "macwindow"
            title: "Top Apps"
            accessory: SeeAllButton {}

            ExpandableList {
                Layout.fillWidth: true
                initialCount: 5
                items: [
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.editor"
                        },
                        "title": "Editor",
                        "subtitle": "2h 40m focused · 12m alongside",
                        "duration": "2h 52m",
                        "fraction": 1,
                        "tint": "blue"
                    },
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.browser"
                        },
                        "title": "Browser with quite a long name that does not fit into its row at all",
                        "duration": "1h 31m",
                        "fraction": 0.53,
                        "tint": "teal"
                    },
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.missing"
                        },
                        "title": "No icon on this system",
                        "duration": "44m",
                        "fraction": 0.26,
                        "tint": "purple"
                    },
                    {
                        "icon": {
                            "kind": "symbol",
                            "symbol": "folder.fill"
                        },
                        "title": "kestrio",
                        "subtitle": "Editor, Terminal, Browser",
                        "duration": "12m",
                        "fraction": 0.07,
                        "tint": "orange"
                    },
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.mail"
                        },
                        "title": "Mail",
                        "duration": "4s",
                        "fraction": 0.0003,
                        "tint": "orange"
                    },
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.mail"
                        },
                        "title": "One more",
                        "duration": "4s",
                        "fraction": 0.0003,
                        "tint": "orange"
                    }
                ]

                delegate: UsageRow {}
            }
        }

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "globe"
            title: "Top Websites"
            accessory: SeeAllButton {}

            ExpandableList {
                Layout.fillWidth: true
                items: [
                    {
                        "icon": {
                            "kind": "site",
                            "letter": "G",
                            "color": {
                                "hue": 0.61,
                                "saturation": 0.55,
                                "brightness": 0.78
                            }
                        },
                        "title": "git.example.org",
                        "duration": "1h 2m",
                        "fraction": 1,
                        "tint": "blue"
                    },
                    {
                        "icon": {
                            "kind": "videoSite"
                        },
                        "title": "youtube.com",
                        "subtitle": "30m focused · 22m alongside",
                        "duration": "52m",
                        "fraction": 0.85,
                        "tint": "red"
                    },
                    {
                        "icon": {
                            "kind": "site",
                            "letter": "?",
                            "color": {
                                "hue": 0.12,
                                "saturation": 0.55,
                                "brightness": 0.78
                            }
                        },
                        "title": "—",
                        "duration": "3m",
                        "fraction": 0.05,
                        "tint": "gray"
                    },
                    {
                        "icon": {
                            "kind": "thumbnail",
                            "videoID": "abc"
                        },
                        "title": "A video without its picture",
                        "subtitle": "2× · last 14:20",
                        "duration": "12m",
                        "fraction": 0.2,
                        "tint": "red"
                    }
                ]

                delegate: UsageRow {}
            }
        }
    }

    RowLayout {
        width: parent.width
        spacing: Theme.l

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "list.bullet"
            title: "Windows & Activity"
            accessory: FilterField {}

            ExpandableList {
                Layout.fillWidth: true
                initialCount: 3
                items: Array.from({
                    "length": 240
                }, (_, i) => ({
                            "title": "Theme.qml — kestrio " + (i + 1),
                            "subtitle": i % 2 ? "https://git.example.org/kestrio/blob/main/Kestrio/Views/Design/Theme.qml" : undefined,
                            "detail": "12 times · last 14:20",
                            "link": i % 2 ? "https://git.example.org/" : undefined,
                            "duration": "1h 12m",
                            "fraction": 1 / (i + 1)
                        }))

                delegate: UsageItemRow {}
            }
        }

        Card {
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            symbol: "rectangle.on.rectangle"
            title: "Watched & listened alongside"

            ChartNote {
                Layout.fillWidth: true
                text: "Second screen & background audio — not counted in active time"
            }

            ExpandableList {
                Layout.fillWidth: true
                items: [
                    {
                        "icon": {
                            "kind": "videoSite"
                        },
                        "title": "How clocks are made",
                        "badge": {
                            "title": "Watching",
                            "help": "Watching alongside",
                            "symbol": "play.rectangle.fill"
                        },
                        "detail": "youtube.com · last 11:02",
                        "duration": "20m",
                        "fraction": 0.33
                    },
                    {
                        "icon": {
                            "kind": "app",
                            "bundleID": "org.example.browser"
                        },
                        "title": "Slow piano, one hour",
                        "badge": {
                            "title": "Listening",
                            "help": "Listening in background",
                            "symbol": "headphones"
                        },
                        "detail": "Browser · last 16:40",
                        "duration": "1h",
                        "fraction": 1
                    }
                ]

                delegate: AlongsideRow {}
            }
        }
    }

    Flow {
        width: parent.width
        spacing: Theme.s

        Repeater {
            model: [["Development", "blue"], ["Work & Docs", "teal"], ["Learning & AI", "purple"], ["Communication", "orange"], ["Entertainment", "red"], ["Social Media", "brown"], ["Other", "gray"]]

            CategoryPill {
                required property var modelData

                value: ({
                        "label": modelData[0],
                        "color": modelData[1]
                    })
            }
        }

        AlongsideBadge {
            value: ({
                    "title": "Focused",
                    "symbol": "cursorarrow.rays"
                })
        }
    }
}
