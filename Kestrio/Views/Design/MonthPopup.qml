pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Kestrio.Design

// A month to pick a day from. Arrow keys move by days and weeks, Page Up and Down by months.
T.Popup {
    id: popup

    property double date: 0
    property double now: 0
    property double candidate: date // where the keyboard is
    readonly property var month: choice.month

    signal picked(double date)

    function pick(day: double) {
        picked(day);
        close();
    }

    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
    focus: true
    implicitHeight: contentHeight + topPadding + bottomPadding
    implicitWidth: contentWidth + leftPadding + rightPadding
    margins: Theme.s
    padding: Theme.m

    background: PopupGround {}
    contentItem: ColumnLayout {
        id: column

        // The day that the arrows have come to.
        Accessible.focusable: true
        Accessible.name: popup.month.days.find(day => day.isSelected)?.fullName ?? ""
        Accessible.role: Accessible.Grouping
        focus: true
        spacing: Theme.s

        Keys.onLeftPressed: popup.candidate = choice.dayBeside(column.LayoutMirroring.enabled ? 1 : -1)
        Keys.onRightPressed: popup.candidate = choice.dayBeside(column.LayoutMirroring.enabled ? -1 : 1)
        Keys.onUpPressed: popup.candidate = choice.dayBeside(-7)
        Keys.onDownPressed: popup.candidate = choice.dayBeside(7)
        Keys.onReturnPressed: popup.pick(popup.candidate)
        Keys.onEnterPressed: popup.pick(popup.candidate)
        Keys.onPressed: event => {
            if (event.key !== Qt.Key_PageUp && event.key !== Qt.Key_PageDown)
                return;
            choice.moveMonths(event.key === Qt.Key_PageUp ? -1 : 1);
            event.accepted = true;
        }

        MonthChoice {
            id: choice

            date: popup.candidate
            now: popup.now
        }

        RowLayout {
            spacing: 0

            Line {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.xs + 2
                font: Theme.headline
                text: popup.month.title
            }

            IconButton {
                help: Words.previousMonth
                size: Theme.scaled(26)
                symbol: Words.previousMonthSymbol

                onClicked: choice.moveMonths(-1)
            }

            IconButton {
                enabled: popup.month.hasNext
                help: Words.nextMonth
                size: Theme.scaled(26)
                symbol: Words.nextMonthSymbol

                onClicked: choice.moveMonths(1)
            }
        }

        Grid {
            columns: 7

            Repeater {
                model: popup.month.weekdays

                Line {
                    required property string modelData

                    Accessible.ignored: true
                    color: Theme.textTertiary
                    font: Theme.caption
                    height: Theme.scaled(20)
                    horizontalAlignment: Text.AlignHCenter
                    text: modelData
                    width: Theme.scaled(32)
                }
            }

            Repeater {
                model: RowsModel {
                    rows: popup.month.days
                }

                DayCell {
                    required property int index

                    onClicked: popup.pick(choice.dayAt(index))
                }
            }
        }
    }

    onAboutToShow: candidate = date
    // Nothing else gives the keyboard back.
    onClosed: parent.forceActiveFocus(Qt.PopupFocusReason)
}
