// What the scan is doing now: the category being measured, the step, the share done
// and the scanner's latest message.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "scanPill"

    // The category being scanned, or {} before the first one starts.
    readonly property var current: AppModel.scanningCategory !== ""
                                   ? AppModel.categoryInfo(AppModel.scanningCategory) : ({})
    readonly property bool hasCurrent: current.categoryId !== undefined
    readonly property color tint: hasCurrent ? current.tint : Theme.navyBright
    readonly property string titleText: hasCurrent ? qsTr("Scanning %1…").arg(current.title)
                                                   : qsTr("Preparing scan…")
    readonly property string stepText: AppModel.scanStepCount >= 1
                                       ? qsTr("%1 of %2").arg(AppModel.scanStep).arg(AppModel.scanStepCount) : ""
    readonly property string percentText: Format.percent(AppModel.scanProgress)

    implicitHeight: layout.implicitHeight + 24
    implicitWidth: layout.implicitWidth + 36

    GlassCapsule {
        anchors.fill: parent
        radius: 26
    }

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.leftMargin: 18
        anchors.rightMargin: 18
        anchors.topMargin: 12
        anchors.bottomMargin: 12
        spacing: 14

        IconTile {
            id: tile
            objectName: "scanPillTile"
            size: 36
            active: true
            pulsing: true
            symbol: root.hasCurrent ? root.current.symbol : "sparkle.magnifyingglass"
            tint: root.tint
            Layout.alignment: Qt.AlignVCenter

            // A new category replaces the tile with a short fade.
            onSymbolChanged: if (!Theme.reduceMotion) tileFade.restart()
            NumberAnimation {
                id: tileFade
                target: tile
                property: "opacity"
                from: 0.3
                to: 1
                duration: Theme.duration(250)
                easing.type: Easing.InOutQuad
            }
        }

        ColumnLayout {
            spacing: 6
            Layout.fillWidth: true

            RowLayout {
                spacing: 8
                Layout.fillWidth: true

                Label {
                    objectName: "scanPillTitle"
                    text: root.titleText
                    color: Theme.primary
                    font.pixelSize: Theme.callout
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.alignment: Qt.AlignBaseline
                }
                Label {
                    objectName: "scanPillStep"
                    visible: text !== ""
                    text: root.stepText
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    Layout.alignment: Qt.AlignBaseline
                }
                Label {
                    objectName: "scanPillPercent"
                    text: root.percentText
                    color: Theme.primary
                    font.pixelSize: Theme.callout
                    font.weight: Font.Bold
                    Layout.alignment: Qt.AlignBaseline
                }
            }

            BarProgress {
                objectName: "scanPillProgress"
                value: AppModel.scanProgress
                tint: root.tint
                Layout.fillWidth: true
            }

            Label {
                objectName: "scanPillStatus"
                text: AppModel.statusText
                color: Theme.secondary
                font.pixelSize: Theme.caption
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
    }
}
