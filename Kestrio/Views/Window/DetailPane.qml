import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The pane about what is selected: its head, and below it what each page puts there.
ScrollPane {
    id: pane

    required property MasterDetailModel model
    // Never undefined: for a moment the model has nothing while the pane is still there.
    readonly property var detail: model.detail ?? ({})
    default property alias cards: column.data
    property alias accessory: header.accessory

    Accessible.focusable: true
    Accessible.name: detail.header?.title ?? ""
    Accessible.role: Accessible.Pane
    activeFocusOnTab: contentHeight > height

    ColumnLayout {
        id: column

        spacing: Theme.l
        width: parent.width

        DetailHeader {
            id: header

            Layout.fillWidth: true
            value: pane.detail.header ?? ({})
        }
    }

    FocusRing {
        anchors.margins: 2
        parent: pane
        shown: pane.activeFocus
    }
}
