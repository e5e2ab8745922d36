pragma ComponentBehavior: Bound

import QtQuick
import Kestrio.Window

SettingsForm {
    id: view

    required property DataSettingsModel tab

    form: tab

    Connections {
        function onExportWanted() {
            dialog.show("../ExportDialog.qml");
        }

        function onImportWanted() {
            dialog.show("../ImportDialog.qml");
        }

        target: view.tab
    }

    // What they are made of is loaded only when somebody wants one.
    Loader {
        id: dialog

        function show(file: string) {
            setSource("");
            setSource(file, {
                "tab": view.tab
            });
        }
    }
}
