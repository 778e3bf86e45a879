// The round check of the result rows: off, partial or on. Pressing it asks the owner
// to toggle; the owner decides what that means and feeds the new mark back.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

AbstractButton {
    id: root

    // "off", "partial" or "on".
    property string mark: "off"

    readonly property bool isOn: mark === "on"
    readonly property bool isPartial: mark === "partial"
    readonly property string toolTipText: isOn ? qsTr("Deselect") : qsTr("Select")
    readonly property alias symbolName: glyph.name
    readonly property alias symbolColor: glyph.color

    signal toggle()

    implicitWidth: Theme.title3 + 4
    implicitHeight: Theme.title3 + 4
    hoverEnabled: true
    focusPolicy: Qt.NoFocus

    contentItem: Item {
        Symbol {
            id: glyph
            anchors.centerIn: parent
            name: root.isOn ? "checkmark.circle.fill" : root.isPartial ? "minus.circle.fill" : "circle"
            color: root.isOn || root.isPartial ? Theme.gold : Theme.secondary
            size: Theme.title3
            opacity: root.down ? 0.6 : 1
        }
    }

    // The symbol's replacement: a quick shrink-and-return as the mark changes.
    onMarkChanged: if (!Theme.reduceMotion) swap.restart()
    SequentialAnimation {
        id: swap
        NumberAnimation { target: glyph; property: "scale"; to: 0.7; duration: 70; easing.type: Easing.InQuad }
        NumberAnimation { target: glyph; property: "scale"; to: 1; duration: 160; easing.type: Easing.OutBack }
    }

    onClicked: toggle()

    HelpTip {
        shown: parent.hovered
        text: parent.toolTipText
    }
}
