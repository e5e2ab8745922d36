import QtQuick
import Kestrio.Design

// Every symbol.
Grid {
    columns: Math.floor(width / 44)

    Repeater {
        model: Symbols.names()

        Item {
            id: cell

            required property string modelData

            height: 44
            width: 44

            Symbol {
                anchors.centerIn: parent
                name: cell.modelData
                size: 22
            }

            Help {
                text: cell.modelData
            }
        }
    }
}
