// A category's sidebar row: its scan state, found size and checked size, derived
// from the category list's live roles.
import QtQuick
import Veltro
import Veltro.Model

SidebarRow {
    id: row

    property string categoryId
    property string categoryTitle
    property string detail
    property string categorySymbol
    property color groupTint
    property int scanState: AppModel.CategoryScanState.pending
    property int itemCount: 0
    property real totalSize: 0
    property int selectedCount: 0
    property real selectedSize: 0

    readonly property bool done: scanState === AppModel.CategoryScanState.done

    objectName: "categoryRow_" + categoryId
    symbol: categorySymbol
    tint: groupTint
    title: categoryTitle
    toolTip: detail
    // A found category shows its whole size until something in it is checked, then
    // the checked size in the accent colour.
    trailing: !done ? "" : itemCount > 0 ? Format.byteCount(selectedCount >= 1 ? selectedSize : totalSize) : "—"
    accent: selectedCount > 0
    active: done && itemCount > 0
    scanning: scanState === AppModel.CategoryScanState.scanning
    dimTitle: scanState === AppModel.CategoryScanState.pending || (done && itemCount === 0)
}
