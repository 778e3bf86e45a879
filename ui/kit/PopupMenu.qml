// A menu in the application's own look: a rounded panel of the window colour with a
// faint outline and a soft shadow, its entries drawn by PopupMenuItem.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Menu {
    id: root

    padding: 5
    delegate: PopupMenuItem {}

    background: Rectangle {
        implicitWidth: 220
        radius: 10
        color: Theme.dark ? "#2c2c2e" : "#fbfbfd"
        border.width: 1
        border.color: Theme.glassOutline

        Rectangle {
            z: -1
            anchors.fill: parent
            anchors.margins: -1
            anchors.topMargin: 2
            anchors.bottomMargin: -4
            radius: parent.radius + 2
            color: Qt.rgba(0, 0, 0, Theme.dark ? 0.35 : 0.10)
        }
    }
}
