// A centred panel standing in for content that is not there: a large symbol, a
// title, a line of description, and optional actions below.
import QtQuick
import QtQuick.Layouts
import Veltro

Item {
    id: root

    property string title
    property string symbol
    property string description
    default property alias actions: actionRow.data

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(implicitWidth, root.width - 40)
        spacing: 10

        Symbol {
            objectName: "emptyStateSymbol"
            name: root.symbol
            color: Theme.tertiary
            size: 46
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: 4
        }
        Text {
            objectName: "emptyStateTitle"
            text: root.title
            color: Theme.primary
            font.pixelSize: Theme.title2
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            Layout.alignment: Qt.AlignHCenter
        }
        Text {
            objectName: "emptyStateDescription"
            text: root.description
            color: Theme.secondary
            font.pixelSize: Theme.body
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            Layout.maximumWidth: 420
            Layout.alignment: Qt.AlignHCenter
        }
        Row {
            id: actionRow
            spacing: 10
            visible: children.length > 0
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 8
        }
    }
}
