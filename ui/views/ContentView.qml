// The window's content: the sidebar beside the detail screen the route chooses, a
// header with the disk's free space and the primary action, the floating action bar,
// and the two sheets of the clean flow.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "contentView"

    // The navigation target: "overview", "systemData", or "category" with its id.
    property string routeKind: "overview"
    property string routeCategory: ""

    readonly property var routedCategory: routeKind === "category" ? AppModel.categoryInfo(routeCategory) : ({})
    // What is shown: a category the catalogue does not know falls back to the overview.
    readonly property string shownKind: routeKind === "category" && routedCategory.categoryId === undefined
                                        ? "overview" : routeKind
    readonly property string title: shownKind === "category" ? routedCategory.title : "Veltro"
    readonly property string subtitle: qsTr("%1 available of %2").arg(Format.byteCount(AppModel.diskAvailable))
                                                                   .arg(Format.byteCount(AppModel.diskTotal))
    readonly property bool scanning: AppModel.phase === AppModel.Phase.scanning
    readonly property bool cleaning: AppModel.phase === AppModel.Phase.cleaning

    function navigate(kind, categoryId) {
        routeKind = kind;
        routeCategory = kind === "category" ? (categoryId || "") : "";
    }

    Component.onCompleted: AppModel.refreshEnvironment()

    // Coming back to the application is when a changed permission shows; a running
    // scan or clean is not disturbed (the next scan refreshes anyway).
    Connections {
        target: Qt.application
        function onStateChanged() {
            if (Qt.application.state === Qt.ApplicationActive && !root.scanning && !root.cleaning)
                AppModel.refreshEnvironment();
        }
    }

    // Under everything, reaching beneath the translucent sidebar.
    AmbientBackground {
        anchors.fill: parent
        tint: Theme.navy
    }

    SplitView {
        anchors.fill: parent
        orientation: Qt.Horizontal

        handle: Rectangle {
            implicitWidth: 1
            color: Theme.dark ? Qt.rgba(1, 1, 1, 0.1) : Qt.rgba(0, 0, 0, 0.1)
        }

        SidebarView {
            id: sidebar
            SplitView.minimumWidth: 250
            SplitView.preferredWidth: 290
            SplitView.maximumWidth: 360
            routeKind: root.shownKind
            routeCategory: root.routeCategory
            onRouteChosen: (kind, categoryId) => root.navigate(kind, categoryId)
        }

        Item {
            id: detail
            objectName: "detailColumn"
            SplitView.minimumWidth: 620
            SplitView.preferredWidth: 880
            SplitView.fillWidth: true

            RowLayout {
                id: header
                objectName: "headerBar"
                anchors.top: parent.top
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: 24
                anchors.rightMargin: 20
                anchors.topMargin: 12
                height: 44
                spacing: 12

                ColumnLayout {
                    spacing: 0
                    Layout.fillWidth: true

                    Label {
                        objectName: "headerTitle"
                        text: root.title
                        color: Theme.primary
                        font.pixelSize: Theme.headline
                        font.weight: Font.Bold
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Label {
                        objectName: "subtitle"
                        text: root.subtitle
                        color: Theme.secondary
                        font.pixelSize: Theme.subheadline
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                }

                // A category screen's filter lives in the toolbar; it narrows before the
                // title gives up its text.
                CategoryFilterField {
                    visible: root.shownKind === "category"
                    text: AppModel.categoryTable.filterText
                    onTextEdited: AppModel.categoryTable.filterText = text
                    Layout.alignment: Qt.AlignVCenter
                    Layout.fillWidth: true
                    Layout.preferredWidth: 220
                    Layout.maximumWidth: 220
                    Layout.minimumWidth: 120
                }

                GlassButton {
                    id: toolbarButton
                    Layout.minimumWidth: implicitWidth
                    objectName: "toolbarButton"

                    readonly property string helpText: root.scanning ? qsTr("Stop scanning (Ctrl+.)")
                                                                     : qsTr("Rescan (Ctrl+R)")

                    text: root.scanning ? qsTr("Stop Scan") : AppModel.hasLastScan ? qsTr("Rescan") : qsTr("Scan")
                    symbol: root.scanning ? "stop.fill" : "arrow.clockwise"
                    enabled: !root.cleaning
                    HelpTip {
                        shown: parent.hovered
                        text: parent.helpText
                    }
                    onClicked: root.scanning ? AppModel.cancelScan() : AppModel.scan()
                }
            }

            Loader {
                id: screen
                objectName: "detailScreen"
                anchors.top: header.bottom
                anchors.topMargin: 8
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                // The overview's cards scroll on under the action bar; a category's table
                // ends above it.
                anchors.bottomMargin: root.shownKind === "category" ? barArea.height : 0

                // The category a category screen was made for; each route gets a fresh screen.
                property string categoryId
                readonly property string key: root.shownKind === "category" ? "category:" + root.routeCategory
                                                                             : root.shownKind

                function reload() {
                    sourceComponent = null;
                    categoryId = root.shownKind === "category" ? root.routeCategory : "";
                    sourceComponent = root.shownKind === "systemData" ? systemDataScreen
                                    : root.shownKind === "category" ? categoryScreen : overviewScreen;
                }

                onKeyChanged: reload()
                Component.onCompleted: reload()
            }

            // Where a scrolling page passes under the bar, it fades out instead of
            // ending at a hard line.
            Rectangle {
                objectName: "barSoftEdge"
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                height: barArea.height + 24
                visible: root.shownKind === "overview" && barArea.height > 0
                gradient: Gradient {
                    GradientStop { position: 0; color: Theme.alpha(Theme.windowColor, 0) }
                    GradientStop { position: 0.45; color: Theme.alpha(Theme.windowColor, 0.75) }
                    GradientStop { position: 1; color: Theme.alpha(Theme.windowColor, 0.92) }
                }
            }

            Item {
                id: barArea
                objectName: "actionBarArea"
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                visible: root.shownKind !== "systemData"
                height: visible ? bar.implicitHeight + 8 + 16 : 0

                FloatingActionBar {
                    id: bar
                    anchors.horizontalCenter: parent.horizontalCenter
                    anchors.bottom: parent.bottom
                    anchors.bottomMargin: 16
                    width: Math.min(implicitWidth, parent.width - 40)
                    height: implicitHeight
                }
            }
        }
    }

    Component {
        id: overviewScreen
        OverviewView {
            objectName: "overviewView"
            bottomInset: barArea.height
            onRouteRequested: (kind, categoryId) => root.navigate(kind, categoryId)
        }
    }
    Component {
        id: systemDataScreen
        SystemDataView {
            objectName: "systemDataView"
        }
    }
    Component {
        id: categoryScreen
        CategoryDetailView {
            objectName: "categoryDetailView"
            categoryId: screen.categoryId
        }
    }

    // The clean flow's sheets follow the model's flags; closing one by any means
    // (its buttons, Escape) clears its flag.
    component Sheet: Dialog {
        id: sheet
        property bool wanted
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        dim: true
        padding: 0
        closePolicy: Popup.CloseOnEscape
        onWantedChanged: wanted ? open() : close()
        Component.onCompleted: if (wanted) open()
        background: Rectangle {
            radius: 18
            color: Theme.windowColor
            border.width: 1
            border.color: Theme.dark ? Qt.rgba(1, 1, 1, 0.12) : Qt.rgba(0, 0, 0, 0.12)
        }
    }

    Sheet {
        objectName: "confirmSheet"
        wanted: AppModel.showConfirm
        onClosed: AppModel.showConfirm = false
        ConfirmCleanSheet {}
    }

    Sheet {
        objectName: "resultSheet"
        wanted: AppModel.showResult
        onClosed: AppModel.showResult = false
        CleanResultSheet {}
    }
}
