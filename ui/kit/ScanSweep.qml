// A ring stroked `lineWidth` wide whose colour runs around it from white at 0 %
// (at 0°, three o'clock) to white at 85 % (at 80°, clockwise), turning once every
// 1.4 s. It stands still with reduce motion. Fills its parent unless sized.
import QtQuick
import QtQuick.Shapes
import Veltro

Item {
    id: root

    property real lineWidth: 26
    readonly property bool spinning: spin.running

    implicitWidth: 240
    implicitHeight: 240

    Shape {
        id: ring
        objectName: "scanSweepRing"
        anchors.centerIn: parent
        width: Math.min(root.width, root.height)
        height: width
        layer.enabled: true
        layer.samples: 4

        readonly property real outer: width / 2
        readonly property real inner: Math.max(0, width / 2 - root.lineWidth)

        ShapePath {
            strokeWidth: -1
            strokeColor: "transparent"
            fillRule: ShapePath.OddEvenFill
            // Qt's conical gradient runs counter-clockwise from its angle, so the
            // clockwise stops are placed at 1 − degrees / 360.
            fillGradient: ConicalGradient {
                centerX: ring.outer
                centerY: ring.outer
                angle: 0
                GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0) }
                GradientStop { position: 1 - 92 / 360; color: Qt.rgba(1, 1, 1, 0) }
                GradientStop { position: 1 - 80 / 360; color: Qt.rgba(1, 1, 1, 0.85) }
                GradientStop { position: 1; color: Qt.rgba(1, 1, 1, 0) }
            }
            startX: ring.outer * 2
            startY: ring.outer
            PathAngleArc {
                centerX: ring.outer; centerY: ring.outer
                radiusX: ring.outer; radiusY: ring.outer
                startAngle: 0; sweepAngle: 360
            }
            PathAngleArc {
                centerX: ring.outer; centerY: ring.outer
                radiusX: ring.inner; radiusY: ring.inner
                startAngle: 0; sweepAngle: 360
            }
        }

        RotationAnimation on rotation {
            id: spin
            running: !Theme.reduceMotion && root.visible
            from: 0
            to: 360
            duration: Theme.duration(1400)
            loops: Animation.Infinite
            direction: RotationAnimation.Clockwise
            onRunningChanged: if (!running) ring.rotation = 0
        }
    }
}
