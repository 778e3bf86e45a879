// A ring of reclaimable space: one arc per segment, in order, clockwise from twelve
// o'clock, over a faint full track. Segments under 0.4 % of the total are left out
// so they do not show as slivers, and visible arcs are parted by a small gap.
import QtQuick
import QtQuick.Shapes
import Veltro

Item {
    id: root

    // [{ color, value }], value in bytes.
    property var segments: []
    property real lineWidth: 26

    // The arcs as drawn, in turns (0…1 from twelve o'clock): for each visible segment
    // its colour, value, its share's start and end, and the drawn span from…to.
    readonly property var arcs: {
        let total = 0;
        for (const segment of segments)
            total += segment.value;
        if (!(total > 0))
            return [];
        const visible = segments.filter(segment => segment.value / total > 0.004);
        const gap = visible.length > 1 ? 0.012 : 0;
        const out = [];
        let before = 0;
        for (const segment of visible) {
            const start = before / total;
            const end = start + segment.value / total;
            const from = start + gap / 2;
            out.push({ color: segment.color, value: segment.value, start: start, end: end,
                       from: from, to: Math.max(from, end - gap / 2) });
            before += segment.value;
        }
        return out;
    }

    readonly property real radius: (Math.min(width, height) - lineWidth) / 2

    implicitWidth: 240
    implicitHeight: 240

    Shape {
        objectName: "donutTrack"
        anchors.fill: parent
        layer.enabled: true
        layer.samples: 4

        ShapePath {
            strokeColor: Theme.quaternary
            strokeWidth: root.lineWidth
            fillColor: "transparent"
            capStyle: ShapePath.FlatCap
            PathAngleArc {
                centerX: root.width / 2
                centerY: root.height / 2
                radiusX: root.radius
                radiusY: root.radius
                startAngle: -90
                sweepAngle: 360
            }
        }
    }

    Repeater {
        model: root.arcs.length

        Shape {
            id: arc
            objectName: "donutArc"
            required property int index
            readonly property var segment: root.arcs[index] || { color: "transparent", from: 0, to: 0 }
            property real from: segment.from
            property real to: segment.to
            Behavior on from {
                NumberAnimation { duration: Theme.duration(600); easing.type: Easing.OutCubic }
            }
            Behavior on to {
                NumberAnimation { duration: Theme.duration(600); easing.type: Easing.OutCubic }
            }

            anchors.fill: parent
            layer.enabled: true
            layer.samples: 4

            ShapePath {
                strokeColor: arc.segment.color
                strokeWidth: root.lineWidth
                fillColor: "transparent"
                capStyle: ShapePath.FlatCap
                PathAngleArc {
                    centerX: root.width / 2
                    centerY: root.height / 2
                    radiusX: root.radius
                    radiusY: root.radius
                    startAngle: -90 + arc.from * 360
                    sweepAngle: (arc.to - arc.from) * 360
                }
            }
        }
    }
}
