// One symbol of the vendored icon set by its symbol name ("trash.slash"), tinted with
// `color` (its opacity included) and drawn `size` pixels square.
import QtQuick
import Veltro

Image {
    id: root

    property string name
    property color color: Theme.primary
    property real size: 16

    implicitWidth: size
    implicitHeight: size
    width: implicitWidth
    height: implicitHeight
    fillMode: Image.PreserveAspectFit
    smooth: true
    // Render at the screen's pixel density so the icon stays sharp.
    sourceSize.width: Math.max(1, Math.ceil(size * Screen.devicePixelRatio))
    sourceSize.height: Math.max(1, Math.ceil(size * Screen.devicePixelRatio))
    source: name === "" ? "" : "image://symbol/" + name + "?color=" + String(color).substring(1)
}
