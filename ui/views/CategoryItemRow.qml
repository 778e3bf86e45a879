// One item of the category table: its check box, icon, name with a note or location
// line and removal badge, size and date. Clicks go to the table, which keeps the
// row highlight; only the check box changes what gets cleaned.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: row
    objectName: "itemRow"

    required property int index
    required property string key
    required property string name
    required property string path
    required property string location
    required property real size
    required property var modified
    required property bool hasURL
    required property string method
    required property bool admin
    required property string note
    required property bool checked

    // Set by the table.
    property real nameWidth: 240
    property real sizeWidth: 90
    property real dateWidth: 130
    property real columnSpacing: 12
    property bool highlighted: false
    property bool busy: false
    property bool hideLocation: false

    signal pressed(int modifiers)
    // At the pointer, in this row's coordinates.
    signal contextMenuRequested(real x, real y)
    signal activated()

    readonly property bool noteShown: note !== ""
    readonly property bool locationShown: !noteShown && !hideLocation && location !== ""
    readonly property string sizeText: size >= 0 ? Format.byteCount(size) : "—"
    readonly property string dateText: Format.relativeDate(modified)

    implicitHeight: noteShown || locationShown ? 40 : 30

    Rectangle {
        objectName: "rowHighlight"
        anchors.fill: parent
        radius: 6
        visible: row.highlighted
        color: Theme.alpha(Theme.navyBright, 0.16)
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onPressed: mouse => {
            if (mouse.button === Qt.LeftButton)
                row.pressed(mouse.modifiers);
        }
        onClicked: mouse => {
            if (mouse.button === Qt.RightButton)
                row.contextMenuRequested(mouse.x, mouse.y);
        }
        onDoubleClicked: mouse => {
            if (mouse.button === Qt.LeftButton)
                row.activated();
        }
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        spacing: row.columnSpacing

        AbstractButton {
            id: check
            objectName: "itemCheck"
            Layout.preferredWidth: 22
            Layout.preferredHeight: 22
            enabled: !row.busy
            checked: row.checked
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            onClicked: AppModel.setItemSelected(row.key, !row.checked)

            contentItem: Item {}
            background: Rectangle {
                anchors.centerIn: parent
                width: 15
                height: 15
                radius: 4
                opacity: check.enabled ? 1 : 0.45
                color: check.checked ? Theme.navyBright : Theme.alpha(Theme.windowColor, 0.9)
                border.width: 1
                border.color: check.checked ? Qt.darker(Theme.navyBright, 1.1)
                                            : check.hovered ? Theme.secondary : Theme.tertiary

                Symbol {
                    anchors.centerIn: parent
                    visible: check.checked
                    name: "checkmark"
                    color: "white"
                    size: 10
                }
            }
        }

        Item {
            id: nameCell
            objectName: "nameCell"
            Layout.preferredWidth: row.nameWidth
            Layout.fillHeight: true

            readonly property string help: row.hasURL ? row.path : row.location

            HoverHandler {
                id: nameHover
            }
            HelpTip {
                shown: nameHover.hovered && parent.help !== ""
                text: parent.help
                delay: 800
            }

            RowLayout {
                anchors.fill: parent
                spacing: 8

                ItemIcon {
                    path: row.path
                    hasURL: row.hasURL
                    Layout.alignment: Qt.AlignVCenter
                }

                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true
                    Layout.alignment: Qt.AlignVCenter

                    Text {
                        objectName: "itemName"
                        text: row.name
                        color: Theme.primary
                        font.pixelSize: Theme.body
                        elide: Text.ElideMiddle
                        maximumLineCount: 1
                        Layout.fillWidth: true
                    }
                    Text {
                        objectName: "itemNote"
                        visible: row.noteShown
                        text: row.note
                        color: Theme.orange
                        font.pixelSize: Theme.caption
                        elide: Text.ElideRight
                        maximumLineCount: 1
                        Layout.fillWidth: true
                    }
                    Text {
                        objectName: "itemLocation"
                        visible: row.locationShown
                        text: row.location
                        color: Theme.secondary
                        font.pixelSize: Theme.caption
                        elide: Text.ElideMiddle
                        maximumLineCount: 1
                        Layout.fillWidth: true
                    }
                }

                MethodBadge {
                    objectName: "methodBadge"
                    method: row.method
                    admin: row.admin
                    Layout.leftMargin: 4
                    Layout.alignment: Qt.AlignVCenter
                }
            }
        }

        Text {
            objectName: "itemSize"
            text: row.sizeText
            color: Theme.primary
            font.pixelSize: Theme.body
            horizontalAlignment: Text.AlignRight
            elide: Text.ElideLeft
            Layout.preferredWidth: row.sizeWidth
        }

        Text {
            objectName: "itemModified"
            text: row.dateText
            color: Theme.secondary
            font.pixelSize: Theme.body
            elide: Text.ElideRight
            Layout.preferredWidth: row.dateWidth
        }
    }
}
