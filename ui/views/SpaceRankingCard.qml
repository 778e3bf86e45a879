// "Where Your Space Goes": the largest categories found so far, each with its check
// and a bar of its share; rows join, leave and reorder live as categories finish.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Card {
    id: root

    readonly property bool reduceMotion: Theme.reduceMotion
    readonly property alias rowCount: list.count
    // The shown rows' category ids, top to bottom.
    readonly property var shownIds: {
        rows.count;
        const ids = [];
        for (let i = 0; i < rows.count; ++i)
            ids.push(rows.get(i).categoryId);
        return ids;
    }

    signal routeRequested(string kind, string categoryId)

    radius: 26
    padding: 22

    KeyedListModel {
        id: rows
        key: "categoryId"
    }

    function refresh() {
        rows.sync(AppModel.ranking.map(row => ({
            categoryId: row.categoryId,
            title: row.title,
            symbol: row.symbol,
            group: row.group,
            total: row.total,
            fraction: row.fraction,
            count: row.count,
            checked: row.checked
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
            title: qsTr("Where Your Space Goes")
            symbol: "chart.bar.xaxis"
        }

        WaitingPlaceholder {
            objectName: "rankingPlaceholder"
            Layout.fillWidth: true
            visible: rows.count === 0
        }

        ListView {
            id: list
            objectName: "rankingList"
            Layout.fillWidth: true
            implicitHeight: contentHeight
            visible: rows.count > 0
            interactive: false
            clip: true
            spacing: 4
            model: rows

            delegate: RankRow {
                objectName: "rankRow_" + categoryId
                width: ListView.view.width
                onOpen: which => root.routeRequested("category", which)
            }

            // Rows slide down from their top edge while fading in, and back up while
            // fading out; with reduce motion they only fade.
            add: Transition {
                NumberAnimation { property: "opacity"; from: 0; to: 1; duration: root.reduceMotion ? 200 : 450; easing.type: Easing.InOutQuad }
                NumberAnimation { property: "slide"; from: root.reduceMotion ? 0 : -1; to: 0; duration: 450; easing.type: Easing.OutCubic }
            }
            remove: Transition {
                NumberAnimation { property: "opacity"; to: 0; duration: root.reduceMotion ? 200 : 450; easing.type: Easing.InOutQuad }
                NumberAnimation { property: "slide"; to: root.reduceMotion ? 0 : -1; duration: 450; easing.type: Easing.OutCubic }
            }
            displaced: Transition {
                NumberAnimation { property: "y"; duration: root.reduceMotion ? 0 : 450; easing.type: Easing.OutCubic }
                NumberAnimation { property: "opacity"; to: 1; duration: 0 }
            }
            move: Transition {
                NumberAnimation { property: "y"; duration: root.reduceMotion ? 0 : 450; easing.type: Easing.OutCubic }
            }
        }
    }
}
