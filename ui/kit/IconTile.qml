// A symbol on a rounded square: a gray base, a gradient of `tint` over it while
// `active`, the symbol in white (dimmer when inactive), a tinted shadow while active,
// a repeating pulse while `pulsing`, and a pop whenever `active` changes.
import QtQuick
import Veltro

Item {
    id: root

    property string symbol
    property color tint: Theme.navyBright
    property real size: 34
    property bool active: true
    property bool pulsing: false

    readonly property real cornerRadius: size * 0.26

    implicitWidth: size
    implicitHeight: size

    // The shadow: no blur in this toolkit, so a few stacked translucent copies of the
    // shape, offset downwards and spread by the shadow radius, stand in for one.
    Item {
        id: shadow
        objectName: "iconTileShadow"
        width: root.size
        height: root.size
        y: root.size * 0.05
        opacity: root.active ? 0.3 : 0
        visible: opacity > 0
        Behavior on opacity {
            NumberAnimation { duration: Theme.duration(450); easing.type: Easing.InOutQuad }
        }
        Repeater {
            model: 3
            Rectangle {
                required property int index
                readonly property real spread: root.size * 0.12 * (index + 1) / 3
                x: -spread / 2
                y: -spread / 2
                width: root.size + spread
                height: root.size + spread
                radius: root.cornerRadius + spread / 2
                color: root.tint
                opacity: 0.45 - index * 0.13
            }
        }
    }

    Rectangle {
        id: base
        objectName: "iconTileBase"
        anchors.fill: parent
        radius: root.cornerRadius
        opacity: 0.45
        gradient: Gradient {
            GradientStop { position: 0; color: Qt.rgba(0.66, 0.66, 0.69, 1) }
            GradientStop { position: 1; color: Qt.rgba(0.46, 0.46, 0.49, 1) }
        }
    }

    Rectangle {
        id: tintLayer
        objectName: "iconTileTint"
        anchors.fill: parent
        radius: root.cornerRadius
        opacity: root.active ? 1 : 0
        visible: opacity > 0
        gradient: Gradient {
            GradientStop { position: 0; color: Qt.lighter(root.tint, 1.18) }
            GradientStop { position: 1; color: Qt.darker(root.tint, 1.12) }
        }
        Behavior on opacity {
            NumberAnimation { duration: Theme.duration(450); easing.type: Easing.InOutQuad }
        }
    }

    Symbol {
        id: glyph
        objectName: "iconTileSymbol"
        anchors.centerIn: parent
        name: root.symbol
        size: root.size * 0.52
        color: "white"
        property real pulse: 1
        opacity: (root.active ? 1 : 0.75) * pulse
        Behavior on opacity {
            enabled: !pulseAnimation.running
            NumberAnimation { duration: Theme.duration(450); easing.type: Easing.InOutQuad }
        }

        SequentialAnimation on pulse {
            id: pulseAnimation
            running: root.pulsing && !Theme.reduceMotion && root.visible
            loops: Animation.Infinite
            alwaysRunToEnd: false
            NumberAnimation { from: 1; to: 0.35; duration: Theme.duration(600); easing.type: Easing.InOutSine }
            NumberAnimation { from: 0.35; to: 1; duration: Theme.duration(600); easing.type: Easing.InOutSine }
            onRunningChanged: if (!running) glyph.pulse = 1
        }
    }

    RevealPop {
        target: root
        trigger: root.active
    }
}
