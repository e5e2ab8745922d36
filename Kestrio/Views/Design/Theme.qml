pragma Singleton

import QtQuick
import Kestrio.Design

// Colours, type, spacing and motion of everything that shows. Follows `Appearance`.
QtObject {
    id: theme

    readonly property bool isDark: Appearance.isDark
    readonly property bool isHighContrast: Appearance.isHighContrast

    readonly property color window: palette.window
    readonly property color sidebar: palette.sidebar
    readonly property color card: palette.card
    readonly property color cardBorder: palette.cardBorder
    readonly property color text: palette.text
    readonly property color textSecondary: palette.textSecondary
    readonly property color textTertiary: palette.textTertiary
    readonly property color accent: palette.accent
    readonly property color accentText: palette.accentText
    readonly property color separator: palette.separator
    readonly property color track: palette.track
    readonly property color hover: palette.hover
    readonly property color pressed: palette.pressed
    readonly property color selection: palette.selection
    readonly property color focusRing: palette.focusRing
    readonly property color good: palette.good
    readonly property color info: palette.info
    readonly property color warning: palette.warning
    readonly property color critical: palette.critical
    readonly property color badgeText: palette.badgeText
    readonly property color tooltip: palette.tooltip
    readonly property color tooltipText: palette.tooltipText
    readonly property color shadow: palette.shadow
    readonly property color blue: palette.blue
    readonly property color brown: palette.brown
    readonly property color gray: palette.gray
    readonly property color green: palette.green
    readonly property color orange: palette.orange
    readonly property color pink: palette.pink
    readonly property color purple: palette.purple
    readonly property color red: palette.red
    readonly property color teal: palette.teal
    readonly property color yellow: palette.yellow

    // How much larger than designed text is wanted; what text stands in grows with it.
    readonly property real textScale: Appearance.textScale

    readonly property string fontFamily: "Inter Tabular"
    readonly property font caption: type(11, Font.Normal)
    readonly property font small: type(12, Font.Normal)
    readonly property font body: type(13, Font.Normal)
    readonly property font bodyStrong: type(13, Font.Medium)
    readonly property font headline: type(14, Font.DemiBold)
    readonly property font title: type(18, Font.DemiBold)
    readonly property font largeTitle: type(26, Font.DemiBold)
    readonly property font figure: type(22, Font.DemiBold)

    readonly property int xs: 4
    readonly property int s: 8
    readonly property int m: 12
    readonly property int l: 16
    readonly property int xl: 24
    readonly property int radius: 10
    readonly property int radiusSmall: 6

    // The height of a control that holds one line.
    readonly property int controlHeight: scaled(28)

    // How long a change of state takes, in milliseconds.
    readonly property int animation: Appearance.reducesMotion ? 0 : 120

    readonly property ThemePalette palette: isHighContrast ? (isDark ? highContrastDark : highContrastLight) : (isDark ? dark : light)
    readonly property ThemePalette light: LightPalette {}
    readonly property ThemePalette dark: DarkPalette {}
    readonly property ThemePalette highContrastLight: HighContrastLightPalette {}
    readonly property ThemePalette highContrastDark: HighContrastDarkPalette {}

    // A length that grows with the text.
    function scaled(length: real): int {
        return Math.round(length * textScale);
    }

    // The colour of a category, by its raw value.
    function category(name: string): color {
        return palette[Categories.colorName(name)];
    }

    // One of the colours above, by its name.
    function named(name: string): color {
        const color = name === "objectName" ? undefined : palette[name];
        return color ?? gray;
    }

    // What a colour is to say: the system panel's tones and the levels of its insights.
    function tone(name: string): color {
        switch (name) {
        case "good":
            return good;
        case "info":
            return info;
        case "cautious":
        case "warning":
            return warning;
        case "alarming":
        case "critical":
            return critical;
        default:
            return textSecondary;
        }
    }

    // The colour at this opacity, for tinted grounds.
    function faded(base: color, opacity: real): color {
        return Qt.rgba(base.r, base.g, base.b, base.a * opacity);
    }

    function type(pixels: real, weight: int): font {
        return Qt.font({
            "family": fontFamily,
            "pixelSize": Math.round(pixels * textScale),
            "weight": weight
        });
    }
}
