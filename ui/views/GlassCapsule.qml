// The action bar's glass shape: the translucent window colour with the kit's faint
// hairline, rounded into a capsule unless told otherwise.
import QtQuick
import Veltro

Rectangle {
    radius: height / 2
    color: Theme.alpha(Theme.windowColor, 0.7)
    border.width: 1
    border.color: Theme.glassOutline
}
