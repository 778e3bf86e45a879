// A highlight band sweeping across its parent while `active`: clear → white 28 % →
// clear, half the width wide, at x = phase × width × 1.25 + width × 0.25 with the
// phase running from −1 to 1 in 1.3 s, forever. Clipped to the parent's rectangle
// (rounded by `radius` only at the ends of the sweep, where the band fades), never
// takes the mouse, fades in and out. With reduce motion nothing is drawn.
import QtQuick
import Veltro

Item {
    id: root

    property bool active
    property real radius: 0
    property real phase: -1

    readonly property bool shown: active && !Theme.reduceMotion

    anchors.fill: parent
    clip: true
    enabled: false
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Behavior on opacity {
        NumberAnimation { duration: Theme.duration(200) }
    }

    Rectangle {
        id: band
        objectName: "shimmerBand"
        width: root.width / 2
        height: root.height
        x: root.phase * root.width * 1.25 + root.width * 0.25
        radius: root.radius
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: Qt.rgba(1, 1, 1, 0) }
            GradientStop { position: 0.5; color: Qt.rgba(1, 1, 1, 0.28) }
            GradientStop { position: 1; color: Qt.rgba(1, 1, 1, 0) }
        }
    }

    NumberAnimation on phase {
        id: sweep
        running: root.shown && root.visible
        from: -1
        to: 1
        duration: Theme.duration(1300)
        loops: Animation.Infinite
        onRunningChanged: if (!running) root.phase = -1
    }
}
