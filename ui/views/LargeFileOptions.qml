// The large-file category's options: the size threshold, the folders searched
// besides home, and a rescan that applies them. Changing an option only changes the
// model; it takes effect at the next scan.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

RowLayout {
    id: root
    objectName: "largeFileOptions"

    spacing: 10

    // Short of room, the threshold and the search locations fold into one "Options"
    // menu; Rescan always stays a button of its own.
    property bool compact: false
    // The width the options take unfolded and folded, whichever is shown.
    readonly property real fullWidth: thresholdRow.implicitWidth + locations.implicitWidth
                                      + rescan.implicitWidth + 2 * spacing
    readonly property real compactWidth: optionsButton.implicitWidth + rescan.implicitWidth + spacing

    readonly property var choices: [
        { text: qsTr("500 MB"), value: 0.5 },
        { text: qsTr("1 GB"), value: 1 },
        { text: qsTr("2 GB"), value: 2 },
        { text: qsTr("5 GB"), value: 5 },
        { text: qsTr("10 GB"), value: 10 }
    ]

    // The last component of a folder path, or the path itself for "/".
    function lastComponent(path) {
        const parts = path.split("/").filter(part => part !== "");
        return parts.length > 0 ? parts[parts.length - 1] : path;
    }

    RowLayout {
        id: thresholdRow
        spacing: 6
        visible: !root.compact

        Text {
            text: qsTr("Minimum Size")
            color: Theme.primary
            font.pixelSize: Theme.body
        }

        ComboBox {
            id: threshold
            objectName: "minimumSizePicker"

            readonly property real value: AppModel.largeThresholdGB

            model: root.choices
            textRole: "text"
            valueRole: "value"
            // Read `count` so that the index is found again once the choices are in.
            currentIndex: count > 0 ? indexOfValue(value) : -1
            implicitHeight: 32
            // As wide as the widest choice, whichever is selected.
            implicitWidth: leftPadding + rightPadding
                           + Math.ceil(Math.max(...model.map(choice => metrics.advanceWidth(choice.text))))
            font.pixelSize: Theme.body
            leftPadding: 14
            rightPadding: 30
            hoverEnabled: true
            opacity: enabled ? 1 : 0.45
            onActivated: index => AppModel.largeThresholdGB = model[index].value

            FontMetrics {
                id: metrics
                font: threshold.font
            }

            contentItem: Text {
                text: threshold.displayText
                font: threshold.font
                color: Theme.primary
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
            }
            indicator: Symbol {
                x: threshold.width - width - 12
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron.down"
                color: Theme.secondary
                size: 10
            }
            background: Rectangle {
                implicitWidth: 60
                radius: height / 2
                color: Theme.alpha(Theme.windowColor, threshold.hovered ? 0.85 : 0.7)
                border.width: 1
                border.color: Theme.glassOutline
            }
        }
    }

    GlassButton {
        id: locations
        objectName: "searchLocationsButton"
        visible: !root.compact
        Layout.minimumWidth: implicitWidth
        text: qsTr("Search Locations (%1)").arg(AppModel.extraRootPaths.length + 1)
        symbol: "folder.badge.plus"
        onClicked: locationsMenu.opened ? locationsMenu.close() : locationsMenu.popup(locations, 0, locations.height + 4)

        PopupMenu {
            id: locationsMenu
            objectName: "searchLocationsMenu"

            PopupMenuItem {
                objectName: "homeFolderEntry"
                text: qsTr("Home folder (always searched)")
                enabled: false
            }
            Instantiator {
                model: AppModel.extraRootPaths
                delegate: PopupMenuItem {
                    required property int index
                    required property string modelData
                    objectName: "removeRoot_" + index
                    text: qsTr("Remove %1").arg(root.lastComponent(modelData))
                    onTriggered: AppModel.removeRootPath(modelData)
                }
                onObjectAdded: (index, object) => locationsMenu.insertItem(index + 1, object)
                onObjectRemoved: (index, object) => locationsMenu.removeItem(object)
            }
            MenuSeparator {}
            PopupMenuItem {
                objectName: "addRootEntry"
                text: qsTr("Add Folder or Drive…")
                onTriggered: AppModel.addRoot()
            }
        }
    }

    GlassButton {
        id: optionsButton
        objectName: "largeOptionsButton"
        visible: root.compact
        Layout.minimumWidth: implicitWidth
        text: qsTr("Options")
        symbol: "chevron.down"
        onClicked: optionsMenu.opened ? optionsMenu.close() : optionsMenu.popup(optionsButton, 0, optionsButton.height + 4)

        PopupMenu {
            id: optionsMenu
            objectName: "largeOptionsMenu"

            PopupMenu {
                id: thresholdMenu
                title: qsTr("Minimum Size")
                Instantiator {
                    model: root.choices
                    delegate: PopupMenuItem {
                        required property var modelData
                        text: modelData.text
                        checkable: true
                        checked: AppModel.largeThresholdGB === modelData.value
                        onTriggered: AppModel.largeThresholdGB = modelData.value
                    }
                    onObjectAdded: (index, object) => thresholdMenu.insertItem(index, object)
                    onObjectRemoved: (index, object) => thresholdMenu.removeItem(object)
                }
            }
            MenuSeparator {}
            PopupMenuItem {
                text: qsTr("Home folder (always searched)")
                enabled: false
            }
            Instantiator {
                model: AppModel.extraRootPaths
                delegate: PopupMenuItem {
                    required property string modelData
                    text: qsTr("Remove %1").arg(root.lastComponent(modelData))
                    onTriggered: AppModel.removeRootPath(modelData)
                }
                onObjectAdded: (index, object) => optionsMenu.insertItem(index + 3, object)
                onObjectRemoved: (index, object) => optionsMenu.removeItem(object)
            }
            MenuSeparator {}
            PopupMenuItem {
                objectName: "compactAddRootEntry"
                text: qsTr("Add Folder or Drive…")
                onTriggered: AppModel.addRoot()
            }
        }
    }

    GlassButton {
        id: rescan
        Layout.minimumWidth: implicitWidth
        objectName: "largeRescanButton"
        text: qsTr("Rescan")
        symbol: "arrow.clockwise"
        onClicked: AppModel.scan()
    }
}
