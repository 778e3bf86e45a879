// The System Data screen: the measured total of the system's storage areas and how
// they share it, the areas whose size can be reduced (each with its guarded action)
// and those the system manages itself. Measuring needs the administrator password;
// until then every size reads "—".
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root

    // The entry whose action waits for confirmation, or null.
    property var pending: null

    readonly property var entries: AppModel.systemEntries
    readonly property var reducible: entries.filter(entry => entry.hasAction)
    readonly property var managed: entries.filter(entry => !entry.hasAction)
    readonly property bool hasReport: AppModel.hasSystemReport
    readonly property bool analyzing: AppModel.systemAnalyzing
    readonly property var sizes: AppModel.systemSizes
    readonly property real maxSize: {
        let largest = 1;
        for (const id in sizes)
            largest = Math.max(largest, sizes[id]);
        return largest;
    }
    // The measured areas, in catalogue order, for the composition bar.
    readonly property var composition: entries.filter(entry => (sizes[entry.id] || 0) > 0)
                                              .map(entry => ({ id: entry.id, title: entry.title,
                                                               size: sizes[entry.id] }))

    function fractionOf(id) {
        const size = sizes[id];
        return size === undefined ? 0 : size / maxSize;
    }

    function ask(entry) {
        pending = entry;
    }

    function runPending() {
        const id = pending ? pending.id : "";
        pending = null;
        if (id !== "")
            AppModel.runSystemActionFor(id);
    }

    onPendingChanged: pending ? confirmation.open() : confirmation.close()

    SystemActionDialog {
        id: confirmation
        heading: root.pending ? root.pending.actionTitle : ""
        message: root.pending ? root.pending.actionConfirm : ""
        onConfirmed: root.runPending()
        onClosed: root.pending = null
    }

    // A titled card of rows with a hairline between them.
    component Section: ColumnLayout {
        id: section

        property string title
        property var rows: []
        property bool actionable
        // The widest action button of the card's rows: every row's is as wide.
        readonly property real actionSlotWidth: {
            let widest = 0;
            for (let i = 0; i < entries.count; ++i) {
                const slot = entries.itemAt(i);
                if (slot)
                    widest = Math.max(widest, slot.actionWidth);
            }
            return widest;
        }

        spacing: 8

        Label {
            objectName: section.objectName + "Title"
            text: section.title
            color: Theme.primary
            font.pixelSize: Theme.title3
            font.weight: Font.DemiBold
            Layout.leftMargin: 4
        }

        Card {
            radius: 22
            padding: 18
            topPadding: 6
            bottomPadding: 6
            Layout.fillWidth: true

            ColumnLayout {
                width: parent.width
                spacing: 0

                Repeater {
                    id: entries
                    model: section.rows

                    ColumnLayout {
                        id: slot
                        required property var modelData
                        required property int index
                        readonly property real actionWidth: entryRow.actionWidth
                        spacing: 0
                        Layout.fillWidth: true

                        Rectangle {
                            visible: slot.index > 0
                            color: Theme.alpha(Theme.primary, 0.08)
                            implicitHeight: 1
                            Layout.fillWidth: true
                            Layout.leftMargin: 46
                        }
                        SystemEntryRow {
                            id: entryRow
                            entry: slot.modelData
                            actionSlotWidth: section.actionSlotWidth
                            actionable: section.actionable
                            fraction: root.fractionOf(slot.modelData.id)
                            Layout.fillWidth: true
                            onActionRequested: root.ask(slot.modelData)
                        }
                    }
                }
            }
        }
    }

    Flickable {
        id: scroller
        objectName: "systemDataScroller"
        anchors.fill: parent
        contentWidth: width
        contentHeight: content.implicitHeight + 48
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: content
            x: 24
            y: 16
            width: scroller.width - 48
            spacing: 16

            Card {
                objectName: "systemHeader"
                radius: 26
                padding: 22
                Layout.fillWidth: true

                ColumnLayout {
                    width: parent.width
                    spacing: 14

                    RowLayout {
                        spacing: 12
                        Layout.fillWidth: true

                        // A plain column: its height is its lines' height at the width
                        // it gets, where a layout would keep that of a narrower pass.
                        Column {
                            spacing: 3
                            Layout.fillWidth: true

                            Label {
                                objectName: "systemTitle"
                                text: qsTr("System Data")
                                color: Theme.primary
                                font.pixelSize: Theme.title
                                font.weight: Font.Bold
                            }
                            Label {
                                objectName: "systemSubtitle"
                                width: parent.width
                                text: qsTr("What macOS files under “System Data” in Settings → Storage.")
                                color: Theme.secondary
                                font.pixelSize: Theme.callout
                                wrapMode: Text.Wrap
                            }
                        }
                        Label {
                            objectName: "systemTotal"
                            text: Format.byteCount(AppModel.systemMeasuredTotal)
                            color: Theme.primary
                            font.pixelSize: Theme.largeTitle
                            font.weight: Font.Bold
                            Layout.alignment: Qt.AlignTop | Qt.AlignRight
                        }
                    }

                    CompositionBar {
                        visible: root.hasReport
                        entries: root.composition
                        shimmering: root.analyzing
                        Layout.fillWidth: true
                    }

                    RowLayout {
                        spacing: 12
                        Layout.fillWidth: true

                        RowLayout {
                            objectName: "systemNote"
                            readonly property string text: !root.hasReport
                                ? qsTr("Needs your administrator password · read-only")
                                : AppModel.systemPurgeable >= 1
                                  ? Format.byteCount(AppModel.systemPurgeable)
                                    + qsTr(" purgeable — macOS frees it automatically when needed")
                                  : ""
                            readonly property bool shown: text !== ""
                            spacing: 6
                            Layout.fillWidth: true

                            Symbol {
                                visible: parent.shown
                                name: root.hasReport ? "arrow.3.trianglepath" : "lock"
                                color: Theme.secondary
                                size: Theme.callout
                            }
                            Label {
                                visible: parent.shown
                                text: parent.text
                                color: Theme.secondary
                                font.pixelSize: Theme.callout
                                wrapMode: Text.Wrap
                                Layout.fillWidth: true
                            }
                        }

                        ProminentButton {
                            id: analyzeButton
                            objectName: "analyzeButton"
                            text: root.analyzing ? qsTr("Analyzing…")
                                                 : root.hasReport ? qsTr("Re-analyze") : qsTr("Analyze")
                            symbol: "chart.pie"
                            enabled: !root.analyzing
                            onClicked: AppModel.analyzeSystemData()

                            contentItem: Row {
                                spacing: 7

                                BusyIndicator {
                                    objectName: "analyzeBusy"
                                    anchors.verticalCenter: parent.verticalCenter
                                    visible: root.analyzing
                                    running: root.analyzing
                                    implicitWidth: 14
                                    implicitHeight: 14
                                    padding: 0
                                    palette.dark: "white"
                                }
                                Symbol {
                                    anchors.verticalCenter: parent.verticalCenter
                                    visible: !root.analyzing
                                    name: analyzeButton.symbol
                                    color: "white"
                                    size: analyzeButton.fontSize
                                }
                                Text {
                                    anchors.verticalCenter: parent.verticalCenter
                                    text: analyzeButton.text
                                    font: analyzeButton.font
                                    color: "white"
                                }
                            }
                        }
                    }
                }
            }

            RowLayout {
                objectName: "systemMessage"
                readonly property string text: AppModel.systemMessage
                visible: text !== ""
                spacing: 6
                Layout.fillWidth: true
                Layout.leftMargin: 4

                Symbol {
                    name: "info.circle"
                    color: Theme.secondary
                    size: Theme.callout
                }
                Label {
                    text: AppModel.systemMessage
                    color: Theme.secondary
                    font.pixelSize: Theme.callout
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
            }

            Section {
                objectName: "reducibleSection"
                title: qsTr("Can Be Reduced")
                rows: root.reducible
                actionable: true
                Layout.fillWidth: true
            }

            Section {
                objectName: "managedSection"
                title: qsTr("Managed by macOS")
                rows: root.managed
                actionable: false
                Layout.fillWidth: true
            }
        }
    }
}
