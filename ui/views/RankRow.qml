// One category of the space ranking: its check (all, some or none of its items
// ticked), and a button that opens the category, showing its tile, title, total and
// a bar of its size relative to the largest ranked category.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

RowLayout {
    id: root

    required property string categoryId
    required property string title
    required property string symbol
    required property string group
    required property real total
    required property real fraction
    required property int count
    required property int checked

    readonly property string mark: checked === 0 ? "off" : checked === count ? "on" : "partial"
    readonly property color tint: Theme.groupTint(group)
    readonly property bool hovering: openButton.hovered
    readonly property string sizeText: Format.byteCount(total)
    readonly property real barWidth: bar.width
    readonly property real fillWidth: fill.width

    // The list's enter and leave transitions move the row by this many heights.
    property real slide: 0

    signal open(string categoryId)

    spacing: 12
    transform: Translate { y: root.slide * root.height }

    SelectionCheck {
        objectName: "rankCheck"
        mark: root.mark
        onToggle: AppModel.setAll(root.categoryId, root.checked !== root.count)
    }

    AbstractButton {
        id: openButton
        objectName: "rankOpen"
        Layout.fillWidth: true
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        topPadding: 6
        bottomPadding: 6
        leftPadding: 8
        rightPadding: 8

        onClicked: root.open(root.categoryId)

        background: Rectangle {
            radius: 12
            color: openButton.hovered ? Theme.alpha(Theme.primary, 0.06) : "transparent"

            FocusRing {
                anchors.margins: 0
                shown: openButton.visualFocus
            }
        }

        contentItem: RowLayout {
            spacing: 12

            IconTile {
                symbol: root.symbol
                tint: root.tint
                size: 30
                active: true
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 5

                RowLayout {
                    Layout.fillWidth: true
                    spacing: 0

                    Label {
                        objectName: "rankTitle"
                        Layout.fillWidth: true
                        Layout.alignment: Qt.AlignBaseline
                        text: root.title
                        color: Theme.primary
                        font.pixelSize: Theme.body
                        font.weight: Font.Medium
                        elide: Text.ElideRight
                        maximumLineCount: 1
                    }
                    Item {
                        implicitWidth: 8
                    }
                    NumericLabel {
                        objectName: "rankSize"
                        Layout.alignment: Qt.AlignBaseline
                        text: root.sizeText
                    }
                }

                Item {
                    id: bar
                    Layout.fillWidth: true
                    implicitHeight: 6

                    Rectangle {
                        anchors.fill: parent
                        radius: height / 2
                        color: Theme.alpha(Theme.primary, 0.06)
                    }

                    Rectangle {
                        id: fill
                        objectName: "rankBar"
                        property real shownFraction: root.fraction
                        Behavior on shownFraction {
                            NumberAnimation { duration: Theme.duration(500); easing.type: Easing.OutCubic }
                        }
                        height: parent.height
                        width: Math.max(shownFraction * bar.width, 6)
                        radius: height / 2
                        gradient: Gradient {
                            orientation: Gradient.Horizontal
                            GradientStop { position: 0; color: Qt.lighter(root.tint, 1.15) }
                            GradientStop { position: 1; color: root.tint }
                        }
                    }
                }
            }
        }
    }

    // The total in body size, semibold, cross-fading when it changes.
    component NumericLabel: Label {
        id: numeric
        color: Theme.primary
        font.pixelSize: Theme.body
        font.weight: Font.DemiBold
        onTextChanged: if (!Theme.reduceMotion) flash.restart()
        NumberAnimation {
            id: flash
            target: numeric
            property: "opacity"
            from: 0.35
            to: 1
            duration: 250
        }
    }
}
