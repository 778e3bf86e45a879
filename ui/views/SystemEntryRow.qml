// One System Data area: its icon, title and explanation, a bar of its size against the
// largest area, the size itself, and for areas that can be reduced the action button.
// The action is only asked for here (actionRequested); the screen confirms it first.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root

    // One entry of AppModel.systemEntries.
    required property var entry
    property bool actionable: false
    // The entry's size bar against the largest measured area, 0…1.
    property real fraction: 0
    // The width every row of a card gives its action button, so that the bars and sizes
    // of all rows line up whatever each action is called.
    property real actionSlotWidth: 0
    readonly property real actionWidth: actionButton.visible ? actionButton.implicitWidth : 0
    readonly property bool hovering: hover.hovered

    readonly property string entryId: entry.id
    readonly property bool hasReport: AppModel.hasSystemReport
    readonly property bool isSnapshots: entryId === "tm"
    readonly property var size: AppModel.systemSizes[entryId]
    readonly property bool measured: isSnapshots ? AppModel.systemSnapshotsMeasured : size !== undefined
    readonly property bool waiting: AppModel.systemAnalyzing && !measured
    readonly property string sizeText: {
        if (isSnapshots) {
            if (!hasReport)
                return "—";
            const count = AppModel.systemSnapshotCount;
            return count === 0 ? qsTr("None") : qsTr("%Ln snapshots", "", count);
        }
        return size === undefined ? "—" : Format.byteCount(size);
    }
    readonly property bool running: AppModel.systemRunningEntry === entryId
    // Why the action cannot run here (its tool is not installed), "" when it can.
    readonly property string unavailable: actionable ? entry.unavailableNote || "" : ""
    readonly property bool actionEnabled: AppModel.systemRunningEntry === "" && unavailable === ""
                                          && !(isSnapshots && hasReport && AppModel.systemSnapshotCount === 0)
    // The first of the area's folders that exists, "" when none does; looked up again
    // whenever a measurement or an action may have changed the disk.
    readonly property string revealPath: {
        AppModel.systemSizes;
        AppModel.systemRunningEntry;
        return AppModel.firstExistingPath(entryId);
    }
    readonly property string note: !actionable && entry.protectedNote !== "" ? entry.protectedNote : entry.detail

    signal actionRequested()

    objectName: "systemRow_" + entryId
    implicitHeight: row.implicitHeight + 20

    HoverHandler {
        id: hover
    }

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -8
        anchors.rightMargin: -8
        radius: 10
        color: Theme.alpha(Theme.primary, root.hovering ? 0.04 : 0)
        Behavior on color {
            ColorAnimation { duration: Theme.duration(150) }
        }
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        enabled: root.revealPath !== ""
        onTapped: contextMenu.popup()
    }

    PopupMenu {
        id: contextMenu
        PopupMenuItem {
            text: qsTr("Show in Finder")
            onTriggered: Platform.revealInFileViewer(root.revealPath)
        }
    }

    RowLayout {
        id: row
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 12

        Item {
            implicitWidth: 34
            implicitHeight: 34
            Layout.alignment: Qt.AlignTop

            IconTile {
                anchors.centerIn: parent
                symbol: root.entry.symbol
                tint: root.actionable ? Theme.navyBright : Theme.gray
                size: root.actionable ? 34 : 26
            }
        }

        ColumnLayout {
            spacing: 3
            Layout.fillWidth: true

            Label {
                objectName: "systemTitle_" + root.entryId
                text: root.entry.title
                color: Theme.primary
                font.pixelSize: Theme.body
                font.weight: root.actionable ? Font.DemiBold : Font.Normal
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Label {
                objectName: "systemNote_" + root.entryId
                text: root.note
                color: Theme.secondary
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            RowLayout {
                objectName: "systemUnavailable_" + root.entryId
                visible: root.unavailable !== ""
                spacing: 4
                Layout.fillWidth: true

                Symbol {
                    name: "exclamationmark.triangle.fill"
                    color: Theme.orange
                    size: Theme.caption
                }
                Label {
                    objectName: "systemUnavailableText_" + root.entryId
                    text: root.unavailable
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
            }
            Item {
                implicitHeight: 4
                Layout.fillWidth: true
                Layout.topMargin: 3

                Rectangle {
                    anchors.fill: parent
                    radius: 2
                    color: Theme.alpha(Theme.primary, 0.07)
                }
                Rectangle {
                    objectName: "systemBar_" + root.entryId
                    width: parent.width * Math.max(0, Math.min(1, root.fraction))
                    height: parent.height
                    radius: 2
                    color: root.actionable ? Theme.navyBright : Theme.gray
                    Behavior on width {
                        NumberAnimation { duration: Theme.duration(350); easing.type: Easing.OutCubic }
                    }
                }
            }
        }

        Item {
            implicitWidth: 110
            implicitHeight: Math.max(sizeLabel.implicitHeight, 16)

            Row {
                objectName: "systemMeasuring_" + root.entryId
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 6
                visible: root.waiting

                BusyIndicator {
                    anchors.verticalCenter: parent.verticalCenter
                    implicitWidth: 14
                    implicitHeight: 14
                    padding: 0
                    running: root.waiting
                }
                PlaceholderBar {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 56
                    height: 12
                }
            }

            Label {
                id: sizeLabel
                objectName: "systemSize_" + root.entryId
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: !root.waiting
                text: root.sizeText
                color: Theme.primary
                font.pixelSize: Theme.body
                font.weight: root.actionable ? Font.DemiBold : Font.Normal
                horizontalAlignment: Text.AlignRight
            }
        }

        GlassButton {
            id: actionButton
            objectName: "systemAction_" + root.entryId
            visible: root.actionable
            Layout.preferredWidth: Math.max(implicitWidth, root.actionSlotWidth)
            small: true
            text: root.entry.actionTitle
            foreground: root.running ? "transparent" : Theme.primary
            enabled: root.actionEnabled
            onClicked: root.actionRequested()

            BusyIndicator {
                objectName: "systemActionBusy_" + root.entryId
                anchors.centerIn: parent
                implicitWidth: 16
                implicitHeight: 16
                padding: 0
                visible: root.running
                running: root.running
            }
        }

        // The reveal button's place is kept when an area has no folder on this disk.
        Item {
            implicitWidth: reveal.implicitWidth
            implicitHeight: reveal.implicitHeight

            IconButton {
                id: reveal
                objectName: "systemReveal_" + root.entryId
                anchors.centerIn: parent
                visible: root.revealPath !== ""
                symbol: "folder"
                toolTip: qsTr("Show in Finder")
                size: Theme.body
                onClicked: Platform.revealInFileViewer(root.revealPath)
            }
        }
    }
}
