// Shown while the application lacks Full Disk Access: what is skipped without it,
// where to grant it, and a way to check again without relaunching.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Card {
    id: root

    radius: 22
    padding: 18

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 14

        IconTile {
            Layout.alignment: Qt.AlignTop
            symbol: "lock.shield.fill"
            tint: Theme.orange
            size: 34
            active: true
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop
            spacing: 6

            Label {
                objectName: "accessTitle"
                Layout.fillWidth: true
                text: qsTr("Grant Full Disk Access for a Complete Scan")
                color: Theme.primary
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
            }
            Label {
                objectName: "accessText"
                Layout.fillWidth: true
                text: qsTr("System Settings → Privacy & Security → Full Disk Access → turn on Veltro, then relaunch. Without it, App Store app caches, Mail downloads and iOS backups are skipped.")
                color: Theme.secondary
                font.pixelSize: Theme.callout
                wrapMode: Text.Wrap
            }
            RowLayout {
                Layout.topMargin: 2
                spacing: 8

                ProminentButton {
                    objectName: "openSettingsButton"
                    text: qsTr("Open System Settings")
                    tint: Theme.orange
                    onClicked: Platform.openUrl(Platform.fullDiskAccessHelpUrl)
                }
                GlassButton {
                    objectName: "checkAgainButton"
                    text: qsTr("Check Again")
                    onClicked: AppModel.refreshEnvironment()
                }
            }
        }
    }
}
