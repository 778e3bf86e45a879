// A plain button that is only a symbol, with an optional hover help text.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

AbstractButton {
    id: root

    property string symbol
    property color color: Theme.secondary
    property real size: Theme.title3
    property string toolTip

    implicitWidth: size + leftPadding + rightPadding
    implicitHeight: size + topPadding + bottomPadding
    padding: 2
    hoverEnabled: true
    opacity: enabled ? (down ? 0.6 : 1) : 0.45

    contentItem: Symbol {
        objectName: "iconButtonSymbol"
        name: root.symbol
        color: root.color
        size: root.size
    }

    background: Item {
        FocusRing {
            shown: root.visualFocus
        }
    }

    HelpTip {
        shown: parent.hovered && parent.toolTip !== ""
        text: parent.toolTip
    }
}
