// A thin linear progress bar of `value` out of 1, filled with `tint`.
import QtQuick
import Veltro

Item {
    id: root

    property real value: 0
    property color tint: Theme.navyBright
    property int easingDuration: 300

    implicitWidth: 140
    implicitHeight: 6

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Qt.rgba(Theme.primary.r, Theme.primary.g, Theme.primary.b, 0.1)
    }
    Rectangle {
        objectName: "progressFill"
        height: parent.height
        radius: height / 2
        color: root.tint
        width: parent.width * Math.max(0, Math.min(1, root.value))

        Behavior on width {
            NumberAnimation {
                duration: Theme.duration(root.easingDuration)
                easing.type: Easing.OutCubic
            }
        }
    }
}
