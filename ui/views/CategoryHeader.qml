// The top of a category's screen: its identity, risk, total and item count, and the
// row of actions on its items. Short of room, texts give way first (title, detail
// and folder elide), then the large-file options fold into a menu, then "Select All"
// keeps only its symbol: the total, Rescan and Clean always show whole.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Veltro
import Veltro.Model

Item {
    id: root
    objectName: "categoryHeader"

    property string categoryId
    // The category as AppModel.categoryInfo gives it.
    property var info: ({})
    // The category's figures, replaced as one object so that they change together:
    // count, total, selected, selectedSize.
    property var figures: ({ count: 0, total: 0, selected: 0, selectedSize: 0 })
    property string commonLocation
    // Scanning or cleaning: the actions wait.
    property bool busy: false

    readonly property int count: figures.count
    readonly property real totalSize: figures.total
    readonly property int selected: figures.selected
    readonly property real selectedSize: figures.selectedSize
    readonly property bool allSelected: count > 0 && selected === count
    readonly property bool large: info.group === "large"

    implicitHeight: column.implicitHeight + 24 + 4

    // How much the action row folds to fit: 0 nothing, 1 the large-file options, 2 also
    // "Select All" to its symbol. From the column's width, which nothing inside feeds.
    readonly property int foldLevel: {
        const spacing = actions.spacing;
        let fixed = spacing; // the flexible gap's
        if (root.count >= 1)
            fixed += spacing;
        if (root.commonLocation !== "")
            fixed += 60 + spacing;
        if (root.selected >= 1)
            fixed += cleanButton.implicitWidth + spacing;
        const room = column.width - fixed;
        const full = root.large ? options.fullWidth : 0;
        const folded = root.large ? options.compactWidth : 0;
        const selectAllWidth = root.count >= 1 ? selectAll.fullWidth : 0;
        if (full + selectAllWidth <= room)
            return 0;
        return folded + selectAllWidth <= room ? 1 : 2;
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        anchors.topMargin: 24
        anchors.bottomMargin: 4
        spacing: 16

        RowLayout {
            spacing: 16
            Layout.fillWidth: true

            IconTile {
                objectName: "categoryIconTile"
                symbol: root.info.symbol !== undefined ? root.info.symbol : ""
                tint: root.info.tint !== undefined ? root.info.tint : Theme.gray
                size: 52
                active: true
                pulsing: false
            }

            ColumnLayout {
                spacing: 4
                Layout.fillWidth: true
                // The title and its pill keep their room before the filter gives up its own.
                Layout.minimumWidth: Math.min(titleLine.implicitWidth, 240)

                RowLayout {
                    id: titleLine
                    spacing: 8
                    Layout.fillWidth: true

                    Text {
                        objectName: "categoryTitle"
                        text: root.info.title !== undefined ? root.info.title : ""
                        color: Theme.primary
                        font.pixelSize: Theme.title
                        font.weight: Font.Bold
                        elide: Text.ElideRight
                        maximumLineCount: 1
                        Layout.fillWidth: true
                        // Whole pixels: a layout rounds down, and a fraction short elides.
                        Layout.preferredWidth: Math.ceil(implicitWidth)
                        Layout.maximumWidth: Math.ceil(implicitWidth)
                    }

                    Pill {
                        objectName: "riskPill"
                        text: root.info.riskLabel !== undefined ? root.info.riskLabel : ""
                        color: root.info.risk === "safe" ? Theme.green
                             : root.info.risk === "caution" ? Theme.orange : Theme.red
                    }

                    Item {
                        Layout.fillWidth: true
                    }
                }

                Text {
                    id: detail
                    objectName: "categoryDetail"
                    text: root.info.detail !== undefined ? root.info.detail : ""
                    color: Theme.secondary
                    font.pixelSize: Theme.body
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    Layout.fillWidth: true

                    HoverHandler {
                        id: detailHover
                    }
                    HelpTip {
                        shown: detailHover.hovered
                        text: parent.text
                    }
                }
            }

            ColumnLayout {
                spacing: 2
                Layout.alignment: Qt.AlignVCenter
                Layout.minimumWidth: implicitWidth

                NumericText {
                    objectName: "categoryTotal"
                    text: root.count > 0 ? Format.byteCount(root.totalSize) : "—"
                    font.pixelSize: 30
                    font.weight: Font.Bold
                    color: Theme.primary
                    Layout.alignment: Qt.AlignRight
                }

                Text {
                    objectName: "categoryItemCount"
                    text: qsTr("%Ln items", "", root.count)
                    color: Theme.secondary
                    font.pixelSize: Theme.callout
                    Layout.alignment: Qt.AlignRight
                }
            }
        }

        RowLayout {
            id: actions
            objectName: "categoryActionRow"
            spacing: 10
            visible: root.count >= 1 || root.large
            enabled: !root.busy
            Layout.fillWidth: true

            GlassButton {
                id: selectAll
                objectName: "selectAllButton"
                visible: root.count >= 1
                iconOnly: root.foldLevel >= 2
                Layout.minimumWidth: implicitWidth
                HelpTip {
                    shown: parent.iconOnly && parent.hovered
                    text: parent.text
                }
                text: root.allSelected ? qsTr("Deselect All") : qsTr("Select All")
                symbol: root.allSelected ? "circle" : "checkmark.circle"
                onClicked: AppModel.setAll(root.categoryId, !root.allSelected)
            }

            RowLayout {
                objectName: "commonLocationLabel"
                visible: root.commonLocation !== ""
                spacing: 6
                Layout.fillWidth: true
                Layout.maximumWidth: Math.ceil(implicitWidth)
                Layout.minimumWidth: 60

                Symbol {
                    name: "folder"
                    color: Theme.secondary
                    size: Theme.callout
                }
                Text {
                    objectName: "commonLocationText"
                    text: root.commonLocation
                    color: Theme.secondary
                    font.pixelSize: Theme.callout
                    elide: Text.ElideMiddle
                    maximumLineCount: 1
                    Layout.fillWidth: true
                }
            }

            Item {
                Layout.fillWidth: true
            }

            LargeFileOptions {
                id: options
                visible: root.large
                compact: root.foldLevel >= 1
            }

            ProminentButton {
                id: cleanButton
                objectName: "cleanCategoryButton"

                // Whether the button is wanted; it fades to this.
                readonly property bool shown: root.selected >= 1
                // The label keeps the last checked size while it fades out.
                property string fadingSize

                text: qsTr("Clean %1").arg(shown ? Format.byteCount(root.selectedSize) : fadingSize)
                symbol: "sparkles"
                Layout.minimumWidth: implicitWidth
                opacity: shown ? 1 : 0
                visible: opacity > 0
                HelpTip {
                    shown: parent.hovered
                    text: qsTr("Clean only the checked items in this category")
                }
                onClicked: AppModel.requestClean(root.categoryId)

                Behavior on opacity {
                    NumberAnimation { duration: Theme.duration(200); easing.type: Easing.InOutQuad }
                }

                onTextChanged: if (shown) fadingSize = Format.byteCount(root.selectedSize)
            }
        }
    }
}
