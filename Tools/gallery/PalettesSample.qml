import QtQuick
import Kestrio.Design

// The colours that things are told apart by.
Flow {
    spacing: Theme.m

    Repeater {
        model: ["blue", "teal", "purple", "orange", "red", "brown", "gray", "green", "yellow", "pink", "accent", "good", "info", "warning", "critical"]

        Column {
            id: swatch

            required property string modelData

            spacing: Theme.xs

            Rectangle {
                color: Theme.named(swatch.modelData)
                height: 36
                radius: Theme.radiusSmall
                width: 64
            }

            Line {
                color: Theme.textSecondary
                font: Theme.caption
                text: swatch.modelData
            }
        }
    }
}
