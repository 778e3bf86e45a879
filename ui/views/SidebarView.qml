// The left column: the overview and System Data entries, then every category by
// group with its live scan state. Follows the scan by centring the category being
// scanned. The support footer is pinned at the bottom.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "sidebar"

    // The window's route, shown as the selected row; choosing a row asks for a new one.
    property string routeKind: "overview"
    property string routeCategory: ""
    signal routeChosen(string kind, string categoryId)

    readonly property bool busy: AppModel.phase === AppModel.Phase.scanning
                                 || AppModel.phase === AppModel.Phase.cleaning

    // Bumped whenever anything the group headers and the context menu derive from
    // changes; their bindings read it so the model's plain functions are re-asked.
    property int revision: 0

    Connections {
        target: AppModel
        function onResultsChanged() {
            root.revision++;
        }
        function onScanningCategoryChanged() {
            // When the scan ends, the list leaves the scan and brings back the chosen row
            // if following the scan took it out of sight.
            if (AppModel.scanningCategory !== "")
                root.centre(AppModel.scanningCategory);
            else
                root.revealChosen();
        }
    }

    onRouteKindChanged: revealChosen()
    onRouteCategoryChanged: revealChosen()

    // The row standing for the route shown now.
    function chosenRow() {
        return routeKind === "overview" ? overviewRow : routeKind === "systemData" ? systemDataRow
                                                                               : rowFor(routeCategory);
    }

    // Scrolls the least that brings `row` wholly into the list's view.
    function reveal(row) {
        if (!row)
            return;
        // From where the list is now, not where a running follow would take it.
        follow.stop();
        const top = row.mapToItem(column, 0, 0).y;
        const bottom = top + row.height;
        let target = list.contentY;
        if (top < list.contentY)
            target = top;
        else if (bottom > list.contentY + list.height)
            target = bottom - list.height;
        target = Math.max(0, Math.min(target, list.contentHeight - list.height));
        if (target === list.contentY)
            return;
        if (Theme.reduceMotion) {
            list.contentY = target;
        } else {
            follow.to = target;
            follow.start();
        }
    }

    function revealChosen() {
        reveal(chosenRow());
    }

    // The row of a category, or null.
    function rowFor(categoryId) {
        const index = AppModel.categoryList.rowOf(categoryId);
        const entry = index >= 0 ? categories.itemAt(index) : null;
        return entry ? entry.row : null;
    }

    // Scrolls so that the category's row sits in the middle of the list.
    function centre(categoryId) {
        const row = rowFor(categoryId);
        if (!row)
            return;
        const middle = row.mapToItem(column, 0, row.height / 2).y;
        const target = Math.max(0, Math.min(middle - list.height / 2, list.contentHeight - list.height));
        follow.stop();
        if (Theme.reduceMotion) {
            list.contentY = target;
        } else {
            follow.to = target;
            follow.start();
        }
    }

    // The keyboard: a single-selection list. The arrows move a cursor from the chosen
    // row (kept in view), Return or Space opens the row under it.
    property int cursor: -1
    readonly property bool keyboardActive: list.activeFocus

    // Every row in list order: kind and category id.
    function entries() {
        const all = [{ kind: "overview", id: "" }, { kind: "systemData", id: "" }];
        for (let i = 0; i < categories.count; ++i)
            all.push({ kind: "category", id: categories.itemAt(i).categoryId });
        return all;
    }
    function rowAt(index) {
        return index === 0 ? overviewRow : index === 1 ? systemDataRow
                                                       : (categories.itemAt(index - 2) ? categories.itemAt(index - 2).row : null);
    }
    function chosenIndex() {
        const all = entries();
        for (let i = 0; i < all.length; ++i)
            if (all[i].kind === routeKind && (all[i].kind !== "category" || all[i].id === routeCategory))
                return i;
        return 0;
    }
    function moveCursor(delta) {
        const from = cursor < 0 ? chosenIndex() : cursor;
        cursor = Math.max(0, Math.min(categories.count + 1, from + delta));
        reveal(rowAt(cursor));
    }
    function openCursor() {
        const entry = entries()[cursor < 0 ? chosenIndex() : cursor];
        routeChosen(entry.kind, entry.id);
    }

    function openCategoryMenu(categoryId) {
        categoryMenu.categoryId = categoryId;
        categoryMenu.popup();
    }

    Rectangle {
        anchors.fill: parent
        color: Qt.rgba(Theme.windowColor.r, Theme.windowColor.g, Theme.windowColor.b, 0.78)
    }

    Flickable {
        id: list
        objectName: "sidebarList"
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: footer.top
        anchors.bottomMargin: 8
        contentHeight: column.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}
        activeFocusOnTab: true
        onActiveFocusChanged: root.cursor = activeFocus ? root.chosenIndex() : -1

        Keys.onUpPressed: root.moveCursor(-1)
        Keys.onDownPressed: root.moveCursor(1)
        Keys.onReturnPressed: root.openCursor()
        Keys.onEnterPressed: root.openCursor()
        Keys.onSpacePressed: root.openCursor()

        NumberAnimation {
            id: follow
            target: list
            property: "contentY"
            duration: 350
            easing.type: Easing.OutCubic
        }

        Column {
            id: column
            width: list.width
            topPadding: 10
            bottomPadding: 10

            SidebarRow {
                id: overviewRow
                objectName: "overviewRow"
                width: column.width
                symbol: "gauge.with.dots.needle.67percent"
                tint: Theme.blue
                title: qsTr("Overview")
                active: true
                selected: root.routeKind === "overview"
                cursor: root.keyboardActive && root.cursor === 0
                onClicked: root.routeChosen("overview", "")
            }
            SidebarRow {
                id: systemDataRow
                objectName: "systemDataRow"
                width: column.width
                symbol: "chart.pie.fill"
                tint: Theme.gray
                title: qsTr("System Data")
                trailing: AppModel.hasSystemReport ? Format.byteCount(AppModel.systemMeasuredTotal) : ""
                active: true
                selected: root.routeKind === "systemData"
                cursor: root.keyboardActive && root.cursor === 1
                onClicked: root.routeChosen("systemData", "")
            }

            Repeater {
                id: categories
                model: AppModel.categoryList

                delegate: Column {
                    id: entry

                    required property int index
                    required property string categoryId
                    required property string group
                    required property string groupTitle
                    required property string title
                    required property string detail
                    required property string symbol
                    required property color tint
                    required property int scanState
                    required property int itemCount
                    required property real totalSize
                    required property int selectedCount
                    required property real selectedSize

                    readonly property alias row: categoryRow
                    // The catalogue lists a group's categories together: its first one
                    // carries the group's header.
                    readonly property bool opensGroup: AppModel.categoryIDsOf(group)[0] === categoryId
                    readonly property int groupState: {
                        root.revision;
                        return AppModel.groupState(group);
                    }
                    readonly property real groupTotal: {
                        root.revision;
                        return AppModel.groupTotalSize(group);
                    }

                    width: column.width

                    Item {
                        objectName: entry.opensGroup ? "groupHeader_" + entry.group : ""
                        visible: entry.opensGroup
                        width: parent.width
                        height: visible ? 34 : 0

                        readonly property bool showsTotal: entry.groupState === AppModel.CategoryScanState.done
                        readonly property string totalText: showsTotal ? Format.byteCount(entry.groupTotal) : ""

                        Label {
                            anchors.left: parent.left
                            anchors.leftMargin: 20
                            anchors.bottom: parent.bottom
                            anchors.bottomMargin: 6
                            text: entry.groupTitle
                            color: Theme.secondary
                            font.pixelSize: Theme.subheadline
                            font.weight: Font.DemiBold
                        }
                        NumericText {
                            objectName: "groupTotal"
                            anchors.right: parent.right
                            anchors.rightMargin: 20
                            anchors.bottom: parent.bottom
                            anchors.bottomMargin: 6
                            text: parent.totalText
                            color: Theme.secondary
                            font.pixelSize: Theme.subheadline
                            opacity: parent.showsTotal ? 1 : 0
                            visible: opacity > 0

                            Behavior on opacity {
                                NumberAnimation {
                                    duration: Theme.duration(300)
                                    easing.type: Easing.InOutQuad
                                }
                            }
                        }
                    }

                    CategoryRow {
                        id: categoryRow
                        width: parent.width
                        categoryId: entry.categoryId
                        categoryTitle: entry.title
                        detail: entry.detail
                        categorySymbol: entry.symbol
                        groupTint: entry.tint
                        scanState: entry.scanState
                        itemCount: entry.itemCount
                        totalSize: entry.totalSize
                        selectedCount: entry.selectedCount
                        selectedSize: entry.selectedSize
                        selected: root.routeKind === "category" && root.routeCategory === entry.categoryId
                        cursor: root.keyboardActive && root.cursor === entry.index + 2
                        onClicked: root.routeChosen("category", entry.categoryId)
                        onContextMenuRequested: root.openCategoryMenu(entry.categoryId)
                    }
                }
            }
        }
    }

    SupportFooter {
        id: footer
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 10
    }

    PopupMenu {
        id: categoryMenu
        objectName: "categoryMenu"

        property string categoryId

        PopupMenuItem {
            objectName: "menuSelectAllInCategory"
            text: qsTr("Select All in Category")
            onTriggered: AppModel.setAll(categoryMenu.categoryId, true)
        }
        PopupMenuItem {
            objectName: "menuDeselectAllInCategory"
            text: qsTr("Deselect All in Category")
            onTriggered: AppModel.setAll(categoryMenu.categoryId, false)
        }
        MenuSeparator {}
        PopupMenuItem {
            objectName: "menuCleanCategory"
            text: qsTr("Clean This Category…")
            enabled: {
                root.revision;
                return !root.busy && AppModel.selectedCount(categoryMenu.categoryId) > 0;
            }
            onTriggered: AppModel.requestClean(categoryMenu.categoryId)
        }
    }
}
