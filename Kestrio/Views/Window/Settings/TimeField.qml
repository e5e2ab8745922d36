import QtQuick
import Kestrio.Window

// A time of day as the person writes it. What is typed is told when it is complete; Up and Down move it by a quarter.
TextEntry {
    id: field

    required property string time
    readonly property int quarter: 15

    signal typed(string time)
    signal moved(int minutes)

    function restore() {
        text = time;
    }

    horizontalAlignment: TextInput.AlignHCenter
    implicitWidth: Math.max(measure.advanceWidth + 3 * leftPadding, 2.5 * height)

    Component.onCompleted: restore()
    Keys.onDownPressed: moved(-quarter)
    Keys.onUpPressed: moved(quarter)
    onEditingFinished: {
        if (text !== time)
            typed(text);
        restore();
    }
    onTimeChanged: restore()

    TextMetrics {
        id: measure

        font: field.font
        text: field.time
    }
}
