import QtQuick
import Kestrio.Design
import Kestrio.Window

// The search in the timeline, and the choice to leave out what was brief.
Item {
    id: tools

    required property TimelineModel page

    implicitHeight: Math.max(search.implicitHeight, brief.implicitHeight)
    implicitWidth: search.implicitWidth + Theme.m + brief.implicitWidth

    FilterField {
        id: search

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        prompt: tools.page.words.prompt
        text: tools.page.search
        width: Math.min(Theme.scaled(360), tools.width - Theme.m - brief.width)

        onTextChanged: tools.page.search = text
    }

    Switch {
        id: brief

        Accessible.description: tools.page.words.hideBriefHelp
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        checked: tools.page.hideBrief
        text: tools.page.words.hideBriefTitle

        onToggled: tools.page.hideBrief = checked

        Help {
            text: tools.page.words.hideBriefHelp
        }
    }
}
