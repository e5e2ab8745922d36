import QtQuick
import QtQuick.Layouts

// The head of a detail pane: what it is about, how long, and what is told of it.
RowLayout {
    id: header

    required property var value
    property alias accessory: accessoryHolder.data

    spacing: Theme.l

    RowIcon {
        Layout.alignment: Qt.AlignTop
        icon: header.value?.icon
        size: Theme.scaled(48)
        tint: Theme.accent
    }

    ColumnLayout {
        Layout.fillWidth: true
        spacing: Theme.xs

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.m

            Line {
                id: title

                Accessible.name: text
                Accessible.role: Accessible.Heading
                Layout.fillWidth: true
                font: Theme.title
                text: header.value?.title ?? ""

                Help {
                    text: title.truncated ? title.text : ""
                }
            }

            RowLayout {
                id: accessoryHolder

                Layout.fillWidth: false
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Theme.s

            Line {
                font: Theme.headline
                text: header.value?.duration ?? ""
            }

            Line {
                Layout.fillWidth: true
                color: Theme.textSecondary
                text: header.value?.share ?? ""
            }
        }

        Paragraph {
            Layout.fillWidth: true
            color: Theme.textTertiary
            font: Theme.small
            text: (header.value?.stats ?? []).join("  ·  ")
            visible: text !== ""
        }

        Line {
            Layout.fillWidth: true
            color: Theme.textTertiary
            font: Theme.small
            text: header.value?.note ?? ""
            visible: text !== ""
        }
    }
}
