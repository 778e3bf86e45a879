// A number that cross-fades from its old text to its new one (at once with reduce
// motion): sizes and totals that change while the user watches.
import QtQuick
import Veltro

Item {
    id: root

    property string text
    property font font
    property color color: Theme.primary
    property int horizontalAlignment: Text.AlignRight

    implicitWidth: Math.max(current.implicitWidth, previous.opacity > 0 ? previous.implicitWidth : 0)
    implicitHeight: current.implicitHeight

    onTextChanged: {
        if (Theme.reduceMotion) {
            fade.stop();
            previous.opacity = 0;
            current.opacity = 1;
            current.text = text;
            return;
        }
        previous.text = current.text;
        current.text = text;
        fade.restart();
    }
    Component.onCompleted: current.text = text

    Text {
        id: previous
        objectName: "previousText"
        anchors.fill: parent
        horizontalAlignment: root.horizontalAlignment
        font: root.font
        color: root.color
        opacity: 0
    }

    Text {
        id: current
        anchors.fill: parent
        horizontalAlignment: root.horizontalAlignment
        font: root.font
        color: root.color
    }

    ParallelAnimation {
        id: fade
        NumberAnimation { target: previous; property: "opacity"; from: 1; to: 0; duration: Theme.duration(250); easing.type: Easing.InOutQuad }
        NumberAnimation { target: current; property: "opacity"; from: 0; to: 1; duration: Theme.duration(250); easing.type: Easing.InOutQuad }
    }
}
