import QtQuick.Dialogs
import Kestrio.Window

// Asks where an export is to go.
FileDialog {
    required property DataSettingsModel tab

    defaultSuffix: "csv"
    fileMode: FileDialog.SaveFile

    Component.onCompleted: {
        selectedFile = currentFolder + "/" + tab.exportName();
        open();
    }
    onAccepted: tab.exportTo(selectedFile)
}
