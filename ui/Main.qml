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

    // The stock parts the views do not draw themselves (menus, tooltips, a picker's
    // choices, the folder chooser's rows) take their colours from this palette: our
    // tokens, so that they read in light and dark alike. A highlighted row is the
    // application's tint with white text.
    palette.window: Theme.windowColor
    palette.windowText: Theme.primary
    palette.base: Theme.windowColor
    palette.alternateBase: Theme.alpha(Theme.primary, 0.04)
    palette.text: Theme.primary
    palette.button: Theme.windowColor
    palette.buttonText: Theme.primary
    palette.brightText: "white"
    palette.placeholderText: Theme.tertiary
    palette.highlight: Theme.navyBright
    palette.highlightedText: "white"
    palette.light: Theme.navyBright
    palette.midlight: Qt.darker(Theme.navyBright, 1.2)
    palette.mid: Theme.quaternary
    palette.dark: Theme.secondary
    palette.shadow: Theme.dark ? "black" : Qt.rgba(0, 0, 0, 0.4)
    palette.toolTipBase: Theme.dark ? "#2c2c2e" : "#fbfbfd"
    palette.toolTipText: Theme.primary
    palette.link: Theme.navyBright
    palette.disabled.windowText: Theme.tertiary
    palette.disabled.text: Theme.tertiary
    palette.disabled.buttonText: Theme.tertiary

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
