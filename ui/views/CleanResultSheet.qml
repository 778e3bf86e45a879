// What a clean did: how much was freed and how, the offer to delete at once what went
// to the Trash, and the items that could not be cleaned with the reason for each. The
// window hosts it in a modal dialog while AppModel.showResult holds; it updates in
// place when the trashed items are deleted.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "cleanResultSheet"

    readonly property var result: AppModel.lastResultInfo
    readonly property bool present: result.present === true
    readonly property var failures: present ? result.failures : []
    readonly property bool failed: failures.length > 0

    implicitWidth: 560
    implicitHeight: column.implicitHeight + 48

    function done() {
        AppModel.showResult = false;
    }

    Shortcut {
        sequences: ["Return", "Enter"]
        enabled: AppModel.showResult && root.visible
        onActivated: root.done()
    }

    ColumnLayout {
        id: column
        x: 24
        y: 24
        width: root.width - 48
        spacing: 16

        RowLayout {
            objectName: "resultHeader"
            visible: root.present
            spacing: 12
            Layout.fillWidth: true

            Symbol {
                objectName: "resultSymbol"
                name: root.failed ? "exclamationmark.triangle.fill" : "checkmark.seal.fill"
                color: root.failed ? Theme.orange : Theme.green
                size: 40
            }

            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true

                Label {
                    objectName: "resultTitle"
                    text: qsTr("Cleaned %Ln Items", "", root.result.succeededCount || 0)
                    color: Theme.primary
                    font.pixelSize: Theme.title2
                    font.weight: Font.DemiBold
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "resultBytes"
                    text: qsTr("%1 moved to Trash · %2 deleted").arg(Format.byteCount(root.result.movedToTrashBytes || 0))
                                                               .arg(Format.byteCount(root.result.deletedBytes || 0))
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "resultAvailable"
                    text: qsTr("Now %1 available (+%2)").arg(Format.byteCount(AppModel.diskAvailable))
                                                       .arg(Format.byteCount(root.result.gain || 0))
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    Layout.fillWidth: true
                }
            }
        }

        Card {
            objectName: "trashCard"
            visible: root.present && root.result.trashedCount > 0
            radius: 22
            padding: 18
            Layout.fillWidth: true

            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                spacing: 8

                Label {
                    objectName: "trashCardText"
                    text: qsTr("Items in the Trash still use space. Delete them now to free it immediately (only the items just moved — nothing else in your Trash is touched).")
                    color: Theme.primary
                    font.pixelSize: Theme.callout
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
                GlassButton {
                    objectName: "purgeButton"
                    text: qsTr("Delete %1 from Trash").arg(Format.byteCount(root.result.movedToTrashBytes || 0))
                    symbol: "trash.slash"
                    foreground: Theme.red
                    onClicked: AppModel.purgeLastTrashed()
                }
            }
        }

        RowLayout {
            objectName: "purgeMessage"
            readonly property string text: AppModel.purgeMessage
            visible: root.present && text !== ""
            spacing: 7
            Layout.fillWidth: true

            Symbol {
                name: "checkmark.circle.fill"
                color: Theme.green
                size: Theme.body
            }
            Label {
                text: AppModel.purgeMessage
                color: Theme.green
                font.pixelSize: Theme.body
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
        }

        ColumnLayout {
            objectName: "failureSection"
            visible: root.failed
            spacing: 8
            Layout.fillWidth: true

            Label {
                objectName: "failuresTitle"
                text: qsTr("%Ln Items Could Not Be Cleaned", "", root.failures.length)
                color: Theme.primary
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                Layout.fillWidth: true
            }

            Rectangle {
                radius: 10
                color: Theme.alpha(Theme.primary, 0.04)
                border.width: 1
                border.color: Theme.alpha(Theme.primary, 0.08)
                Layout.fillWidth: true
                Layout.preferredHeight: Math.max(140, Math.min(240, failureList.contentHeight + 16))

                ListView {
                    id: failureList
                    objectName: "failureList"
                    anchors.fill: parent
                    anchors.margins: 8
                    clip: true
                    spacing: 8
                    model: root.failures
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}

                    delegate: ColumnLayout {
                        id: failure
                        required property var modelData
                        required property int index
                        objectName: "failure_" + index
                        width: ListView.view.width
                        spacing: 2

                        Label {
                            objectName: "failureName"
                            text: failure.modelData.name
                            color: Theme.primary
                            font.pixelSize: Theme.body
                            elide: Text.ElideRight
                            maximumLineCount: 1
                            Layout.fillWidth: true
                        }
                        Label {
                            objectName: "failureReason"
                            text: failure.modelData.reason
                            color: Theme.secondary
                            font.pixelSize: Theme.caption
                            wrapMode: Text.Wrap
                            Layout.fillWidth: true
                        }
                        Label {
                            objectName: "failurePath"
                            text: failure.modelData.path
                            color: Theme.tertiary
                            font.pixelSize: Theme.caption2
                            elide: Text.ElideMiddle
                            maximumLineCount: 1
                            Layout.fillWidth: true
                        }
                    }
                }
            }

            Label {
                objectName: "fullDiskAccessNote"
                visible: !AppModel.hasFullDiskAccess
                text: qsTr("Some items may have failed because Full Disk Access hasn't been granted.")
                color: Theme.orange
                font.pixelSize: Theme.caption
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
        }

        RowLayout {
            Layout.fillWidth: true

            Item {
                Layout.fillWidth: true
            }
            ProminentButton {
                objectName: "resultDone"
                text: qsTr("Done")
                onClicked: root.done()
            }
        }
    }
}
