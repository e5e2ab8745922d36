// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T

// A button with the calendar behind it. Dates are seconds since 1970; `picked` comes with the start of the day.
IconButton {
    id: picker

    property double date: 0
    property double now: 0
    readonly property bool isOpen: (popupLoader.item as T.Popup)?.opened ?? false

    signal picked(double date)

    function open() {
        popupLoader.active = true;
        (popupLoader.item as T.Popup).open();
    }

    Accessible.role: Accessible.ButtonMenu
    down: pressed || isOpen
    symbol: "calendar"

    Keys.onDownPressed: open()
    onClicked: open()

    Loader {
        id: popupLoader

        active: false
        sourceComponent: MonthPopup {
            date: picker.date
            now: picker.now
            parent: picker
            x: picker.mirrored ? 0 : picker.width - width
            y: picker.height + Theme.xs

            onPicked: date => picker.picked(date)
        }
    }
}
