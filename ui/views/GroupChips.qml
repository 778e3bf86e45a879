// One chip per category group with what the scan found in it; pressing a chip opens
// the group's largest category.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

GridLayout {
    id: root

    readonly property var groups: ["user", "system", "developer", "apps", "large"]

    signal routeRequested(string kind, string categoryId)

    // The category of `group` with the largest total, the earlier one on equal totals;
    // "" when the group has no categories.
    function largestCategory(group) {
        let best = "";
        let bestSize = -1;
        for (const id of AppModel.categoryIDsOf(group)) {
            const size = AppModel.totalSize(id);
            if (best === "" || size > bestSize) {
                best = id;
                bestSize = size;
            }
        }
        return best;
    }

    function press(group) {
        const id = largestCategory(group);
        if (id !== "")
            routeRequested("category", id);
    }

    // The width the chips may use, given by whoever places them: the grid's own width
    // follows its column count, so counting columns from it would keep a narrow
    // window's single column after the window grows.
    property real availableWidth: width

    columns: Math.max(1, Math.floor((availableWidth + columnSpacing) / (190 + columnSpacing)))
    columnSpacing: 8
    rowSpacing: 8

    Repeater {
        model: root.groups

        AbstractButton {
            id: chip
            required property string modelData
            readonly property string group: modelData
            readonly property real total: {
                AppModel.foundTotal;
                return AppModel.groupTotalSize(group);
            }
            readonly property string title: {
                const first = AppModel.categoryIDsOf(group)[0];
                const info = first !== undefined ? AppModel.categoryInfo(first) : ({});
                return info.groupTitle !== undefined ? info.groupTitle : group;
            }
            readonly property color dotColor: total < 1 ? Theme.alpha(Theme.secondary, 0.4) : Theme.groupTint(group)
            readonly property string sizeText: Format.byteCount(total)

            objectName: "groupChip_" + group
            Layout.fillWidth: true
            Layout.preferredWidth: 190
            hoverEnabled: true
            focusPolicy: Qt.TabFocus
            leftPadding: 12
            rightPadding: 12
            topPadding: 7
            bottomPadding: 7

            onClicked: root.press(group)

            background: Rectangle {
                radius: height / 2
                color: Theme.alpha(Theme.primary, chip.down ? 0.12 : chip.hovered ? 0.09 : 0.06)

                FocusRing {
                    shown: chip.visualFocus
                }
            }

            contentItem: RowLayout {
                spacing: 7

                Rectangle {
                    objectName: "chipDot"
                    implicitWidth: 9
                    implicitHeight: 9
                    radius: 4.5
                    color: chip.dotColor
                }
                Label {
                    Layout.fillWidth: true
                    Layout.minimumWidth: 0
                    text: chip.title
                    color: Theme.primary
                    font.pixelSize: Theme.callout
                    elide: Text.ElideRight
                }
                Label {
                    objectName: "chipSize"
                    text: chip.sizeText
                    color: Theme.secondary
                    font.pixelSize: Theme.callout
                }
            }
        }
    }
}
