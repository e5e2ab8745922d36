// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// A band above a page: `value` has `symbol`, `tint`, `text`, and where there are any `title` and `buttons`, maps with
// `title`, `symbol` and `action`. Choosing a button emits its place. What stands inside comes below the text.
Rectangle {
    id: banner

    required property var value
    default property alias content: extra.data
    readonly property color tint: Theme.named(value?.tint ?? "orange")
    readonly property int mostButtons: 2
    readonly property bool isNarrow: width < Theme.scaled(420) // its buttons then stand below the text

    signal activated(int index)

    Accessible.description: value?.text ?? ""
    Accessible.name: value?.title ?? ""
    Accessible.role: Accessible.AlertMessage
    border.color: Theme.isHighContrast ? tint : Theme.faded(tint, 0.35)
    color: Theme.isHighContrast ? Theme.card : Qt.tint(Theme.card, Theme.faded(tint, Theme.isDark ? 0.14 : 0.09))
    implicitHeight: row.implicitHeight + 2 * Theme.m
    implicitWidth: Theme.scaled(480)
    radius: Theme.radius

    GridLayout {
        id: row

        anchors.left: parent.left
        anchors.leftMargin: Theme.l
        anchors.right: parent.right
        anchors.rightMargin: Theme.m
        anchors.verticalCenter: parent.verticalCenter
        columnSpacing: Theme.m
        columns: 2 + Math.max(1, banner.value?.buttons?.length ?? 0)
        rowSpacing: Theme.s

        Symbol {
            Layout.alignment: Qt.AlignTop
            Layout.column: 0
            Layout.row: 0
            Layout.topMargin: 1
            color: banner.tint
            name: banner.value?.symbol ?? ""
            size: Theme.scaled(20)
        }

        ColumnLayout {
            id: extra

            Layout.column: 1
            Layout.fillWidth: true
            Layout.row: 0
            spacing: Theme.xs

            Paragraph {
                Accessible.ignored: true
                Layout.fillWidth: true
                color: Theme.text
                font: Theme.headline
                text: banner.value?.title ?? ""
                visible: text !== ""
            }

            Paragraph {
                Accessible.ignored: true
                Layout.fillWidth: true
                text: banner.value?.text ?? ""
                visible: text !== ""
            }
        }

        // As many as any band has, and those that are not there do not show: a layout may be arranged once more before
        // it learns that one of its children is gone.
        Repeater {
            model: banner.mostButtons

            Loader {
                id: button

                required property int index
                readonly property var row: banner.value?.buttons?.[index]
                readonly property bool isDismissal: row?.symbol !== undefined && row?.action === "dismiss"
                readonly property bool isBelow: banner.isNarrow && !isDismissal

                Layout.alignment: isDismissal && banner.isNarrow ? Qt.AlignTop : Qt.AlignVCenter
                Layout.column: isBelow ? 1 : 2 + index
                Layout.row: isBelow ? 1 + index : 0
                active: row !== undefined
                sourceComponent: isDismissal ? symbolButton : wordButton
                visible: active

                Component {
                    id: symbolButton

                    IconButton {
                        help: button.row?.title ?? ""
                        symbol: button.row?.symbol ?? ""

                        onClicked: banner.activated(button.index)
                    }
                }

                Component {
                    id: wordButton

                    PlainButton {
                        symbol: button.row?.symbol ?? ""
                        text: button.row?.title ?? ""

                        onClicked: banner.activated(button.index)
                    }
                }
            }
        }
    }
}
