// One category's screen: the header with its identity, totals and actions, then the
// one content the scan's state calls for — the prompt to scan before any scan has
// finished, the item table once there are items, a placeholder while a scan has
// yet to finish the category, or the all-clean panel.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root

    property string categoryId

    readonly property var info: AppModel.categoryInfo(categoryId)
    readonly property bool scanning: AppModel.phase === AppModel.Phase.scanning
    readonly property bool busy: scanning || AppModel.phase === AppModel.Phase.cleaning

    // Bumped whenever the model's per-category answers may have changed; the bindings
    // below read it so that the model's plain functions are asked again.
    property int revision: 0

    readonly property int count: AppModel.categoryItems.categoryId === categoryId ? AppModel.categoryItems.count : 0
    readonly property int scanState: {
        revision;
        return AppModel.categoryScanState(categoryId);
    }
    readonly property var figures: {
        revision;
        return {
            count: count,
            total: AppModel.totalSize(categoryId),
            selected: AppModel.selectedCount(categoryId),
            selectedSize: AppModel.selectedSize(categoryId)
        };
    }
    readonly property string commonLocation: {
        revision;
        return AppModel.commonLocation(categoryId);
    }

    // "notScanned", "table", "scanning" or "allClean", tested in that order.
    readonly property string content: !AppModel.hasLastScan && !scanning ? "notScanned"
                                    : count > 0 ? "table"
                                    : scanning && scanState !== AppModel.CategoryScanState.done ? "scanning"
                                    : "allClean"

    // The table and its filter follow the category shown; a new category starts with
    // no filter and nothing highlighted, in the sort order the table had.
    function adopt() {
        AppModel.categoryItems.categoryId = categoryId;
        AppModel.categoryTable.filterText = "";
        table.clearHighlight();
    }

    onCategoryIdChanged: adopt()
    Component.onCompleted: adopt()

    Connections {
        target: AppModel
        function onResultsChanged() {
            root.revision++;
        }
        function onTotalsChanged() {
            root.revision++;
        }
        function onCategoryStateChanged() {
            root.revision++;
        }
        function onItemsByCategoryChanged() {
            root.revision++;
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        CategoryHeader {
            id: header
            categoryId: root.categoryId
            info: root.info
            figures: root.figures
            commonLocation: root.commonLocation
            busy: root.busy
            Layout.fillWidth: true
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            CategoryTable {
                id: table
                anchors.fill: parent
                anchors.leftMargin: 20
                anchors.rightMargin: 20
                anchors.topMargin: 12
                anchors.bottomMargin: 4
                visible: root.content === "table"
                busy: root.busy
                commonLocation: root.commonLocation
            }

            CategoryEmptyState {
                objectName: "notScannedState"
                anchors.fill: parent
                visible: root.content === "notScanned"
                title: qsTr("Not Scanned Yet")
                symbol: "sparkle.magnifyingglass"
                description: qsTr("Scan to find files in this category.")

                ProminentButton {
                    objectName: "startScanButton"
                    text: qsTr("Start Scan")
                    large: true
                    onClicked: AppModel.scan()
                }
            }

            ColumnLayout {
                objectName: "scanningState"
                anchors.centerIn: parent
                visible: root.content === "scanning"
                spacing: 12

                IconTile {
                    objectName: "scanningIconTile"
                    symbol: root.info.symbol !== undefined ? root.info.symbol : ""
                    tint: root.info.tint !== undefined ? root.info.tint : Theme.gray
                    size: 56
                    active: false
                    pulsing: true
                    Layout.alignment: Qt.AlignHCenter
                }
                Text {
                    objectName: "scanningHeadline"
                    text: root.scanState === AppModel.CategoryScanState.scanning ? qsTr("Scanning…") : qsTr("Waiting…")
                    color: Theme.primary
                    font.pixelSize: Theme.headline
                    font.weight: Font.DemiBold
                    Layout.alignment: Qt.AlignHCenter
                }
                ProgressBar {
                    id: progress
                    objectName: "scanningProgress"
                    from: 0
                    to: 1
                    value: AppModel.scanProgress
                    Layout.preferredWidth: 220
                    Layout.alignment: Qt.AlignHCenter

                    background: Rectangle {
                        implicitWidth: 220
                        implicitHeight: 6
                        radius: 3
                        color: Theme.quaternary
                    }
                    contentItem: Item {
                        implicitWidth: 220
                        implicitHeight: 6
                        Rectangle {
                            width: progress.visualPosition * parent.width
                            height: parent.height
                            radius: 3
                            color: Theme.navyBright
                        }
                    }
                }
                Text {
                    objectName: "scanningStatus"
                    text: AppModel.statusText
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    elide: Text.ElideMiddle
                    maximumLineCount: 1
                    horizontalAlignment: Text.AlignHCenter
                    Layout.preferredWidth: Math.min(implicitWidth, root.width - 80)
                    Layout.alignment: Qt.AlignHCenter
                }
            }

            CategoryEmptyState {
                objectName: "allCleanState"
                anchors.fill: parent
                visible: root.content === "allClean"
                title: qsTr("All Clean")
                symbol: "checkmark.seal"
                description: qsTr("Nothing to clean in this category.")
            }
        }
    }
}
