// The category's items as a sortable, filterable table over AppModel.categoryTable.
// Two selections live here and are never mixed: the check boxes are the model's
// selection (what gets cleaned); the row highlight is this view's own and only
// chooses what the context menu and the primary action (double-click, Return) act on.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Rectangle {
    id: root
    objectName: "categoryTable"

    property bool busy: false
    // Shown once in the header; rows then leave their location out.
    property string commonLocation

    // Keys of the highlighted rows, and the row a Shift-click extends from.
    property var highlight: []
    property int anchorRow: -1

    readonly property var proxy: AppModel.categoryTable
    readonly property var items: AppModel.categoryItems

    readonly property real columnSpacing: 12
    readonly property real checkWidth: 22
    // The name column takes what the others leave, at least 240; the size and date
    // columns give up room towards their minimums before the name goes below that.
    // From the panel's own width, which the layouts inside never feed back into.
    // Four gaps: the header ends in a flexible filler after the date column.
    readonly property real available: width - 2 * 20 - 8 - checkWidth - 4 * columnSpacing
    readonly property real spare: Math.max(0, Math.min(1, (available - 240 - 160) / 60))
    readonly property real sizeWidth: 70 + 20 * spare
    readonly property real dateWidth: 90 + 40 * spare
    readonly property real nameWidth: Math.max(240, available - sizeWidth - dateWidth)

    radius: 18
    color: Theme.alpha(Theme.windowColor, 0.55)
    border.width: 1
    border.color: Theme.dark ? Qt.rgba(1, 1, 1, 0.08) : Qt.rgba(0, 0, 0, 0.08)

    function clearHighlight() {
        highlight = [];
        anchorRow = -1;
    }

    function isHighlighted(key) {
        return highlight.indexOf(key) >= 0;
    }

    // A left press on the row at `row` of the table's order: alone, with Ctrl to add
    // or remove it, with Shift to extend from the last row pressed.
    function pressRow(row, modifiers) {
        const key = proxy.keyAt(row);
        if (key === "")
            return;
        list.currentIndex = row;
        list.forceActiveFocus();
        if ((modifiers & Qt.ShiftModifier) && anchorRow >= 0) {
            const range = [];
            for (let i = Math.min(anchorRow, row); i <= Math.max(anchorRow, row); ++i)
                range.push(proxy.keyAt(i));
            highlight = (modifiers & Qt.ControlModifier) ? unite(highlight, range) : range;
            return;
        }
        if (modifiers & Qt.ControlModifier) {
            highlight = isHighlighted(key) ? highlight.filter(k => k !== key) : highlight.concat([key]);
        } else {
            highlight = [key];
        }
        anchorRow = row;
    }

    function unite(a, b) {
        return a.concat(b.filter(k => a.indexOf(k) < 0));
    }

    // The items of the category, in the category's own order, whose keys are in `keys`:
    // each as { key, hasURL, path }.
    function targetsOf(keys) {
        const out = [];
        if (keys.length === 0)
            return out;
        for (let i = 0; i < items.count; ++i) {
            const at = items.index(i, 0);
            const key = items.data(at, CategoryItemsModel.KeyRole);
            if (keys.indexOf(key) >= 0)
                out.push({ key: key, hasURL: items.data(at, CategoryItemsModel.HasURLRole),
                           path: items.data(at, CategoryItemsModel.PathRole) });
        }
        return out;
    }

    // The primary action: reveal the first highlighted item of the category, if it
    // has a place on disk; later ones are not tried.
    function activate() {
        const targets = targetsOf(highlight);
        if (targets.length > 0 && targets[0].hasURL)
            Platform.revealInFileViewer(targets[0].path);
    }

    // The context menu of the row at `row` (or of blank space for -1), opened at
    // `point` of `item`: it acts on the highlighted rows when the click lands on one of
    // them, else on the clicked row.
    function openMenu(row, item, point) {
        const key = row >= 0 ? proxy.keyAt(row) : "";
        contextMenu.keys = key === "" ? [] : isHighlighted(key) ? highlight.slice() : [key];
        const at = item.mapToItem(root, point);
        contextMenu.popup(root, at.x, at.y);
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        anchors.topMargin: 8
        anchors.bottomMargin: 8
        spacing: 0

        // Column titles; clicking one sorts by it, clicking it again reverses.
        RowLayout {
            objectName: "tableHeader"
            Layout.fillWidth: true
            // Its column titles fill its height; it must not take the list's.
            Layout.fillHeight: false
            Layout.preferredHeight: 28
            Layout.leftMargin: 4
            Layout.rightMargin: 4
            spacing: root.columnSpacing

            Item {
                Layout.preferredWidth: root.checkWidth
            }
            SortHeader {
                objectName: "sortHeader_name"
                title: qsTr("Name")
                key: CategoryItemsProxy.SortKey.name
                Layout.preferredWidth: root.nameWidth
            }
            SortHeader {
                objectName: "sortHeader_size"
                title: qsTr("Size")
                key: CategoryItemsProxy.SortKey.size
                alignRight: true
                Layout.preferredWidth: root.sizeWidth
            }
            SortHeader {
                objectName: "sortHeader_modified"
                title: qsTr("Modified")
                key: CategoryItemsProxy.SortKey.date
                Layout.preferredWidth: root.dateWidth
            }
            Item {
                Layout.fillWidth: true
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: Theme.quaternary
        }

        ListView {
            id: list
            objectName: "itemList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: 4
            clip: true
            model: root.proxy
            boundsBehavior: Flickable.StopAtBounds
            currentIndex: -1
            keyNavigationEnabled: false
            highlightFollowsCurrentItem: false
            activeFocusOnTab: true
            ScrollBar.vertical: ScrollBar {}

            delegate: CategoryItemRow {
                id: itemRow
                width: list.width
                nameWidth: root.nameWidth
                sizeWidth: root.sizeWidth
                dateWidth: root.dateWidth
                columnSpacing: root.columnSpacing
                busy: root.busy
                hideLocation: root.commonLocation !== ""
                highlighted: root.highlight.indexOf(key) >= 0
                onPressed: modifiers => root.pressRow(index, modifiers)
                onContextMenuRequested: (x, y) => root.openMenu(index, itemRow, Qt.point(x, y))
                onActivated: root.activate()
            }

            // Blank space below the rows: a click clears the highlight, a right click
            // opens the menu with nothing to act on.
            MouseArea {
                id: blank
                z: -1
                width: list.width
                height: Math.max(0, list.contentY + list.height - list.contentHeight)
                y: list.contentHeight
                acceptedButtons: Qt.LeftButton | Qt.RightButton
                onClicked: mouse => {
                    if (mouse.button === Qt.RightButton)
                        root.openMenu(-1, blank, Qt.point(mouse.x, mouse.y));
                    else
                        root.clearHighlight();
                }
            }

            Keys.onReturnPressed: root.activate()
            Keys.onEnterPressed: root.activate()
            Keys.onUpPressed: event => root.step(-1, event.modifiers)
            Keys.onDownPressed: event => root.step(1, event.modifiers)
        }
    }

    // Arrow keys move the highlight one row (Shift extends it).
    function step(delta, modifiers) {
        if (list.count === 0)
            return;
        const from = list.currentIndex < 0 ? (delta > 0 ? -1 : list.count) : list.currentIndex;
        const to = Math.max(0, Math.min(list.count - 1, from + delta));
        pressRow(to, modifiers & Qt.ShiftModifier);
        list.positionViewAtIndex(to, ListView.Contain);
    }

    PopupMenu {
        id: contextMenu
        objectName: "itemContextMenu"

        // The row keys the menu acts on, and the category's items among them.
        property var keys: []
        readonly property var targets: root.targetsOf(keys)
        readonly property bool canReveal: targets.length > 0 && targets[0].hasURL

        PopupMenuItem {
            objectName: "menuCheckItems"
            text: qsTr("Check")
            enabled: contextMenu.keys.length > 0
            onTriggered: contextMenu.keys.forEach(key => AppModel.setItemSelected(key, true))
        }
        PopupMenuItem {
            objectName: "menuUncheckItems"
            text: qsTr("Uncheck")
            enabled: contextMenu.keys.length > 0
            onTriggered: contextMenu.keys.forEach(key => AppModel.setItemSelected(key, false))
        }
        MenuSeparator {
            visible: contextMenu.targets.length > 0
            height: visible ? implicitHeight : 0
        }
        PopupMenuItem {
            objectName: "menuShowInFileViewer"
            text: qsTr("Show in Finder")
            visible: contextMenu.canReveal
            height: visible ? implicitHeight : 0
            onTriggered: Platform.revealInFileViewer(contextMenu.targets[0].path)
        }
        PopupMenuItem {
            objectName: "menuCopyPath"
            text: qsTr("Copy Path")
            visible: contextMenu.targets.length > 0
            height: visible ? implicitHeight : 0
            onTriggered: AppModel.copyItemPath(contextMenu.targets[0].key)
        }
    }

    // A column title that sorts by its key, with the direction shown on the active one.
    component SortHeader: AbstractButton {
        id: header

        property string title
        property int key
        property bool alignRight: false
        readonly property bool active: AppModel.categoryTable.sortKey === key

        Layout.fillHeight: true
        hoverEnabled: true
        focusPolicy: Qt.NoFocus
        onClicked: AppModel.categoryTable.sortBy(key)

        contentItem: RowLayout {
            spacing: 4
            layoutDirection: header.alignRight ? Qt.RightToLeft : Qt.LeftToRight

            Text {
                text: header.title
                color: header.active ? Theme.primary : Theme.secondary
                font.pixelSize: Theme.subheadline
                font.weight: Font.DemiBold
            }
            Symbol {
                objectName: "sortIndicator"
                visible: header.active
                rotation: AppModel.categoryTable.ascending ? 180 : 0
                name: "chevron.down"
                color: Theme.secondary
                size: 9
            }
            Item {
                Layout.fillWidth: true
            }
        }
        background: Item {}
    }
}
