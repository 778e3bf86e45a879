// How the measured System Data areas share their total: one coloured segment per
// area, largest first, and a legend under the bar in the same order. Areas of equal
// size keep the order they were given in.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Column {
    id: root
    objectName: "compositionBar"

    // [{ id, title, size }], in catalogue order; sizes in bytes, all above 0.
    property var entries: []
    property bool shimmering: false

    readonly property var colours: [
        Theme.navyBright, Theme.gold, Qt.rgba(0.25, 0.72, 0.69, 1), Qt.rgba(0.88, 0.38, 0.35, 1),
        Qt.rgba(0.61, 0.48, 0.88, 1), Qt.rgba(0.62, 0.66, 0.75, 1), Theme.navy, Qt.rgba(0.89, 0.64, 0.31, 1),
        Theme.gray, Theme.brown, Theme.mint, Theme.cyan
    ]

    // Largest first; the index breaks ties so equal sizes keep their given order.
    readonly property var sorted: {
        const indexed = entries.map((entry, index) => ({ entry: entry, index: index }));
        indexed.sort((a, b) => b.entry.size - a.entry.size || a.index - b.index);
        return indexed.map(pair => pair.entry);
    }
    readonly property real total: Math.max(1, sorted.reduce((sum, entry) => sum + entry.size, 0))
    readonly property var order: sorted.map(entry => entry.id)

    function colorAt(position) {
        return colours[position % colours.length];
    }

    spacing: 10

    Item {
        id: track
        width: root.width
        height: 14

        Row {
            id: segments
            spacing: 2

            Repeater {
                model: root.sorted

                Rectangle {
                    id: segment
                    required property var modelData
                    required property int index
                    readonly property string entryId: modelData.id
                    readonly property color segmentColor: root.colorAt(index)
                    readonly property string toolTipText: modelData.title + " — " + Format.byteCount(modelData.size)

                    objectName: "compositionSegment_" + index
                    width: Math.max(2, track.width * modelData.size / root.total - 2)
                    height: track.height
                    radius: 3
                    gradient: Gradient {
                        GradientStop { position: 0; color: Qt.lighter(segment.segmentColor, 1.15) }
                        GradientStop { position: 1; color: segment.segmentColor }
                    }

                    HoverHandler {
                        id: hover
                    }
                    HelpTip {
                        shown: hover.hovered
                        text: parent.toolTipText
                        delay: 300
                    }
                }
            }
        }

        Shimmer {
            active: root.shimmering
            radius: 3
        }
    }

    Flow {
        width: root.width
        spacing: 10

        Repeater {
            model: root.sorted

            Row {
                id: legend
                required property var modelData
                required property int index
                readonly property string text: modelData.title + " " + Format.byteCount(modelData.size)

                objectName: "compositionLegend_" + index
                spacing: 5

                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 8
                    height: 8
                    radius: 4
                    color: root.colorAt(legend.index)
                }
                Text {
                    text: legend.modelData.title
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                }
                Text {
                    text: Format.byteCount(legend.modelData.size)
                    color: Theme.primary
                    font.pixelSize: Theme.caption
                    font.weight: Font.DemiBold
                }
            }
        }
    }
}
