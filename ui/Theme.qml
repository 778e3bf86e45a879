// Design tokens shared by every view: brand and standard colours, text colours for
// light and dark, type sizes and motion. Light or dark follows the platform palette
// (its window colour's lightness); everything else is the application's own look.
pragma Singleton
import QtQuick
import Veltro

QtObject {
    id: theme

    // Brand colours, fully opaque.
    readonly property color navy: Qt.rgba(52 / 255, 68 / 255, 137 / 255, 1)
    readonly property color navyBright: Qt.rgba(91 / 255, 114 / 255, 214 / 255, 1)
    readonly property color gold: Qt.rgba(219 / 255, 182 / 255, 119 / 255, 1)

    // The platform palette only decides light or dark.
    readonly property SystemPalette systemPalette: SystemPalette {
        colorGroup: SystemPalette.Active
    }
    readonly property bool dark: systemPalette.window.hslLightness < 0.5

    // Standard colours, each in its light and dark variant.
    readonly property color red: dark ? "#ff453a" : "#ff3b30"
    readonly property color orange: dark ? "#ff9f0a" : "#ff9500"
    readonly property color green: dark ? "#30d158" : "#34c759"
    readonly property color mint: dark ? "#63e6e2" : "#00c7be"
    readonly property color cyan: dark ? "#64d2ff" : "#32ade6"
    readonly property color blue: dark ? "#0a84ff" : "#007aff"
    readonly property color brown: dark ? "#ac8e68" : "#a2845e"
    readonly property color gray: "#8e8e93"

    // Text colours, strongest to faintest.
    readonly property color primary: dark ? Qt.rgba(1, 1, 1, 0.88) : Qt.rgba(0, 0, 0, 0.85)
    readonly property color secondary: dark ? Qt.rgba(235 / 255, 235 / 255, 245 / 255, 0.6)
                                            : Qt.rgba(60 / 255, 60 / 255, 67 / 255, 0.6)
    readonly property color tertiary: dark ? Qt.rgba(235 / 255, 235 / 255, 245 / 255, 0.3)
                                           : Qt.rgba(60 / 255, 60 / 255, 67 / 255, 0.3)
    readonly property color quaternary: dark ? Qt.rgba(235 / 255, 235 / 255, 245 / 255, 0.18)
                                             : Qt.rgba(60 / 255, 60 / 255, 67 / 255, 0.18)

    // Surfaces: the window, and the translucent "glass" of cards and buttons.
    readonly property color windowColor: dark ? Qt.rgba(0.118, 0.118, 0.122, 1) : Qt.rgba(0.925, 0.925, 0.93, 1)
    readonly property color materialColor: alpha(windowColor, 0.7)
    readonly property color outlineColor: Qt.rgba(1, 1, 1, 0.08)
    // Glass controls on a light backdrop need a darker hairline to be seen at all.
    readonly property color glassOutline: dark ? Qt.rgba(1, 1, 1, 0.12) : Qt.rgba(0, 0, 0, 0.08)

    // Font pixel sizes, largest to smallest.
    readonly property int largeTitle: 28
    readonly property int title: 23
    readonly property int title2: 18
    readonly property int title3: 16
    readonly property int headline: 14
    readonly property int body: 14
    readonly property int callout: 13
    readonly property int subheadline: 12
    readonly property int footnote: 11
    readonly property int caption: 11
    readonly property int caption2: 10

    // Motion: every animation's duration goes through duration(), so the desktop's
    // reduce-motion wish stops them all.
    readonly property bool reduceMotion: Platform.reduceMotion
    function duration(ms) {
        return reduceMotion ? 0 : ms
    }

    // The tint of a category group ("user", "system", "developer", "apps", "large").
    function groupTint(groupId) {
        switch (groupId) {
        case "user": return Qt.rgba(0.31, 0.42, 0.85, 1)
        case "system": return Qt.rgba(0.88, 0.38, 0.35, 1)
        case "developer": return Qt.rgba(0.89, 0.64, 0.31, 1)
        case "apps": return Qt.rgba(0.25, 0.72, 0.69, 1)
        case "large": return Qt.rgba(0.61, 0.48, 0.88, 1)
        }
        return gray
    }

    // `c` with its opacity replaced by `a`.
    function alpha(c, a) {
        return Qt.rgba(c.r, c.g, c.b, a)
    }
}
