// The overview: where the disk's space goes and how much of it can be reclaimed. A
// scrolling page of the Full Disk Access banner (when access is missing), the hero
// card, the ranking and largest-items cards once there are results, and a summary of
// the last clean.
import QtQuick
import QtQuick.Window
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root

    // Asks the window to show another screen: kind "overview", "systemData" or
    // "category" with the category's id.
    signal routeRequested(string kind, string categoryId)

    readonly property bool scanning: AppModel.phase === AppModel.Phase.scanning
    // The height of what floats over the page's bottom (the action bar): the page ends
    // under it but can scroll its last card above it.
    property real bottomInset: 0

    // Tabbing to a control below or above the view scrolls it into sight.
    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const focused = root.Window.window ? root.Window.window.activeFocusItem : null;
            let on = focused;
            while (on && on !== page.contentItem)
                on = on.parent;
            if (!on)
                return;
            const top = focused.mapToItem(page.contentItem, 0, 0).y;
            const bottom = top + focused.height;
            const visibleHeight = page.height - root.bottomInset;
            if (top < page.contentY)
                page.contentY = Math.max(0, top - 12);
            else if (bottom > page.contentY + visibleHeight)
                page.contentY = Math.min(bottom - visibleHeight + 12, page.contentHeight + page.bottomMargin - page.height);
        }
    }

    Flickable {
        id: page
        objectName: "overviewPage"
        anchors.fill: parent
        contentWidth: width
        contentHeight: column.implicitHeight + 28 * 2
        bottomMargin: root.bottomInset
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        ScrollBar.vertical: ScrollBar {
            policy: page.contentHeight + page.bottomMargin > page.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
            bottomPadding: root.bottomInset
        }

        ColumnLayout {
            id: column
            objectName: "overviewColumn"
            width: Math.min(1320, page.width - 32 * 2)
            x: (page.width - width) / 2
            y: 28
            spacing: 20

            FullDiskAccessBanner {
                objectName: "fullDiskAccessBanner"
                Layout.fillWidth: true
                visible: !AppModel.hasFullDiskAccess
            }

            HeroCard {
                objectName: "heroCard"
                Layout.fillWidth: true
                onRouteRequested: (kind, categoryId) => root.routeRequested(kind, categoryId)
            }

            GridLayout {
                id: results
                objectName: "resultsGrid"
                Layout.fillWidth: true
                visible: AppModel.hasLastScan || root.scanning
                columns: Math.max(1, Math.floor((width + columnSpacing) / (440 + columnSpacing)))
                columnSpacing: 20
                rowSpacing: 20

                SpaceRankingCard {
                    objectName: "spaceRankingCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 440
                    Layout.alignment: Qt.AlignTop | Qt.AlignLeft
                    onRouteRequested: (kind, categoryId) => root.routeRequested(kind, categoryId)
                }
                LargestItemsCard {
                    objectName: "largestItemsCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 440
                    Layout.alignment: Qt.AlignTop | Qt.AlignLeft
                }
            }

            LastResultCard {
                objectName: "lastResultCard"
                Layout.fillWidth: true
                visible: AppModel.hasLastResult && AppModel.phase === AppModel.Phase.ready
                result: AppModel.lastResultInfo
            }
        }
    }
}
