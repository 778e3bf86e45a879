// The desktop's icon for the file at `path` (its type's theme icon, or a bundled
// generic file or folder icon), `size` pixels square.
import QtQuick

Item {
    id: root

    property string path
    property real size: 18
    readonly property alias status: image.status

    implicitWidth: size
    implicitHeight: size

    Image {
        id: image
        anchors.fill: parent
        fillMode: Image.PreserveAspectFit
        smooth: true
        sourceSize.width: Math.max(1, Math.ceil(root.size * Screen.devicePixelRatio))
        sourceSize.height: Math.max(1, Math.ceil(root.size * Screen.devicePixelRatio))
        source: root.path === "" ? "" : "image://fileicon/" + encodeURIComponent(root.path)
    }
}
