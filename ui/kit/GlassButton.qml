// A translucent capsule button with an optional leading symbol: the regular glass
// of the kit (window colour, translucent, with a faint hairline).
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Button {
    id: root

    property string symbol
    property bool small: false
    property bool large: false
    property color foreground: Theme.primary
    // Only the symbol, where room is short (the text stays the button's name).
    property bool iconOnly: false
    // The width with its text shown, whether or not it is.
    readonly property real fullWidth: leftPadding + rightPadding + label.implicitWidth
                                      + (symbol !== "" ? glyph.implicitWidth + 6 : 0)

    readonly property int fontSize: small ? Theme.callout : large ? Theme.title3 : Theme.body

    implicitHeight: small ? 26 : large ? 44 : 32
    leftPadding: small ? 10 : large ? 20 : 14
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    hoverEnabled: true
    font.pixelSize: fontSize
    opacity: enabled ? 1 : 0.45

    contentItem: Row {
        spacing: 6
        Symbol {
            id: glyph
            objectName: "glassButtonSymbol"
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            name: root.symbol
            color: root.foreground
            size: root.fontSize
        }
        Text {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            visible: root.text !== "" && !root.iconOnly
            text: root.text
            font: root.font
            color: root.foreground
            elide: Text.ElideRight
        }
    }

    background: Rectangle {
        implicitWidth: root.implicitHeight
        radius: height / 2
        color: root.down ? Theme.alpha(Theme.windowColor, 0.95)
                         : Theme.alpha(Theme.windowColor, root.hovered ? 0.85 : 0.7)
        border.width: 1
        border.color: Theme.glassOutline

        FocusRing {
            shown: root.visualFocus
        }
    }
}
