import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// What the light says: `value` is an `ActivityBanner`.
Rectangle {
    id: banner

    required property var value
    readonly property color light: value.isActive ? Theme.good : Theme.critical

    Accessible.description: value.detail
    Accessible.name: value.headline
    Accessible.role: Accessible.StaticText
    border.color: Theme.isHighContrast ? light : "transparent"
    color: Theme.isHighContrast ? Theme.card : Theme.faded(light, Theme.isDark ? 0.14 : 0.09)
    implicitHeight: row.implicitHeight + 2 * (Theme.s + 2)
    radius: Theme.radius

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.margins: Theme.m
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.s + 2

        Rectangle {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: Math.round((headline.implicitHeight - height) / 2)
            color: banner.light
            implicitHeight: Theme.scaled(9)
            implicitWidth: implicitHeight
            radius: height / 2
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Line {
                id: headline

                Accessible.ignored: true
                Layout.fillWidth: true
                font: Theme.bodyStrong
                text: banner.value.headline
            }

            Paragraph {
                Accessible.ignored: true
                Layout.fillWidth: true
                font: Theme.small
                text: banner.value.detail
            }
        }
    }
}
