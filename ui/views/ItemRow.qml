// One of the largest items: its check, the file's icon, name, category and location,
// its size, and a reveal button that shows while the pointer is over the row.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root

    required property string key
    required property string name
    required property string path
    required property string location
    required property real size
    required property bool hasURL
    required property string categoryTitle
    required property string tint
    required property bool checked

    readonly property bool hovering: hover.hovered
    readonly property string sizeText: size >= 0 ? Format.byteCount(size) : "—"

    implicitHeight: content.implicitHeight + 12

    HoverHandler {
        id: hover
    }

    Rectangle {
        anchors.fill: parent
        radius: 12
        color: root.hovering ? Theme.alpha(Theme.primary, 0.06) : "transparent"
    }

    RowLayout {
        id: content
        anchors.fill: parent
        anchors.topMargin: 6
        anchors.bottomMargin: 6
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 12

        SelectionCheck {
            objectName: "itemCheck"
            mark: root.checked ? "on" : "off"
            onToggle: AppModel.setItemSelected(root.key, !root.checked)
        }

        FileIcon {
            objectName: "itemIcon"
            visible: root.hasURL
            path: root.hasURL ? root.path : ""
            size: 28
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            Label {
                objectName: "itemName"
                Layout.fillWidth: true
                text: root.name
                color: Theme.primary
                font.pixelSize: Theme.body
                font.weight: Font.Medium
                elide: Text.ElideMiddle
                maximumLineCount: 1
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: 6

                Rectangle {
                    objectName: "itemDot"
                    visible: root.categoryTitle !== ""
                    implicitWidth: 6
                    implicitHeight: 6
                    radius: 3
                    color: root.tint !== "" ? root.tint : "transparent"
                }
                Label {
                    objectName: "itemCategory"
                    visible: root.categoryTitle !== ""
                    text: root.categoryTitle
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    maximumLineCount: 1
                }
                Label {
                    visible: root.categoryTitle !== ""
                    text: "·"
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                }
                Label {
                    objectName: "itemLocation"
                    Layout.fillWidth: true
                    text: root.location
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                    elide: Text.ElideMiddle
                    maximumLineCount: 1
                }
            }
        }

        Label {
            objectName: "itemSize"
            text: root.sizeText
            color: Theme.primary
            font.pixelSize: Theme.body
            font.weight: Font.DemiBold
        }

        IconButton {
            objectName: "itemReveal"
            symbol: "magnifyingglass.circle.fill"
            color: Theme.secondary
            size: Theme.title3
            toolTip: qsTr("Show in Finder")
            opacity: root.hovering || visualFocus ? 1 : 0
            onClicked: if (root.hasURL) Platform.revealInFileViewer(root.path)
        }
    }
}
