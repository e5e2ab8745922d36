import QtQuick
import Kestrio.Design

// What can be pressed, chosen and typed into.
Column {
    spacing: Theme.m
    width: parent?.width ?? implicitWidth

    Flow {
        width: parent.width
        spacing: Theme.s

        PlainButton {
            text: "Plain"
        }

        PlainButton {
            prominent: true
            symbol: "plus"
            text: "Add Project Rules…"
        }

        PlainButton {
            enabled: false
            symbol: "pause.fill"
            text: "Disabled"
        }

        PlainButton {
            down: true
            text: "Pressed"
        }

        PlainButton {
            quiet: true
            text: "Quiet"
        }

        SeeAllButton {}

        IconButton {
            help: "Refresh"
            symbol: "arrow.clockwise"
        }

        IconButton {
            checkable: true
            checked: true
            help: "Hide stretches shorter than one minute"
            symbol: "line.3.horizontal.decrease.circle"
        }

        IconButton {
            enabled: false
            help: "Next"
            symbol: "chevron.right"
        }

        OpenLinkButton {
            link: "https://example.org/"
        }
    }

    Flow {
        width: parent.width
        spacing: Theme.s

        MenuButton {
            entries: [
                {
                    "title": "For 15 minutes"
                },
                {
                    "title": "For 1 hour"
                },
                {
                    "isSeparator": true
                },
                {
                    "title": "Until I resume"
                }
            ]
            symbol: "pause.fill"
            text: "Pause Tracking"
        }

        MenuButton {
            compact: true
            entries: [
                {
                    "title": "Everything"
                }
            ]
            help: "Export the resource log."
            symbol: "square.and.arrow.up"
        }

        CategoryMenu {
            value: ({
                    "current": {
                        "label": "Development",
                        "color": "blue"
                    },
                    "entries": [
                        {
                            "title": "Development",
                            "category": "development",
                            "isCurrent": true
                        },
                        {
                            "title": "Work & Docs",
                            "category": "work",
                            "isCurrent": false
                        },
                        {
                            "title": "Reset to Default",
                            "isCurrent": false
                        }
                    ]
                })
        }

        DatePicker {
            date: 1700000000
            help: "Date"
            now: 1700400000
        }

        SegmentedControl {
            choices: [
                {
                    "title": "Day",
                    "isCurrent": true
                },
                {
                    "title": "Week"
                },
                {
                    "title": "Month"
                }
            ]
            help: "Range"
        }
    }

    Flow {
        width: parent.width
        spacing: Theme.m

        Switch {
            text: "Show time in the bar"
        }

        Switch {
            checked: true
            text: "Activity light"
        }

        Switch {
            checked: true
            enabled: false
            text: "Disabled"
        }
    }

    Flow {
        width: parent.width
        spacing: Theme.m

        FilterField {}

        FilterField {
            text: "kestrio"
        }

        FilterField {
            prompt: "Search titles, apps, URLs"
            width: Theme.scaled(260)
        }
    }
}
