// The sidebar's foot: one glass button asking for a coffee, which opens the donation
// section of the product website in the browser.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro

AbstractButton {
    id: root
    objectName: "supportFooter"

    readonly property url link: Platform.coffee
    readonly property string helpText: qsTr("Opens %1 in your browser").arg(Platform.websiteHost)

    leftPadding: 12
    rightPadding: 12
    topPadding: 9
    bottomPadding: 9
    hoverEnabled: true

    contentItem: RowLayout {
        spacing: 10

        Symbol {
            id: cup
            objectName: "supportFooterCup"
            name: "cup.and.saucer.fill"
            color: Theme.gold
            size: 14
            // A short bounce whenever the pointer enters or leaves.
            SequentialAnimation {
                id: bounce
                NumberAnimation { target: cup; property: "scale"; to: 1.25; duration: Theme.duration(120); easing.type: Easing.OutQuad }
                NumberAnimation { target: cup; property: "scale"; to: 1; duration: Theme.duration(260); easing.type: Easing.OutBack; easing.overshoot: 2 }
            }
        }

        ColumnLayout {
            spacing: 1
            Text {
                text: qsTr("Buy Me a Coffee")
                color: Theme.primary
                font.pixelSize: Theme.callout
                font.weight: Font.DemiBold
            }
            Text {
                text: qsTr("Keep Veltro free")
                color: Theme.secondary
                font.pixelSize: Theme.caption2
            }
        }

        Item {
            Layout.fillWidth: true
        }

        Symbol {
            name: "arrow.up.right"
            color: Theme.secondary
            size: Theme.caption2
        }
    }

    background: Rectangle {
        radius: 14
        color: Theme.alpha(Theme.windowColor, root.down ? 0.95 : root.hovered ? 0.85 : 0.7)
        border.width: 1
        border.color: Theme.glassOutline
    }

    onHoveredChanged: if (!Theme.reduceMotion) bounce.restart()
    onClicked: Platform.openUrl(link)

    HelpTip {
        shown: parent.hovered
        text: parent.helpText
    }
}
