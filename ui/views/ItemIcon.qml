// An item's 18 × 18 icon: the desktop's icon for its file, or a terminal glyph for
// an item that is a command.
import QtQuick
import Veltro

Item {
    id: root

    property string path
    property bool hasURL: true

    implicitWidth: 18
    implicitHeight: 18

    FileIcon {
        objectName: "itemFileIcon"
        anchors.centerIn: parent
        visible: root.hasURL
        path: root.hasURL ? root.path : ""
        size: 18
    }

    Symbol {
        objectName: "itemCommandIcon"
        anchors.centerIn: parent
        visible: !root.hasURL
        name: "terminal"
        color: Theme.secondary
        size: 16
    }
}
