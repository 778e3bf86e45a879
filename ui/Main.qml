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

    FolderDialog {
        id: folderDialog
        objectName: "folderDialog"
        title: qsTr("Choose folders or drives to search for large files")
        acceptLabel: qsTr("Add")
        onAccepted: folderChooser.choose([selectedFolder])
        onRejected: folderChooser.dismiss()
    }
}
