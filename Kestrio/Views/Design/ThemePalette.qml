import QtQuick

// One complete set of colours: a set that lacks one cannot be loaded.
QtObject {
    required property color window
    required property color sidebar
    required property color card
    required property color cardBorder
    required property color text
    required property color textSecondary
    required property color textTertiary
    required property color accent
    required property color accentText
    required property color separator
    required property color track
    required property color hover
    required property color pressed
    required property color selection
    required property color focusRing
    required property color good
    required property color info
    required property color warning
    required property color critical
    required property color badgeText
    required property color tooltip
    required property color tooltipText
    required property color shadow
    required property color blue
    required property color brown
    required property color gray
    required property color green
    required property color orange
    required property color pink
    required property color purple
    required property color red
    required property color teal
    required property color yellow
}
