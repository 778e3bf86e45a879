// The desktop's icon for the file at `path` (its type's theme icon, or a bundled
// generic file or folder icon), `size` pixels square.
import QtQuick

Image {
    id: root

    property string path
    property real size: 18

    implicitWidth: size
    implicitHeight: size
    width: implicitWidth
    height: implicitHeight
    fillMode: Image.PreserveAspectFit
    smooth: true
    sourceSize.width: Math.max(1, Math.ceil(size * Screen.devicePixelRatio))
    sourceSize.height: Math.max(1, Math.ceil(size * Screen.devicePixelRatio))
    source: path === "" ? "" : "image://fileicon/" + encodeURIComponent(path)
}
