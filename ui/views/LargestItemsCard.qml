// "Largest Items": the biggest single files and folders found so far that can be
// removed item by item, each with its own check and a reveal button.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Card {
    id: root

    readonly property bool reduceMotion: Theme.reduceMotion
    readonly property alias rowCount: list.count
    // The shown rows' item keys, top to bottom.
    readonly property var shownKeys: {
        rows.count;
        const keys = [];
        for (let i = 0; i < rows.count; ++i)
            keys.push(rows.get(i).key);
        return keys;
    }

    radius: 26
    padding: 22

    KeyedListModel {
        id: rows
        key: "key"
    }

    function refresh() {
        rows.sync(AppModel.largestItems.map(item => ({
            key: item.key,
            name: item.name,
            path: item.path,
            location: item.location,
            size: item.size,
            hasURL: item.hasURL,
            categoryTitle: item.categoryTitle !== undefined ? item.categoryTitle : "",
            tint: item.tint !== undefined ? String(item.tint) : "",
            checked: item.checked
        })));
    }

    Component.onCompleted: refresh()
    Connections {
        target: AppModel
        function onResultsChanged() {
            root.refresh();
        }
    }

    ColumnLayout {
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 14

        CardHeader {
            title: qsTr("Largest Items")
            symbol: "square.stack.3d.down.right"
        }

        WaitingPlaceholder {
            objectName: "largestPlaceholder"
            Layout.fillWidth: true
            visible: rows.count === 0
        }

        ListView {
            id: list
            objectName: "largestList"
            Layout.fillWidth: true
            implicitHeight: contentHeight
            visible: rows.count > 0
            interactive: false
            clip: true
            spacing: 2
            model: rows

            delegate: ItemRow {
                objectName: "itemRow"
                width: ListView.view.width
            }

            add: Transition {
                NumberAnimation { property: "opacity"; from: 0; to: 1; duration: root.reduceMotion ? 200 : 400; easing.type: Easing.InOutQuad }
            }
            remove: Transition {
                NumberAnimation { property: "opacity"; to: 0; duration: root.reduceMotion ? 200 : 400; easing.type: Easing.InOutQuad }
            }
            displaced: Transition {
                NumberAnimation { property: "y"; duration: root.reduceMotion ? 0 : 400; easing.type: Easing.OutCubic }
                NumberAnimation { property: "opacity"; to: 1; duration: 0 }
            }
            move: Transition {
                NumberAnimation { property: "y"; duration: root.reduceMotion ? 0 : 400; easing.type: Easing.OutCubic }
            }
        }
    }
}
