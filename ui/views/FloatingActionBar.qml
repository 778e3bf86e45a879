// The strip at the bottom of the detail area: always what can be done next. While
// scanning, the progress pill and Stop; while cleaning, the cleaner's progress; before
// any scan, nothing; then either a hint with "Select Recommended" or the selection's
// summary with Clean.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "actionBar"

    // One of "scanning", "cleaning", "empty", "hint", "summary", tested in that order.
    readonly property string mode: {
        if (AppModel.phase === AppModel.Phase.scanning)
            return "scanning";
        if (AppModel.phase === AppModel.Phase.cleaning)
            return "cleaning";
        if (AppModel.phase === AppModel.Phase.idle && !AppModel.hasLastScan)
            return "empty";
        return AppModel.selectionCount === 0 ? "hint" : "summary";
    }

    implicitWidth: 640
    implicitHeight: {
        switch (mode) {
        case "empty":
            return 0;
        case "scanning":
            return Math.max(pill.implicitHeight, 52);
        default:
            return 52;
        }
    }

    Behavior on implicitHeight {
        NumberAnimation {
            duration: Theme.duration(300)
            easing.type: Easing.OutCubic
        }
    }

    // Each state's row fades in when it takes over.
    component StateRow: RowLayout {
        id: stateRow
        property bool current
        spacing: 12
        visible: current
        onVisibleChanged: if (visible && !Theme.reduceMotion) appear.restart()
        NumberAnimation {
            id: appear
            target: stateRow
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.duration(300)
            easing.type: Easing.OutCubic
        }
    }

    StateRow {
        objectName: "scanningState"
        current: root.mode === "scanning"
        anchors.fill: parent

        ScanProgressPill {
            id: pill
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
        GlassButton {
            objectName: "stopButton"
            text: qsTr("Stop")
            symbol: "stop.fill"
            large: true
            Layout.preferredHeight: 52
            Layout.alignment: Qt.AlignVCenter
            onClicked: AppModel.cancelScan()
        }
    }

    StateRow {
        objectName: "cleaningState"
        current: root.mode === "cleaning"
        anchors.fill: parent

        GlassCapsule {
            Layout.fillWidth: true
            Layout.preferredHeight: 52

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 18
                anchors.rightMargin: 18
                spacing: 10

                BarProgress {
                    objectName: "cleanProgress"
                    value: AppModel.cleanProgress
                    Layout.preferredWidth: 140
                }
                Label {
                    objectName: "cleanStatus"
                    text: AppModel.statusText
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                    elide: Text.ElideMiddle
                    maximumLineCount: 1
                    Layout.fillWidth: true
                }
            }
        }
    }

    StateRow {
        objectName: "hintState"
        current: root.mode === "hint"
        anchors.fill: parent

        Item {
            Layout.fillWidth: true
        }
        GlassCapsule {
            Layout.preferredHeight: 52
            Layout.preferredWidth: hintRow.implicitWidth + 28

            RowLayout {
                id: hintRow
                anchors.fill: parent
                anchors.leftMargin: 20
                anchors.rightMargin: 8
                spacing: 14

                Label {
                    objectName: "hintText"
                    text: qsTr("Check items to clean, or")
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                }
                GlassButton {
                    objectName: "selectRecommendedButton"
                    text: qsTr("Select Recommended")
                    symbol: "wand.and.sparkles"
                    HelpTip {
                        shown: parent.hovered
                        text: qsTr("Select every item in the categories marked Safe")
                    }
                    onClicked: AppModel.selectRecommended()
                }
            }
        }
        Item {
            Layout.fillWidth: true
        }
    }

    StateRow {
        objectName: "summaryState"
        current: root.mode === "summary"
        anchors.fill: parent

        GlassCapsule {
            Layout.fillWidth: true
            Layout.preferredHeight: 52

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 18
                anchors.rightMargin: 18
                spacing: 10

                IconButton {
                    objectName: "deselectButton"
                    symbol: "xmark.circle.fill"
                    color: Theme.secondary
                    toolTip: qsTr("Deselect everything")
                    onClicked: AppModel.clearSelection()
                }
                Label {
                    objectName: "selectionCountText"
                    text: qsTr("%Ln items selected", "", AppModel.selectionCount)
                    color: Theme.primary
                    font.pixelSize: Theme.callout
                    font.weight: Font.DemiBold
                }
                Item {
                    Layout.fillWidth: true
                }
                NumericText {
                    objectName: "selectedTotalText"
                    text: Format.byteCount(AppModel.selectedTotal)
                    color: Theme.primary
                    font.pixelSize: Theme.title2
                    font.weight: Font.DemiBold
                }
            }
        }
        ProminentButton {
            objectName: "cleanButton"
            text: qsTr("Clean")
            symbol: "sparkles"
            tint: Theme.navyBright
            large: true
            Layout.preferredHeight: 52
            Layout.alignment: Qt.AlignVCenter
            onClicked: AppModel.requestClean("")
        }
    }

    Shortcut {
        objectName: "cleanShortcut"
        sequences: ["Ctrl+Return", "Ctrl+Enter"]
        enabled: root.mode === "summary"
        onActivated: AppModel.requestClean("")
    }
}
