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

    // The last component of a folder path, or the path itself for "/".
    function lastComponent(path) {
        const parts = path.split("/").filter(part => part !== "");
        return parts.length > 0 ? parts[parts.length - 1] : path;
    }

    RowLayout {
        spacing: 6

        Text {
            text: qsTr("Minimum Size")
            color: Theme.primary
            font.pixelSize: Theme.body
        }

        ComboBox {
            id: threshold
            objectName: "minimumSizePicker"

            readonly property real value: AppModel.largeThresholdGB

            model: [
                { text: qsTr("500 MB"), value: 0.5 },
                { text: qsTr("1 GB"), value: 1 },
                { text: qsTr("2 GB"), value: 2 },
                { text: qsTr("5 GB"), value: 5 },
                { text: qsTr("10 GB"), value: 10 }
            ]
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
        text: qsTr("Search Locations (%1)").arg(AppModel.extraRootPaths.length + 1)
        symbol: "folder.badge.plus"
        onClicked: locationsMenu.opened ? locationsMenu.close() : locationsMenu.popup(locations, 0, locations.height + 4)

        Menu {
            id: locationsMenu
            objectName: "searchLocationsMenu"

            MenuItem {
                objectName: "homeFolderEntry"
                text: qsTr("Home folder (always searched)")
                enabled: false
            }
            Instantiator {
                model: AppModel.extraRootPaths
                delegate: MenuItem {
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
            MenuItem {
                objectName: "addRootEntry"
                text: qsTr("Add Folder or Drive…")
                onTriggered: AppModel.addRoot()
            }
        }
    }

    GlassButton {
        objectName: "largeRescanButton"
        text: qsTr("Rescan")
        symbol: "arrow.clockwise"
        onClicked: AppModel.scan()
    }
}
