pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Kestrio.Design
import Kestrio.Window

// What stands beside the sidebar: the bands, the controls of the range, the page, the credit line.
ColumnLayout {
    id: detail

    required property DashboardModel model

    // The first place of the page that takes the keyboard. False when it has none.
    function takeFocus() {
        return give(stops()[0]);
    }

    // The page's first field to search in, or the next one for who is in it. False when it has none.
    function takeSearch() {
        const fields = stops().filter(stop => stop instanceof FilterField);
        const field = fields[(fields.findIndex(field => field.activeFocus) + 1) % fields.length];
        field?.selectAll();
        return give(field);
    }

    function give(item) {
        if (item === undefined)
            return false;
        item.forceActiveFocus(Qt.ShortcutFocusReason);
        return true;
    }

    // Where the tabulator stops within the page.
    function stops() {
        const found = [];
        let item = page.item?.nextItemInFocusChain() ?? null;
        while (item !== null && !found.includes(item) && isInPage(item)) {
            found.push(item);
            item = item.nextItemInFocusChain();
        }
        return found;
    }

    function isInPage(item) {
        for (let ancestor = item; ancestor !== null; ancestor = ancestor.parent)
            if (ancestor === page)
                return true;
        return false;
    }

    spacing: 0

    PageHeader {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.xl
        Layout.rightMargin: Theme.xl
        Layout.topMargin: Theme.l
        model: detail.model
    }

    Banner {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.xl
        Layout.rightMargin: Theme.xl
        Layout.topMargin: Theme.m
        value: detail.model.agentNotice
        visible: value !== undefined

        onActivated: detail.model.startAgent()
    }

    Banner {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.xl
        Layout.rightMargin: Theme.xl
        Layout.topMargin: Theme.m
        value: detail.model.historyNotice
        visible: value !== undefined && !detail.model.isHistoryAway
    }

    Banner {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.xl
        Layout.rightMargin: Theme.xl
        Layout.topMargin: Theme.m
        value: detail.model.permissionBanner
        visible: value !== undefined

        onActivated: index => detail.model.actOnBanner(value.buttons[index].action)
    }

    Item {
        Layout.fillWidth: true
        Layout.preferredHeight: Theme.m

        LoadingBar {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            name: detail.model.words.loadingName
            running: detail.model.isLoading
        }
    }

    EmptyActivityView {
        Layout.fillHeight: true
        Layout.fillWidth: true
        value: detail.model.historyNotice ?? ({})
        visible: detail.model.isHistoryAway
    }

    Loader {
        id: page

        function load() {
            setSource(detail.model.pageSource, {
                "page": detail.model.page
            });
        }

        Accessible.name: detail.model.sectionLabel
        Accessible.role: Accessible.Pane
        Layout.fillHeight: true
        Layout.fillWidth: true
        visible: !detail.model.isHistoryAway

        Component.onCompleted: load()

        Connections {
            function onPageChanged() {
                page.load();
            }

            target: detail.model
        }
    }

    CreditLine {
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: Theme.xs
        Layout.topMargin: Theme.xs

        onAboutRequested: detail.model.openAbout()
    }
}
