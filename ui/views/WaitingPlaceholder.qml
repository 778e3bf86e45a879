// What a result card shows while it has nothing to list: a small spinner and a line
// saying that results come in as categories finish, centred in at least 120 pixels.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Item {
    id: root

    implicitWidth: row.implicitWidth
    implicitHeight: Math.max(120, row.implicitHeight)

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 10

        BusyIndicator {
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: 18
            implicitHeight: 18
            padding: 0
            running: root.visible
        }

        Label {
            objectName: "waitingText"
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Results appear here as each category finishes.")
            color: Theme.secondary
            font.pixelSize: Theme.body
        }
    }
}
