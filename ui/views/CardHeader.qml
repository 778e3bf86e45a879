// The title of a result card: its symbol and title in title-3 size, bold.
import QtQuick
import QtQuick.Controls.Basic
import Veltro

Row {
    id: root

    property string title
    property string symbol

    spacing: 8

    Symbol {
        anchors.verticalCenter: parent.verticalCenter
        name: root.symbol
        color: Theme.primary
        size: Theme.title3
    }

    Label {
        objectName: "cardTitle"
        anchors.verticalCenter: parent.verticalCenter
        text: root.title
        color: Theme.primary
        font.pixelSize: Theme.title3
        font.weight: Font.Bold
    }
}
