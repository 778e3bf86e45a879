// The hero card's report on a running scan: which category is being measured, the
// share done, a bar in the category's group tint, and the scanner's latest status.
// The figures default to the model's and can be given directly.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

ColumnLayout {
    id: root

    property string scanningCategory: AppModel.scanningCategory
    property real progress: AppModel.scanProgress
    property string statusText: AppModel.statusText
    property int step: AppModel.scanStep
    property int stepCount: AppModel.scanStepCount

    readonly property var category: scanningCategory === "" ? ({}) : AppModel.categoryInfo(scanningCategory)
    readonly property bool knownCategory: category.categoryId !== undefined
    readonly property string title: knownCategory ? qsTr("Scanning %1…").arg(category.title) : qsTr("Preparing scan…")
    readonly property color tint: knownCategory ? Theme.groupTint(category.group) : Theme.navyBright
    readonly property string percentText: Format.percent(Math.max(0, Math.min(1, progress)))
    readonly property string stepText: qsTr("%1 of %2").arg(Format.integer(step)).arg(Format.integer(stepCount))

    spacing: 10

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        Label {
            id: titleLabel
            objectName: "scanTitle"
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignBaseline
            text: root.title
            color: Theme.primary
            font.pixelSize: Theme.title3
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            onTextChanged: if (!Theme.reduceMotion) titleFade.restart()
            NumberAnimation {
                id: titleFade
                target: titleLabel
                property: "opacity"
                from: 0.3
                to: 1
                duration: 300
                easing.type: Easing.OutQuad
            }
        }
        Label {
            objectName: "scanPercent"
            Layout.alignment: Qt.AlignBaseline
            text: root.percentText
            color: Theme.primary
            font.pixelSize: 28
            font.weight: Font.Bold
        }
    }

    Item {
        objectName: "scanBar"
        Layout.fillWidth: true
        implicitHeight: 6
        // The colour the bar is heading for (it eases into it).
        readonly property color tint: root.tint

        Rectangle {
            anchors.fill: parent
            radius: height / 2
            color: Theme.alpha(Theme.primary, 0.1)
        }
        Rectangle {
            id: fill
            height: parent.height
            width: parent.width * Math.max(0, Math.min(1, root.progress))
            radius: height / 2
            color: root.tint
            Behavior on color {
                ColorAnimation { duration: Theme.duration(300); easing.type: Easing.OutQuad }
            }
            Behavior on width {
                NumberAnimation { duration: Theme.duration(200); easing.type: Easing.OutQuad }
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        Label {
            objectName: "scanStatus"
            Layout.fillWidth: true
            text: root.statusText
            color: Theme.secondary
            font.pixelSize: Theme.callout
            elide: Text.ElideMiddle
            maximumLineCount: 1
        }
        Label {
            objectName: "scanStep"
            visible: root.stepCount >= 1
            text: root.stepText
            color: Theme.secondary
            font.pixelSize: Theme.callout
        }
    }
}
