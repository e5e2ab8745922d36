import QtQuick

// A few words on a tinted ground, with a symbol where there is one.
Rectangle {
    id: badge

    property string text: ""
    property string symbol: ""
    property string help: ""
    property color tint: Theme.textSecondary

    Accessible.description: help
    Accessible.name: text
    Accessible.role: Accessible.StaticText
    border.color: Theme.isHighContrast ? tint : "transparent"
    color: Theme.faded(tint, Theme.isHighContrast ? 0 : Theme.isDark ? 0.22 : 0.13)
    implicitHeight: Theme.scaled(18)
    implicitWidth: row.implicitWidth + 2 * Theme.xs + 4
    radius: height / 2

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Theme.xs

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: badge.tint
            name: badge.symbol
            size: Theme.scaled(12)
            visible: name !== ""
        }

        Line {
            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.text
            font: Theme.caption
            text: badge.text
        }
    }

    Help {
        text: badge.help
    }
}
