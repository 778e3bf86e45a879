// A capsule filled with `tint` (the brand's bright navy unless told otherwise) with
// white text and an optional leading symbol; `large` for the screens' main actions.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Button {
    id: root

    property string symbol
    property color tint: Theme.navyBright
    property bool large: false

    readonly property int fontSize: large ? Theme.title3 : Theme.body

    implicitHeight: large ? 44 : 32
    leftPadding: large ? 22 : 16
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    hoverEnabled: true
    font.pixelSize: fontSize
    font.weight: Font.DemiBold

    contentItem: Row {
        spacing: 7
        Symbol {
            objectName: "prominentButtonSymbol"
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol !== ""
            name: root.symbol
            color: "white"
            size: root.fontSize
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.text !== ""
            text: root.text
            font: root.font
            color: "white"
            elide: Text.ElideRight
        }
    }

    background: Rectangle {
        implicitWidth: root.implicitHeight
        radius: height / 2
        color: !root.enabled ? Theme.alpha(Theme.gray, 0.5)
             : root.down ? Qt.darker(root.tint, 1.15)
             : root.hovered ? Qt.lighter(root.tint, 1.08) : root.tint
        border.width: 1
        border.color: Qt.rgba(1, 1, 1, 0.12)

        FocusRing {
            shown: root.visualFocus
        }
    }
}
