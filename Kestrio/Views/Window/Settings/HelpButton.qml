import QtQuick
import Kestrio.Design
import Kestrio.Window

// Unfolds an explanation, and folds it again.
IconButton {
    property string subject: ""
    property bool isOpen: false

    Accessible.description: subject
    help: isOpen ? SettingWords.hideHelp : SettingWords.showHelp
    ink: isOpen ? Theme.accent : Theme.textTertiary
    size: Theme.scaled(22)
    symbol: SettingWords.helpSymbol
    symbolSize: Theme.scaled(14)

    onClicked: isOpen = !isOpen
}
