// The application's one window: the content view under the menu bar, tinted with the
// brand colour. Closing it ends the application.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import Veltro
import Veltro.Model

ApplicationWindow {
    id: window
    objectName: "mainWindow"

    width: 1180
    height: 760
    minimumWidth: 960
    minimumHeight: 600
    visible: true
    title: content.title
    color: Theme.windowColor

    // The application's tint: selection highlights, progress, focus.
    palette.highlight: Theme.navyBright
    palette.highlightedText: "white"

    menuBar: AppMenuBar {
        id: menus
        onQuitRequested: window.close()
    }

    ContentView {
        id: content
        anchors.fill: parent
    }

    // The large-file options ask the model for folders; the model asks this chooser.
    FolderChooserBridge {
        id: folderChooser
        objectName: "folderChooser"
        onOpenRequested: folderDialog.open()
    }

    // The dialog takes one folder at a time: after each one it opens again for the next,
    // and "Done" hands over every folder chosen so far at once ("Cancel" before any was
    // chosen adds nothing).
    FolderDialog {
        id: folderDialog
        objectName: "folderDialog"

        property list<url> chosen

        title: chosen.length === 0 ? qsTr("Choose folders or drives to search for large files")
                                   : qsTr("Choose another folder, or Done to add the %n chosen", "", chosen.length)
        acceptLabel: qsTr("Add")
        rejectLabel: chosen.length === 0 ? qsTr("Cancel") : qsTr("Done")
        onAccepted: {
            chosen.push(selectedFolder);
            Qt.callLater(open);
        }
        onRejected: {
            const folders = Array.from(chosen);
            chosen = [];
            if (folders.length > 0)
                folderChooser.choose(folders);
            else
                folderChooser.dismiss();
        }
    }
}
