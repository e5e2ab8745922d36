import QtQuick
import QtQuick.Layouts

// What a place says that has nothing to show: `value` has `title`, `symbol`, and where there is one `message`.
Item {
    id: view

    required property var value
    property alias accessory: accessoryHolder.data

    Accessible.description: value?.message ?? ""
    Accessible.name: value?.title ?? ""
    Accessible.role: Accessible.StaticText
    implicitHeight: column.implicitHeight + 2 * Theme.xl
    implicitWidth: Theme.scaled(420)

    ColumnLayout {
        id: column

        anchors.centerIn: parent
        spacing: Theme.s
        width: Math.min(parent.width - 2 * Theme.l, Theme.scaled(420))

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.xs
            color: Theme.track
            implicitHeight: Theme.scaled(56)
            implicitWidth: implicitHeight
            radius: height / 2

            Symbol {
                anchors.centerIn: parent
                color: Theme.textTertiary
                name: view.value?.symbol ?? ""
                size: Theme.scaled(26)
            }
        }

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            color: Theme.text
            font: Theme.headline
            horizontalAlignment: Text.AlignHCenter
            text: view.value?.title ?? ""
        }

        Paragraph {
            Accessible.ignored: true
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: view.value?.message ?? ""
            visible: text !== ""
        }

        RowLayout {
            id: accessoryHolder

            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.s
        }
    }
}
