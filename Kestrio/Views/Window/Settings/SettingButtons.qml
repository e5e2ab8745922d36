// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// Words and buttons: `value` has `text` and `buttons`, each with `title`, `isEnabled`, and where it is a symbol alone
// `symbol`.
RowLayout {
    id: buttons

    required property var value
    required property string subject

    signal pressed(int index)

    spacing: Theme.s

    Line {
        color: Theme.textSecondary
        text: buttons.value?.text ?? ""
        visible: text !== ""
    }

    Repeater {
        model: RowsModel {
            rows: buttons.value?.buttons ?? []
        }

        Loader {
            id: button

            required property var row
            required property int index

            enabled: row.isEnabled
            sourceComponent: row.symbol === "" ? words : symbol

            Component {
                id: words

                PlainButton {
                    Accessible.description: buttons.subject
                    text: button.row.title

                    onClicked: buttons.pressed(button.index)
                }
            }

            Component {
                id: symbol

                IconButton {
                    Accessible.description: buttons.subject
                    help: button.row.title
                    symbol: button.row.symbol

                    onClicked: buttons.pressed(button.index)
                }
            }
        }
    }
}
