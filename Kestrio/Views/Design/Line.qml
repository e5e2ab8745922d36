import QtQuick

// One line of text as it stands, cut short at its end where it does not fit. What people recorded is never taken for
// markup. Read to those who do not see it, unless what it stands in tells it.
Text {
    // The text where it is cut short, for whoever tells it whole.
    readonly property string whole: truncated ? text : ""

    Accessible.ignored: text === ""
    Accessible.name: text
    Accessible.role: Accessible.StaticText
    color: Theme.text
    elide: Text.ElideRight
    font: Theme.body
    horizontalAlignment: Text.AlignLeft
    maximumLineCount: 1
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
