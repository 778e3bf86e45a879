// A summary of the last clean: how many items it removed, what went to the Trash,
// what was deleted outright and, when some items could not be removed, how many.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro

Card {
    id: root

    // The model's lastResultInfo: succeededCount, movedToTrashBytes, deletedBytes,
    // failures.
    property var result: ({})

    readonly property int failureCount: result.failures !== undefined ? result.failures.length : 0
    readonly property string title: qsTr("Last Cleanup: %Ln Items", "", result.succeededCount || 0)
    readonly property string detail: {
        let text = qsTr("%1 moved to Trash · %2 deleted").arg(Format.byteCount(result.movedToTrashBytes || 0))
                                                         .arg(Format.byteCount(result.deletedBytes || 0));
        if (failureCount > 0)
            text += qsTr(" · %1 failed").arg(Format.integer(failureCount));
        return text;
    }

    radius: 22
    padding: 18

    RowLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 14

        IconTile {
            symbol: "checkmark.seal.fill"
            tint: Theme.green
            size: 34
            active: true
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Label {
                objectName: "lastResultTitle"
                Layout.fillWidth: true
                text: root.title
                color: Theme.primary
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Label {
                objectName: "lastResultDetail"
                Layout.fillWidth: true
                text: root.detail
                color: Theme.secondary
                font.pixelSize: Theme.callout
                elide: Text.ElideRight
            }
        }
    }
}
