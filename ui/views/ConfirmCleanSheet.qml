// The last word before a clean: what will happen to the items about to go, grouped by
// how each is removed, what to watch out for, and the button that starts the clean.
// The window hosts it in a modal dialog while AppModel.showConfirm holds; Escape
// closes that dialog, Return confirms.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "confirmCleanSheet"

    readonly property var plan: AppModel.cleanPlan
    readonly property var commandNames: plan.commandNames || []
    readonly property bool showsWarnings: plan.adminCount > 0 || plan.largeCount > 0 || plan.reviewCount > 0

    implicitWidth: 520
    implicitHeight: column.implicitHeight + 48

    function cancel() {
        AppModel.showConfirm = false;
    }

    function confirm() {
        AppModel.showConfirm = false;
        AppModel.clean();
    }

    function escaped(text) {
        return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;");
    }

    // The window keeps both sheets alive; only the open one answers to Return.
    Shortcut {
        sequences: ["Return", "Enter"]
        enabled: AppModel.showConfirm && root.visible
        onActivated: root.confirm()
    }

    // One way of removing items: what, in the method's colour, and how much.
    component MethodRow: RowLayout {
        id: methodRow

        property string title
        property color tint
        property string symbol
        property int count
        property real size
        readonly property string valueText: qsTr("%Ln items · %1", "", count).arg(Format.byteCount(size))

        spacing: 8

        Symbol {
            name: methodRow.symbol
            color: methodRow.tint
            size: 15
        }
        Label {
            text: methodRow.title
            color: Theme.primary
            font.pixelSize: Theme.body
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        Label {
            text: methodRow.valueText
            color: Theme.secondary
            font.pixelSize: Theme.body
        }
    }

    // One line of the warning box.
    component WarningLine: RowLayout {
        id: warning

        property string text
        property string symbol

        spacing: 7

        Symbol {
            name: warning.symbol
            color: Theme.orange
            size: Theme.callout
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
        }
        Label {
            text: warning.text
            color: Theme.orange
            font.pixelSize: Theme.callout
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
    }

    ColumnLayout {
        id: column
        x: 24
        y: 24
        width: root.width - 48
        spacing: 16

        RowLayout {
            spacing: 12
            Layout.fillWidth: true

            IconTile {
                objectName: "confirmTile"
                symbol: "sparkles"
                tint: Theme.navyBright
                size: 44
            }

            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true

                Label {
                    objectName: "confirmScopeTitle"
                    visible: text !== ""
                    text: root.plan.scopeTitle || ""
                    color: Theme.secondary
                    font.pixelSize: Theme.headline
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "confirmTitle"
                    text: qsTr("Clean %Ln Items", "", root.plan.count)
                    color: Theme.primary
                    font.pixelSize: Theme.title2
                    font.weight: Font.DemiBold
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "confirmTotal"
                    text: qsTr("About %1 in total").arg(Format.byteCount(root.plan.total))
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                    Layout.fillWidth: true
                }
            }
        }

        ColumnLayout {
            spacing: 8
            Layout.fillWidth: true

            MethodRow {
                objectName: "confirmTrashRow"
                title: qsTr("Move to Trash (recoverable)")
                tint: Theme.blue
                symbol: "trash"
                count: root.plan.trashCount
                size: root.plan.trashSize
                Layout.fillWidth: true
            }
            MethodRow {
                objectName: "confirmPermanentRow"
                title: qsTr("Delete permanently (items already in Trash)")
                tint: Theme.red
                symbol: "trash.slash"
                count: root.plan.permanentCount
                size: root.plan.permanentSize
                Layout.fillWidth: true
            }
            RowLayout {
                objectName: "confirmCommandsRow"
                // The line as read, without the styling of the names.
                readonly property string plainText: qsTr("Run commands: ") + root.commandNames.join(", ")
                visible: root.commandNames.length > 0
                spacing: 8
                Layout.fillWidth: true

                Symbol {
                    name: "terminal"
                    color: Theme.orange
                    size: 15
                    Layout.alignment: Qt.AlignTop
                    Layout.topMargin: 1
                }
                Label {
                    text: root.escaped(qsTr("Run commands: ")) + "<font color=\"" + Theme.secondary + "\">"
                          + root.escaped(root.commandNames.join(", ")) + "</font>"
                    textFormat: Text.StyledText
                    color: Theme.primary
                    font.pixelSize: Theme.body
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
            }
        }

        Rectangle {
            objectName: "confirmWarnings"
            visible: root.showsWarnings
            radius: 10
            color: Theme.alpha(Theme.orange, 0.1)
            implicitHeight: warnings.implicitHeight + 24
            Layout.fillWidth: true

            ColumnLayout {
                id: warnings
                x: 12
                y: 12
                width: parent.width - 24
                spacing: 6

                WarningLine {
                    objectName: "warnAdmin"
                    visible: root.plan.adminCount > 0
                    text: qsTr("%Ln system items — macOS will ask for an administrator password once", "",
                               root.plan.adminCount)
                    symbol: "lock.fill"
                    Layout.fillWidth: true
                }
                WarningLine {
                    objectName: "warnLarge"
                    visible: root.plan.largeCount > 0
                    text: qsTr("%Ln large files selected — make sure you don't need them", "", root.plan.largeCount)
                    symbol: "exclamationmark.triangle.fill"
                    Layout.fillWidth: true
                }
                WarningLine {
                    objectName: "warnReview"
                    visible: root.plan.reviewCount > 0
                    text: qsTr("%Ln items from review categories (Downloads/Backups/Archives)", "",
                               root.plan.reviewCount)
                    symbol: "exclamationmark.triangle.fill"
                    Layout.fillWidth: true
                }
            }
        }

        Label {
            objectName: "confirmFootnote"
            text: qsTr("Quit browsers and apps whose caches you're cleaning first · Items moved to the Trash keep using space until the Trash is emptied.")
            color: Theme.secondary
            font.pixelSize: Theme.caption
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }

        RowLayout {
            spacing: 10
            Layout.fillWidth: true

            Item {
                Layout.fillWidth: true
            }
            GlassButton {
                objectName: "confirmCancel"
                text: qsTr("Cancel")
                onClicked: root.cancel()
            }
            ProminentButton {
                objectName: "confirmClean"
                text: qsTr("Clean Now")
                onClicked: root.confirm()
            }
        }
    }
}
