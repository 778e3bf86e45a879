// The backdrop of the detail column: a soft gray (white level 0.965 light, 0.105
// dark) whose four corners are tinted — top left `tint`, top right gold, bottom left
// bright navy, bottom right `tint` — each mixed with the base in the OKLab space with
// the base's share given below. The corner colours are exact at the corners and
// fade to the plain base by the edge midpoints, the positions where the design's
// 3 × 3 mesh holds the base again.
import QtQuick
import QtQuick.Shapes
import Veltro

Item {
    id: root

    property color tint: Theme.navy

    readonly property bool dark: Theme.dark
    readonly property color base: dark ? Qt.rgba(0.105, 0.105, 0.105, 1) : Qt.rgba(0.965, 0.965, 0.965, 1)
    readonly property color topLeft: mix(tint, dark ? 0.72 : 0.8)
    readonly property color topRight: mix(Theme.gold, dark ? 0.86 : 0.88)
    readonly property color bottomLeft: mix(Theme.navyBright, dark ? 0.85 : 0.9)
    readonly property color bottomRight: mix(tint, dark ? 0.85 : 0.9)

    // `c` mixed with the base in OKLab, `baseShare` being the base's fraction.
    function mix(c, baseShare) {
        const a = toOklab(c)
        const b = toOklab(base)
        const t = baseShare
        return fromOklab([a[0] * (1 - t) + b[0] * t, a[1] * (1 - t) + b[1] * t, a[2] * (1 - t) + b[2] * t])
    }

    function toLinear(v) {
        return v <= 0.04045 ? v / 12.92 : Math.pow((v + 0.055) / 1.055, 2.4)
    }
    function toGamma(v) {
        const c = Math.min(1, Math.max(0, v))
        return c <= 0.0031308 ? c * 12.92 : 1.055 * Math.pow(c, 1 / 2.4) - 0.055
    }
    function toOklab(c) {
        const r = toLinear(c.r), g = toLinear(c.g), b = toLinear(c.b)
        const l = Math.cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b)
        const m = Math.cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b)
        const s = Math.cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b)
        return [0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
                1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
                0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s]
    }
    function fromOklab(lab) {
        const l = Math.pow(lab[0] + 0.3963377774 * lab[1] + 0.2158037573 * lab[2], 3)
        const m = Math.pow(lab[0] - 0.1055613458 * lab[1] - 0.0638541728 * lab[2], 3)
        const s = Math.pow(lab[0] - 0.0894841775 * lab[1] - 1.2914855480 * lab[2], 3)
        return Qt.rgba(toGamma(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
                       toGamma(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
                       toGamma(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s), 1)
    }

    Rectangle {
        objectName: "ambientBase"
        anchors.fill: parent
        color: root.base
    }

    // Each corner: the whole area drawn in unit coordinates and scaled to the item,
    // so a circular gradient of radius 0.5 reaches the two neighbouring edge
    // midpoints exactly.
    Repeater {
        model: [
            { x: 0, y: 0, which: "topLeft" },
            { x: 1, y: 0, which: "topRight" },
            { x: 0, y: 1, which: "bottomLeft" },
            { x: 1, y: 1, which: "bottomRight" }
        ]
        Shape {
            id: corner
            required property var modelData
            readonly property color cornerColor: root[modelData.which]
            width: 1
            height: 1
            transform: Scale { xScale: root.width; yScale: root.height }
            ShapePath {
                strokeWidth: -1
                strokeColor: "transparent"
                fillGradient: RadialGradient {
                    centerX: corner.modelData.x; centerY: corner.modelData.y
                    focalX: corner.modelData.x; focalY: corner.modelData.y
                    centerRadius: 0.5
                    focalRadius: 0
                    GradientStop { position: 0; color: corner.cornerColor }
                    GradientStop { position: 0.45; color: Theme.alpha(corner.cornerColor, 0.45) }
                    GradientStop { position: 1; color: Theme.alpha(corner.cornerColor, 0) }
                }
                startX: 0; startY: 0
                PathLine { x: 1; y: 0 }
                PathLine { x: 1; y: 1 }
                PathLine { x: 0; y: 1 }
                PathLine { x: 0; y: 0 }
            }
        }
    }
}
