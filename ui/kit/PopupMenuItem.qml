// One entry of a PopupMenu: primary text, white on the application's tint while
// highlighted, faded when disabled; a check mark when checked and an arrow when it
// opens a submenu.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

MenuItem {
    id: root

    implicitHeight: 28
    leftPadding: 10 + (checkable ? 18 : 0)
    rightPadding: 10 + (subMenu ? 14 : 0)
    font.pixelSize: Theme.body

    readonly property color foreground: !enabled ? Theme.tertiary : highlighted ? "white" : Theme.primary

    contentItem: Text {
        text: root.text
        font: root.font
        color: root.foreground
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Symbol {
        x: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: root.checked
        name: "checkmark"
        color: root.foreground
        size: 12
    }
    arrow: Symbol {
        x: root.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        visible: root.subMenu !== null
        name: "chevron.right"
        color: root.foreground
        size: 10
    }
    background: Rectangle {
        radius: 6
        color: root.down ? Qt.darker(Theme.navyBright, 1.15) : Theme.navyBright
        visible: root.enabled && (root.highlighted || root.down)
    }
}
