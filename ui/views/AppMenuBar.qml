// The window's menus: the application menu (titled with the product name), the scan
// commands with their shortcuts, and the support links. Each command's enabled state
// follows the model like any view.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

MenuBar {
    id: root
    objectName: "menuBar"

    signal quitRequested()

    readonly property bool busy: AppModel.phase === AppModel.Phase.scanning
                                 || AppModel.phase === AppModel.Phase.cleaning

    // Exposed for tests and for anyone driving the commands without opening a menu.
    readonly property alias rescanAction: rescan
    readonly property alias stopScanAction: stopScan
    readonly property alias selectRecommendedAction: selectRecommended
    readonly property alias deselectAllAction: deselectAll
    readonly property alias cleanSelectedAction: cleanSelected

    // A menu entry that names its keyboard shortcut at the right edge.
    component CommandItem: PopupMenuItem {
        id: entry
        property string shortcutText
        contentItem: RowLayout {
            spacing: 24
            opacity: entry.enabled ? 1 : 0.45
            Text {
                text: entry.text
                font: entry.font
                color: entry.highlighted ? entry.palette.highlightedText : entry.palette.windowText
                Layout.fillWidth: true
            }
            Text {
                visible: entry.shortcutText !== ""
                text: entry.shortcutText
                font: entry.font
                color: entry.highlighted ? entry.palette.highlightedText : Theme.secondary
            }
        }
    }

    PopupMenu {
        objectName: "applicationMenu"
        title: "Veltro"
        // Wide enough for the titles and their shortcuts side by side.
        width: 240

        PopupMenuItem {
            objectName: "menuCoffee"
            text: qsTr("Buy Me a Coffee…")
            onTriggered: Platform.openUrl(Platform.coffee)
        }
        MenuSeparator {}
        CommandItem {
            objectName: "menuQuit"
            shortcutText: "Ctrl+Q"
            action: Action {
                text: qsTr("Quit Veltro")
                shortcut: StandardKey.Quit
                onTriggered: root.quitRequested()
            }
        }
    }

    PopupMenu {
        objectName: "scanMenu"
        title: qsTr("Scan")
        width: 300

        CommandItem {
            objectName: "menuRescan"
            shortcutText: "Ctrl+R"
            action: Action {
                id: rescan
                text: qsTr("Rescan")
                shortcut: "Ctrl+R"
                enabled: !root.busy
                onTriggered: AppModel.scan()
            }
        }
        CommandItem {
            objectName: "menuStopScan"
            shortcutText: "Ctrl+."
            action: Action {
                id: stopScan
                text: qsTr("Stop Scan")
                shortcut: "Ctrl+."
                enabled: AppModel.phase === AppModel.Phase.scanning
                onTriggered: AppModel.cancelScan()
            }
        }
        MenuSeparator {}
        PopupMenuItem {
            objectName: "menuSelectRecommended"
            action: Action {
                id: selectRecommended
                text: qsTr("Select Recommended")
                enabled: AppModel.itemCount > 0 && !root.busy
                onTriggered: AppModel.selectRecommended()
            }
        }
        PopupMenuItem {
            objectName: "menuDeselectAll"
            action: Action {
                id: deselectAll
                text: qsTr("Deselect All")
                enabled: AppModel.selectionCount > 0 && !root.busy
                onTriggered: AppModel.clearSelection()
            }
        }
        CommandItem {
            objectName: "menuCleanSelected"
            shortcutText: "Ctrl+Backspace"
            action: Action {
                id: cleanSelected
                text: qsTr("Clean Selected Items…")
                shortcut: "Ctrl+Backspace"
                enabled: AppModel.selectionCount > 0 && !root.busy
                // Always every ticked item: a scope left by a category's own clean is dropped.
                onTriggered: AppModel.requestClean("")
            }
        }
    }

    PopupMenu {
        objectName: "helpMenu"
        title: qsTr("Help")

        PopupMenuItem {
            objectName: "menuWebsite"
            text: qsTr("Veltro Website")
            onTriggered: Platform.openUrl(Platform.website)
        }
        PopupMenuItem {
            objectName: "menuHelpCoffee"
            text: qsTr("Buy Me a Coffee…")
            onTriggered: Platform.openUrl(Platform.coffee)
        }
        MenuSeparator {}
        PopupMenuItem {
            objectName: "menuTerms"
            text: qsTr("Terms of Use")
            onTriggered: Platform.openUrl(Platform.terms)
        }
        PopupMenuItem {
            objectName: "menuPrivacy"
            text: qsTr("Privacy Policy")
            onTriggered: Platform.openUrl(Platform.privacy)
        }
    }
}
