// How an item will be removed, as a small glyph with hover help; nothing for the
// common case of moving it to the Trash.
import QtQuick
import QtQuick.Controls
import Veltro

Item {
    id: root

    // The removal method's name ("trash", "permanent", "adminTrash", "command") and,
    // for a command, whether it runs with administrator rights.
    property string method: "trash"
    property bool admin: false

    readonly property Symbol glyph: method === "permanent" ? permanentGlyph
                                  : method === "adminTrash" ? adminGlyph
                                  : method === "command" ? (admin ? adminCommandGlyph : commandGlyph) : null
    readonly property string symbolName: glyph ? glyph.name : ""
    readonly property string help: method === "permanent" ? qsTr("Deleted permanently")
                                 : method === "adminTrash" ? qsTr("Requires administrator password")
                                 : method === "command" ? qsTr("Runs a command") : ""

    implicitWidth: glyph ? 14 : 0
    implicitHeight: 14
    visible: glyph !== null

    Symbol {
        id: permanentGlyph
        anchors.centerIn: parent
        visible: root.glyph === permanentGlyph
        name: "trash.slash"
        color: Theme.red
        size: 13
    }
    Symbol {
        id: adminGlyph
        anchors.centerIn: parent
        visible: root.glyph === adminGlyph
        name: "lock.fill"
        color: Theme.secondary
        size: 13
    }
    Symbol {
        id: commandGlyph
        anchors.centerIn: parent
        visible: root.glyph === commandGlyph
        name: "terminal"
        color: Theme.secondary
        size: 13
    }
    Symbol {
        id: adminCommandGlyph
        anchors.centerIn: parent
        visible: root.glyph === adminCommandGlyph
        name: "terminal.fill"
        color: Theme.secondary
        size: 13
    }

    HoverHandler {
        id: hover
    }

    HelpTip {
        shown: hover.hovered && parent.help !== ""
        text: parent.help
    }
}
