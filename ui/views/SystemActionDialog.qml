// Asks before a System Data action runs: the action's title, what it will do, and
// "Cancel" or "Continue". Continue emits `confirmed`; any way of closing ends it.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro

Dialog {
    id: root
    objectName: "systemActionDialog"

    property string heading
    property string message

    signal confirmed()

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: 420
    modal: true
    dim: true
    padding: 22
    closePolicy: Popup.CloseOnEscape

    background: Rectangle {
        radius: 16
        color: Theme.windowColor
        border.width: 1
        border.color: Theme.dark ? Qt.rgba(1, 1, 1, 0.12) : Qt.rgba(0, 0, 0, 0.12)
    }

    contentItem: ColumnLayout {
        spacing: 12

        Label {
            objectName: "systemActionTitle"
            text: root.heading
            color: Theme.primary
            font.pixelSize: Theme.title3
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Label {
            objectName: "systemActionMessage"
            text: root.message
            color: Theme.secondary
            font.pixelSize: Theme.callout
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 10
            Layout.fillWidth: true
            Layout.topMargin: 6

            Item {
                Layout.fillWidth: true
            }
            GlassButton {
                objectName: "systemActionCancel"
                text: qsTr("Cancel")
                onClicked: root.close()
            }
            GlassButton {
                objectName: "systemActionContinue"
                text: qsTr("Continue")
                foreground: Theme.red
                onClicked: {
                    root.confirmed();
                    root.close();
                }
            }
        }
    }
}
