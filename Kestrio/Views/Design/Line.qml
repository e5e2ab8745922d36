import QtQuick

// One line of text as it stands, cut short at its end where it does not fit. What people recorded is never taken for
// markup.
Text {
    // The text where it is cut short, for whoever tells it whole.
    readonly property string whole: truncated ? text : ""

    color: Theme.text
    elide: Text.ElideRight
    font: Theme.body
    horizontalAlignment: Text.AlignLeft
    maximumLineCount: 1
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
