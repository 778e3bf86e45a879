// One symbol of the vendored icon set by its symbol name ("trash.slash"), tinted with
// `color` (its opacity included) and drawn `size` pixels square.
import QtQuick
import Veltro

Item {
    id: root

    property string name
    property color color: Theme.primary
    property real size: 16
    readonly property alias status: image.status

    implicitWidth: size
    implicitHeight: size

    Image {
        id: image
        anchors.fill: parent
        fillMode: Image.PreserveAspectFit
        smooth: true
        // Render at the screen's pixel density so the icon stays sharp.
        sourceSize.width: Math.max(1, Math.ceil(root.size * Screen.devicePixelRatio))
        sourceSize.height: Math.max(1, Math.ceil(root.size * Screen.devicePixelRatio))
        source: root.name === "" ? "" : "image://symbol/" + root.name + "?color=" + String(root.color).substring(1)
    }
}
