// The hover help of the item it is declared in, in the application's own look: a
// small rounded panel of the window colour with a faint outline, after a pause.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

ToolTip {
    id: root

    // Whether the help is wanted now (the pointer rests on its item).
    property bool shown: false

    visible: shown && text !== ""
    delay: 600
    padding: 8
    leftPadding: 10
    rightPadding: 10

    contentItem: Text {
        text: root.text
        font.pixelSize: Theme.callout
        color: Theme.primary
        wrapMode: Text.Wrap
    }
    background: Rectangle {
        radius: 8
        color: Theme.dark ? "#2c2c2e" : "#fbfbfd"
        border.width: 1
        border.color: Theme.glassOutline
    }
}
