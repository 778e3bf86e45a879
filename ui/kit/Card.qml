// The card background: content inset by `padding` on a rounded rectangle of the
// regular material (the window colour, translucent) with a faint white hairline.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Pane {
    id: root

    property real radius: 26

    padding: 22
    background: Rectangle {
        objectName: "cardBackground"
        radius: root.radius
        color: Theme.materialColor
        border.width: 1
        border.color: Theme.outlineColor
    }
}
