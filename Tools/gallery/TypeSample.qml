import QtQuick
import Kestrio.Design

// The sizes of type; digits stand below each other.
Column {
    spacing: Theme.xs

    Repeater {
        model: ["caption", "small", "body", "bodyStrong", "headline", "title", "figure", "largeTitle"]

        Line {
            required property string modelData

            font: Theme[modelData]
            text: modelData + "  Kestrio 4h 17m · Ünïçødé Ελληνικά Кириллица"
        }
    }

    Repeater {
        model: ["11:11:11  1h 11m  111,111.11", "08:48:50  7h 46m  980,456.37"]

        Line {
            required property string modelData

            text: modelData
        }
    }

    Line {
        text: "日本語 العربية עברית ไทย 한국어 — from the system's fonts"
    }
}
