import QtQuick

// One line of text as it stands, cut short at its end where it does not fit. What people recorded is never taken for
// markup.
Text {
    color: Theme.text
    elide: Text.ElideRight
    font: Theme.body
    horizontalAlignment: Text.AlignLeft
    maximumLineCount: 1
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
