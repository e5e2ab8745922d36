import QtQuick
import Kestrio.Design
import Kestrio.Gallery

// All of the design system on one page, with switches for how it shows.
Window {
    id: window

    property bool isDark: false
    property bool isHighContrast: false
    property bool isMirrored: false
    property real textScale: 1
    readonly property real wholeHeight: pane.contentHeight

    color: Theme.window
    height: 900
    title: "Kestrio's components"
    visible: true

    Binding {
        property: "isDark"
        target: Trial
        value: window.isDark
    }

    Binding {
        property: "isHighContrast"
        target: Trial
        value: window.isHighContrast
    }

    Binding {
        property: "textScale"
        target: Trial
        value: window.textScale
    }

    ScrollPane {
        id: pane

        LayoutMirroring.childrenInherit: true
        LayoutMirroring.enabled: window.isMirrored
        anchors.fill: parent
        focus: true

        Column {
            spacing: Theme.xl
            width: parent.width

            Flow {
                spacing: Theme.l
                width: parent.width

                Switch {
                    checked: window.isDark
                    text: "Dark"

                    onToggled: window.isDark = checked
                }

                Switch {
                    checked: window.isHighContrast
                    text: "More contrast"

                    onToggled: window.isHighContrast = checked
                }

                Switch {
                    checked: window.isMirrored
                    text: "From right to left"

                    onToggled: window.isMirrored = checked
                }

                Switch {
                    checked: window.textScale > 1
                    text: "Text at 200 %"

                    onToggled: window.textScale = checked ? 2 : 1
                }
            }

            Sample {
                name: "Colours"

                PalettesSample {
                    width: parent.width
                }
            }

            Sample {
                name: "Controls"

                ControlsSample {
                    width: parent.width
                }
            }

            Sample {
                name: "Figures and rows"

                RowsSample {
                    width: parent.width
                }
            }

            Sample {
                name: "Lists, heads, bands, empty places"

                ListsSample {
                    width: parent.width
                }
            }

            Sample {
                name: "Type"

                TypeSample {
                    width: parent.width
                }
            }

            Sample {
                name: "Symbols"

                SymbolsSample {
                    width: parent.width
                }
            }
        }
    }
}
