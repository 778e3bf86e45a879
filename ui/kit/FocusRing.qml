// The keyboard focus around a control: a ring in the application's tint just outside
// its parent's rounded shape.
import QtQuick
import Veltro

Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -3
    radius: parent && parent.radius !== undefined ? parent.radius + 3 : height / 2
    color: "transparent"
    border.width: 2
    border.color: Theme.navyBright
    visible: shown
}
