// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import Kestrio.Design

// Shows the category and changes it: `value` has `current` and `entries`. `selected` comes with the raw value of the
// category that was chosen, or undefined for the default.
T.AbstractButton {
    id: control

    required property var value
    // The entries as they were when the menu opened: a report that is made anew does not take them away from its reader.
    property var offered: []
    readonly property bool isOpen: (menuLoader.item as T.Menu)?.opened ?? false

    signal selected(var category)

    function open() {
        offered = value?.entries ?? [];
        menuLoader.active = true;
        const menu = menuLoader.item as PopupMenu;
        menu.popup(control, mirrored ? 0 : width - menu.width, height + Theme.xs);
        menu.goToCurrent();
    }

    Accessible.description: Words.changeCategory
    Accessible.name: value?.current?.label ?? ""
    Accessible.role: Accessible.ButtonMenu
    Accessible.onPressAction: open()
    activeFocusOnTab: true
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    implicitHeight: Theme.controlHeight
    implicitWidth: pill.implicitWidth + chevron.width + Theme.xs + Theme.s

    background: ButtonGround {
        control: control
        radius: height / 2
    }
    contentItem: Item {
        CategoryPill {
            id: pill

            Accessible.ignored: true
            anchors.left: parent.left
            anchors.leftMargin: 3
            anchors.verticalCenter: parent.verticalCenter
            value: control.value?.current
        }

        Symbol {
            id: chevron

            anchors.right: parent.right
            anchors.rightMargin: Theme.s - 1
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.textSecondary
            name: Words.menuSymbol
            size: Theme.scaled(13)
        }
    }

    Keys.onDownPressed: open()
    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()
    onClicked: open()

    Help {
        text: control.isOpen ? "" : Words.changeCategory
    }

    Loader {
        id: menuLoader

        active: false
        sourceComponent: PopupMenu {
            entries: control.offered

            onChosen: index => control.selected(control.offered[index].category)
        }
    }
}
