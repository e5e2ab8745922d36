import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design

// One entry of a menu, or the line or heading between entries.
T.MenuItem {
    id: item

    property var entry: ({})
    property bool hasMarks: false
    readonly property bool isSeparator: entry.isSeparator ?? false
    readonly property bool isHeading: entry.isHeading ?? false
    readonly property bool isCurrent: entry.isCurrent ?? false
    readonly property string symbol: isCurrent ? Words.currentSymbol : entry.symbol ?? ""
    readonly property color ink: highlighted ? Theme.accentText : isHeading ? Theme.textTertiary : Theme.text

    Accessible.checkable: entry.isCurrent !== undefined
    Accessible.checked: isCurrent
    enabled: !isSeparator && !isHeading && (entry.isEnabled ?? true)
    font: isHeading ? Theme.caption : Theme.body
    hoverEnabled: true
    implicitHeight: isSeparator ? 9 : Theme.scaled(26)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: Theme.s
    opacity: enabled || isSeparator || isHeading ? 1 : 0.45
    rightPadding: Theme.m
    text: entry.title ?? ""

    background: Rectangle {
        color: item.highlighted ? Theme.accent : "transparent"
        radius: Theme.radiusSmall

        Hairline {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: item.isSeparator
        }
    }
    contentItem: RowLayout {
        spacing: Theme.s
        visible: !item.isSeparator

        Symbol {
            color: item.ink
            name: item.symbol
            opacity: name === "" ? 0 : 1
            size: Theme.scaled(14)
            visible: item.hasMarks && !item.isHeading
        }

        Line {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: item.ink
            font: item.font
            text: item.text
        }
    }
}
