// The top of the overview: a ring of what can be cleaned by group with the total in
// its centre, the disk's name, free space and capacity bar, and below them the scan's
// progress, the first-run invitation to scan, or one chip per group.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Card {
    id: root

    readonly property bool scanning: AppModel.phase === AppModel.Phase.scanning
    readonly property bool neverScanned: !AppModel.hasLastScan
    readonly property bool firstRun: neverScanned && !scanning
    readonly property var groups: ["user", "system", "developer", "apps", "large"]

    signal routeRequested(string kind, string categoryId)

    radius: 32
    padding: 32

    // The width beside the ring, from the card's own width: it is settled before the
    // layouts inside run, while their widths change in the middle of a layout pass, and
    // a count of columns taken from those leaves the later items unplaced.
    readonly property real sideWidth: availableWidth - 240 - 44

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 44

        Item {
            Layout.alignment: Qt.AlignVCenter
            implicitWidth: 240
            implicitHeight: 240

            BreakdownDonut {
                id: donut
                objectName: "breakdownDonut"
                anchors.fill: parent
                lineWidth: 26
                segments: {
                    AppModel.foundTotal;
                    return root.groups.map(group => ({ color: Theme.groupTint(group),
                                                       value: AppModel.groupTotalSize(group) }));
                }
            }

            ScanSweep {
                objectName: "heroSweep"
                anchors.fill: parent
                lineWidth: 26
                opacity: root.scanning ? 1 : 0
                visible: root.scanning || opacity > 0
                Behavior on opacity {
                    NumberAnimation { duration: Theme.duration(300); easing.type: Easing.InOutQuad }
                }
            }

            Symbol {
                objectName: "heroMagnifier"
                anchors.centerIn: parent
                visible: root.firstRun
                name: "sparkle.magnifyingglass"
                color: Theme.secondary
                size: 40
            }

            ColumnLayout {
                anchors.centerIn: parent
                visible: !root.firstRun
                spacing: 2

                Label {
                    id: foundLabel
                    objectName: "heroFoundTotal"
                    Layout.alignment: Qt.AlignHCenter
                    text: Format.byteCount(AppModel.foundTotal)
                    color: Theme.primary
                    font.pixelSize: 36
                    font.weight: Font.Bold
                    onTextChanged: if (!Theme.reduceMotion) foundFade.restart()
                    NumberAnimation {
                        id: foundFade
                        target: foundLabel
                        property: "opacity"
                        from: 0.4
                        to: 1
                        duration: 250
                    }
                }
                Label {
                    objectName: "heroFoundCaption"
                    Layout.alignment: Qt.AlignHCenter
                    text: root.scanning ? qsTr("found so far") : qsTr("can be cleaned")
                    color: Theme.secondary
                    font.pixelSize: Theme.callout
                }
            }
        }

        // It takes what the ring leaves, whatever its contents would like: the chips and
        // the legend arrange themselves in the width they get.
        ColumnLayout {
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            Layout.preferredWidth: 0
            Layout.alignment: Qt.AlignVCenter
            spacing: 20

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 4

                Label {
                    objectName: "heroVolumeName"
                    Layout.fillWidth: true
                    text: qsTr("Macintosh HD")
                    color: Theme.primary
                    font.pixelSize: Theme.largeTitle
                    font.weight: Font.Bold
                    elide: Text.ElideRight
                }
                Label {
                    objectName: "heroCapacity"
                    Layout.fillWidth: true
                    text: qsTr("%1 available of %2").arg(Format.byteCount(AppModel.diskAvailable))
                                                    .arg(Format.byteCount(AppModel.diskTotal))
                    color: Theme.secondary
                    font.pixelSize: Theme.title3
                    elide: Text.ElideRight
                }
            }

            CapacityBar {
                objectName: "capacity"
                availableWidth: root.sideWidth
                Layout.fillWidth: true
            }

            ScanProgressPanel {
                objectName: "scanProgressPanel"
                Layout.fillWidth: true
                visible: root.scanning
                onVisibleChanged: if (visible) root.fadeIn(this)
            }

            ColumnLayout {
                objectName: "firstRunInvitation"
                Layout.fillWidth: true
                visible: root.firstRun
                spacing: 16
                onVisibleChanged: if (visible) root.fadeIn(this)

                Label {
                    objectName: "invitationText"
                    Layout.fillWidth: true
                    text: qsTr("Find caches, junk, logs and large files. Everything is shown for review first — nothing is removed until you confirm, and most items go to the Trash so they can be recovered.")
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                    wrapMode: Text.Wrap
                }

                ProminentButton {
                    id: startScan
                    objectName: "startScanButton"
                    text: qsTr("Start Scan")
                    symbol: "sparkle.magnifyingglass"
                    large: true
                    onClicked: AppModel.scan()
                }

                // The default action of the screen while the invitation shows.
                Shortcut {
                    sequences: ["Return", "Enter"]
                    enabled: startScan.visible && !AppModel.showConfirm && !AppModel.showResult
                    onActivated: AppModel.scan()
                }
            }

            GroupChips {
                objectName: "groupChips"
                availableWidth: root.sideWidth
                Layout.fillWidth: true
                Layout.minimumWidth: 0
                visible: !root.scanning && !root.neverScanned
                onVisibleChanged: if (visible) root.fadeIn(this)
                onRouteRequested: (kind, categoryId) => root.routeRequested(kind, categoryId)
            }
        }
    }

    // What follows the card's phase comes in with a short fade.
    function fadeIn(item) {
        if (Theme.reduceMotion)
            return;
        phaseFade.target = item;
        phaseFade.restart();
    }
    NumberAnimation {
        id: phaseFade
        property: "opacity"
        from: 0
        to: 1
        duration: 300
        easing.type: Easing.InOutQuad
    }
}
