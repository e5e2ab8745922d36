import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// The search in the timeline, and the choice to leave out what was brief.
RowLayout {
    id: tools

    required property TimelineModel page

    spacing: Theme.m

    FilterField {
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.scaled(360)
        Layout.preferredWidth: Layout.maximumWidth
        prompt: tools.page.words.prompt
        text: tools.page.search

        onTextChanged: tools.page.search = text
    }

    Item {
        Layout.fillWidth: true
    }

    Switch {
        id: brief

        Accessible.description: tools.page.words.hideBriefHelp
        checked: tools.page.hideBrief
        text: tools.page.words.hideBriefTitle

        onToggled: tools.page.hideBrief = checked

        Help {
            text: tools.page.words.hideBriefHelp
        }
    }
}
