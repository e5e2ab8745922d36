import QtQuick

// Text of as many lines as it takes. Read as a `Line` is.
Text {
    Accessible.ignored: text === ""
    Accessible.name: text
    Accessible.role: Accessible.StaticText
    color: Theme.textSecondary
    font: Theme.body
    horizontalAlignment: Text.AlignLeft
    lineHeight: 1.15
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
}
