import QtQuick.Dialogs
import Kestrio.Window

// Asks which files are to be imported.
FileDialog {
    required property DataSettingsModel tab

    fileMode: FileDialog.OpenFiles
    nameFilters: ["*.csv", "*"]
    title: tab.importPrompt

    Component.onCompleted: open()
    onAccepted: tab.importFrom(selectedFiles)
}
