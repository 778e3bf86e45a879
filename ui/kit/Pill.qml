// A capsule label: the optional symbol `systemImage` and `text` in `color`, on the
// same colour at 14 %.
import QtQuick
import Veltro

Item {
    id: root

    property string text
    property color color: Theme.secondary
    property string systemImage

    implicitWidth: row.implicitWidth + 16
    implicitHeight: row.implicitHeight + 6

    Rectangle {
        objectName: "pillBackground"
        anchors.fill: parent
        radius: height / 2
        color: Theme.alpha(root.color, 0.14)
    }

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 4

        Symbol {
            objectName: "pillSymbol"
            anchors.verticalCenter: parent.verticalCenter
            visible: root.systemImage !== ""
            name: root.systemImage
            color: root.color
            size: Theme.caption
        }

        Text {
            objectName: "pillText"
            anchors.verticalCenter: parent.verticalCenter
            text: root.text
            color: root.color
            font.pixelSize: Theme.caption
            font.weight: Font.DemiBold
        }
    }
}
