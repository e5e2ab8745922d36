import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// The small line at the foot of the dashboard.
RowLayout {
    id: line

    signal aboutRequested
    signal opened(string link)

    spacing: Theme.xs

    FootButton {
        text: Words.about

        onClicked: line.aboutRequested()
    }

    Line {
        Accessible.ignored: true
        color: Theme.textTertiary
        font: Theme.caption
        text: "·"
    }

    FootButton {
        Accessible.role: Accessible.Link
        text: Words.credit

        onClicked: {
            line.opened(Words.creditLink);
            WebLinks.open(Words.creditLink);
        }
    }
}
