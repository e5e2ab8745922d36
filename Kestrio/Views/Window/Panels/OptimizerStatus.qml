import QtQuick
import QtQuick.Layouts
import Kestrio.Design

// What the optimizer holds back, or the way to switch it on: `value` is an `OptimizerLine`.
RowLayout {
    id: status

    required property var value

    signal resumeAll
    signal settingsWanted

    spacing: Theme.s

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 1

        Paragraph {
            Layout.fillWidth: true
            font: Theme.small
            text: status.value.text
            visible: !status.value.leadsToSettings
        }

        PlainButton {
            Layout.leftMargin: -leftPadding
            quiet: true
            symbol: "chevron.right"
            symbolAtEnd: true
            text: status.value.text
            visible: status.value.leadsToSettings

            onClicked: status.settingsWanted()
        }

        Paragraph {
            Layout.fillWidth: true
            color: Theme.text
            font: Theme.small
            text: status.value.details.join(" · ")
            visible: text !== ""
        }
    }

    PlainButton {
        help: status.value.resumeAllHelp
        text: status.value.resumeAll
        visible: status.value.hasResumeAll

        onClicked: status.resumeAll()
    }
}
