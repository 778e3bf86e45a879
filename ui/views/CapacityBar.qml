// The disk as one capsule: used space the scan did not find, the checked part of what
// it found, the rest of what it found, and free space; with a legend of the four
// sizes below. The figures default to the model's and can be given directly.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

ColumnLayout {
    id: root

    property real diskTotal: AppModel.diskTotal
    property real diskAvailable: AppModel.diskAvailable
    property real foundTotal: AppModel.foundTotal
    property real selectedTotal: AppModel.selectedTotal
    // The width the legend may use, given by whoever places the bar.
    property real availableWidth: width

    // What the scan found can never be more than what is used: a scan may count
    // shared or compressed blocks twice, or a volume may report odd figures.
    readonly property real used: diskTotal - diskAvailable
    readonly property real cleanable: Math.min(Math.max(used, 0), foundTotal)
    readonly property real usedOther: Math.max(Math.max(used, 0) - cleanable, 0)
    readonly property real selected: Math.min(cleanable, selectedTotal)
    readonly property real divisor: diskTotal < 2 ? 1 : diskTotal

    // The same figures, easing towards new values for the bar.
    property real shownCleanable: cleanable
    property real shownSelected: selected
    Behavior on shownCleanable {
        NumberAnimation { duration: Theme.duration(500); easing.type: Easing.OutCubic }
    }
    Behavior on shownSelected {
        NumberAnimation { duration: Theme.duration(300); easing.type: Easing.OutCubic }
    }
    readonly property real shownUsedOther: Math.max(Math.max(used, 0) - shownCleanable, 0)

    // Segment widths, left to right.
    readonly property var segmentWidths: [usedOtherSegment.width, selectedSegment.width,
                                          cleanableSegment.width, freeSegment.width]

    spacing: 8

    Item {
        id: bar
        objectName: "capacityBar"
        Layout.fillWidth: true
        implicitHeight: 14

        function share(value) {
            return Math.max(0, value * bar.width / root.divisor);
        }

        Row {
            anchors.fill: parent

            Segment {
                id: usedOtherSegment
                objectName: "capacityUsed"
                width: bar.share(root.shownUsedOther)
                fill: Theme.alpha(Theme.primary, 0.55)
            }
            Segment {
                id: selectedSegment
                objectName: "capacitySelected"
                width: bar.share(Math.min(root.shownSelected, root.shownCleanable))
                fill: Theme.gold
            }
            Segment {
                id: cleanableSegment
                objectName: "capacityCleanable"
                width: bar.share(root.shownCleanable - Math.min(root.shownSelected, root.shownCleanable))
                fill: Theme.alpha(Theme.gold, 0.35)
            }
            Segment {
                id: freeSegment
                objectName: "capacityFree"
                width: bar.share(root.diskAvailable)
                fill: Theme.alpha(Theme.primary, 0.08)
            }
        }
    }

    // A grid rather than a flow: a layout asks it for the height of the rows it really
    // has, so two rows push what follows down instead of drawing over it.
    GridLayout {
        objectName: "capacityLegend"
        Layout.fillWidth: true
        columnSpacing: 18
        rowSpacing: 6
        columns: root.availableWidth >= implicitWidthAtOneRow ? 4 : root.availableWidth >= implicitWidthAtTwoRows ? 2 : 1

        Layout.minimumWidth: 0

        readonly property real implicitWidthAtOneRow: 3 * columnSpacing + legendUsed.implicitWidth
                                                      + legendCleanable.implicitWidth
                                                      + legendSelected.implicitWidth + legendFree.implicitWidth
        readonly property real implicitWidthAtTwoRows: columnSpacing
                                                       + Math.max(legendUsed.implicitWidth, legendSelected.implicitWidth)
                                                       + Math.max(legendCleanable.implicitWidth, legendFree.implicitWidth)

        LegendEntry {
            id: legendUsed
            objectName: "legendUsed"
            label: qsTr("Used")
            swatch: Theme.alpha(Theme.primary, 0.55)
            bytes: root.usedOther
        }
        LegendEntry {
            id: legendCleanable
            objectName: "legendCleanable"
            label: qsTr("Cleanable")
            swatch: Theme.alpha(Theme.gold, 0.35)
            bytes: root.cleanable
        }
        LegendEntry {
            id: legendSelected
            objectName: "legendSelected"
            label: qsTr("Selected")
            swatch: Theme.gold
            bytes: root.selected
        }
        LegendEntry {
            id: legendFree
            objectName: "legendFree"
            label: qsTr("Free")
            swatch: Theme.alpha(Theme.primary, 0.15)
            bytes: root.diskAvailable
        }
    }

    // One stretch of the bar: the part of the whole capsule that lies under it, so the
    // row of segments together is clipped to the capsule's rounded ends.
    component Segment: Item {
        id: segment
        property color fill
        readonly property real capsuleWidth: parent ? parent.width : 0
        height: parent ? parent.height : 0
        clip: true
        Rectangle {
            x: -segment.x
            width: segment.capsuleWidth
            height: segment.height
            radius: height / 2
            color: segment.fill
        }
    }

    component LegendEntry: Row {
        id: entry
        Layout.alignment: Qt.AlignLeft
        property string label
        property color swatch
        property real bytes
        readonly property string sizeText: Format.byteCount(Math.trunc(bytes))
        spacing: 6

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 9
            height: 9
            radius: 4.5
            color: entry.swatch
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: entry.label
            color: Theme.secondary
            font.pixelSize: Theme.callout
        }
        Label {
            objectName: "legendSize"
            anchors.verticalCenter: parent.verticalCenter
            text: entry.sizeText
            color: Theme.primary
            font.pixelSize: Theme.callout
        }
    }
}
