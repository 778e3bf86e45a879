// A faint rounded bar standing where a size is not known yet.
import QtQuick
import Veltro

Rectangle {
    implicitWidth: 56
    implicitHeight: 12
    radius: Math.min(height / 2, 4)
    color: Theme.alpha(Theme.primary, 0.10)
}
