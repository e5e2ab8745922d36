import QtQuick

// Text of as many lines as it takes.
Text {
    color: Theme.textSecondary
    font: Theme.body
    horizontalAlignment: Text.AlignLeft
    lineHeight: 1.15
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
}
