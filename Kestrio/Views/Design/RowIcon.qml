// A loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick

// What stands at the head of a row, by its `kind`: an application's icon, a symbol, a site's badge, a picture of a video.
Loader {
    id: rowIcon

    property var icon: ({})
    property real size: Theme.scaled(28)
    property color tint: Theme.textSecondary

    sourceComponent: {
        switch (icon?.kind) {
        case "app":
            return appIcon;
        case "site":
        case "videoSite":
            return siteIcon;
        case "thumbnail":
            return thumbnail;
        case "symbol":
            return symbol;
        default:
            return null;
        }
    }

    Component {
        id: appIcon

        AppIconView {
            bundleID: rowIcon.icon.bundleID ?? ""
            size: rowIcon.size
        }
    }

    Component {
        id: siteIcon

        SiteIconView {
            icon: rowIcon.icon
            size: rowIcon.size
        }
    }

    Component {
        id: thumbnail

        VideoThumbnail {
            value: rowIcon.icon
            width: Math.round(rowIcon.size * 16 / 9)
        }
    }

    Component {
        id: symbol

        Item {
            implicitHeight: rowIcon.size
            implicitWidth: rowIcon.size

            Symbol {
                anchors.centerIn: parent
                color: rowIcon.tint
                name: rowIcon.icon.symbol ?? ""
                size: Math.round(rowIcon.size * 0.7)
            }
        }
    }
}
