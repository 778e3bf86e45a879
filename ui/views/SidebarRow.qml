// One sidebar row as its creator describes it: icon tile, title, and at the right
// either a spinner (while scanning) or a trailing text. Presentational: it reads no
// model and reports clicks and context-menu requests.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Shapes
import Veltro

Item {
    id: row

    property string symbol
    property color tint: Theme.blue
    property string title
    // Empty means absent: nothing is drawn at the right edge.
    property string trailing
    property bool accent: false
    property bool active: false
    property bool scanning: false
    property bool dimTitle: false
    property bool selected: false
    // The keyboard's place in the list while the list has focus: drawn as a ring.
    property bool cursor: false
    property string toolTip

    // The colour the trailing text is drawn in, for whoever needs to check it.
    readonly property color trailingColor: accent ? Theme.navyBright : Theme.secondary

    signal clicked()
    signal contextMenuRequested()

    implicitHeight: 30
    implicitWidth: 240

    // Selection and hover highlight.
    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        radius: 8
        color: row.selected ? Qt.rgba(Theme.navyBright.r, Theme.navyBright.g, Theme.navyBright.b, 0.16)
                            : Qt.rgba(Theme.primary.r, Theme.primary.g, Theme.primary.b, 0.05)
        opacity: row.selected || hover.hovered ? 1 : 0
    }
    Rectangle {
        objectName: "focusRing"
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        radius: 8
        color: "transparent"
        border.width: 2
        border.color: Theme.navyBright
        visible: row.cursor
    }

    // While scanning: the group's tint behind the row, with a highlight sweeping across.
    Rectangle {
        objectName: "scanHighlight"
        x: content.x - 6
        width: content.width + 12
        y: 1
        height: parent.height - 2
        radius: 7
        color: Qt.rgba(row.tint.r, row.tint.g, row.tint.b, 0.16)
        opacity: row.scanning ? 1 : 0
        visible: opacity > 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(300)
                easing.type: Easing.InOutQuad
            }
        }

        Shimmer {
            anchors.fill: parent
            active: row.scanning
            radius: 7
        }
    }

    RowLayout {
        id: content
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 18
        anchors.rightMargin: 18
        anchors.verticalCenter: parent.verticalCenter
        spacing: 10

        IconTile {
            symbol: row.symbol
            tint: row.tint
            size: 22
            active: row.active
            pulsing: row.scanning
        }

        Label {
            objectName: "titleLabel"
            text: row.title
            color: row.dimTitle ? Theme.secondary : Theme.primary
            font.pixelSize: Theme.body
            elide: Text.ElideRight
            maximumLineCount: 1
            Layout.fillWidth: true
        }

        // Spinner or trailing text, each fading in and out.
        Item {
            Layout.leftMargin: 4
            implicitWidth: row.scanning ? spinner.width : trailingLabel.implicitWidth
            implicitHeight: trailingLabel.implicitHeight

            Item {
                id: spinner
                objectName: "spinner"
                width: 14
                height: 14
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                opacity: row.scanning ? 1 : 0
                visible: opacity > 0

                Behavior on opacity {
                    NumberAnimation {
                        duration: Theme.duration(300)
                    }
                }

                Shape {
                    anchors.fill: parent
                    layer.enabled: true
                    layer.samples: 4
                    ShapePath {
                        strokeColor: Theme.secondary
                        strokeWidth: 2
                        fillColor: "transparent"
                        capStyle: ShapePath.RoundCap
                        PathAngleArc {
                            centerX: 7
                            centerY: 7
                            radiusX: 5.5
                            radiusY: 5.5
                            startAngle: 0
                            sweepAngle: 270
                        }
                    }
                }

                RotationAnimator on rotation {
                    from: 0
                    to: 360
                    duration: 900
                    loops: Animation.Infinite
                    running: spinner.visible && !Theme.reduceMotion
                }
            }

            NumericText {
                id: trailingLabel
                objectName: "trailingLabel"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: row.trailing
                color: row.trailingColor
                font.pixelSize: Theme.callout
                opacity: !row.scanning && row.trailing !== "" ? 1 : 0
                visible: opacity > 0

                Behavior on opacity {
                    NumberAnimation {
                        duration: Theme.duration(300)
                    }
                }
            }
        }
    }

    HoverHandler {
        id: hover
    }
    TapHandler {
        acceptedButtons: Qt.LeftButton
        onTapped: row.clicked()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.contextMenuRequested()
    }

    HelpTip {
        shown: hover.hovered && row.toolTip !== ""
        text: row.toolTip
        delay: 800
    }
}
