// The search field that filters the category table: a glass capsule with a
// magnifying glass, the prompt "Filter" and a clear button while it holds text.
import QtQuick
import QtQuick.Controls
import Veltro

TextField {
    id: root
    objectName: "filterField"

    placeholderText: qsTr("Filter")
    placeholderTextColor: Theme.tertiary
    color: Theme.primary
    selectionColor: Theme.alpha(Theme.navyBright, 0.35)
    selectedTextColor: Theme.primary
    font.pixelSize: Theme.body
    implicitHeight: 30
    leftPadding: 30
    rightPadding: clear.visible ? 28 : 12
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    hoverEnabled: true

    background: Rectangle {
        radius: height / 2
        color: Theme.alpha(Theme.windowColor, root.activeFocus ? 0.95 : root.hovered ? 0.85 : 0.7)
        border.width: 1
        border.color: root.activeFocus ? Theme.alpha(Theme.navyBright, 0.6) : Theme.glassOutline

        Symbol {
            anchors.left: parent.left
            anchors.leftMargin: 11
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifyingglass"
            color: Theme.secondary
            size: 13
        }
    }

    IconButton {
        id: clear
        objectName: "filterClearButton"
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: root.text !== ""
        symbol: "xmark.circle.fill"
        color: Theme.tertiary
        size: 14
        focusPolicy: Qt.NoFocus
        onClicked: {
            root.clear();
            root.textEdited();
        }
    }

    Keys.onEscapePressed: event => {
        if (text === "") {
            event.accepted = false;
            return;
        }
        clear();
        textEdited();
    }
}
