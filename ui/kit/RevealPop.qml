// Pops `target` (1.0 → 1.18 → 1.0 about its centre) each time `trigger` changes,
// either way. Nothing happens on first display or with reduce motion.
import QtQuick
import Veltro

QtObject {
    id: root

    property Item target
    property bool trigger
    readonly property bool running: pop.running

    property bool completed: false
    property bool lastTrigger: false

    property SequentialAnimation pop: SequentialAnimation {
        NumberAnimation {
            target: root.target
            property: "scale"
            to: 1.18
            duration: Theme.duration(140)
            easing.type: Easing.OutQuad
        }
        // An under-damped return, like a lively spring settling.
        NumberAnimation {
            target: root.target
            property: "scale"
            to: 1.0
            duration: Theme.duration(320)
            easing.type: Easing.OutBack
            easing.overshoot: 1.6
        }
    }

    property Connections motionWatch: Connections {
        target: Theme
        function onReduceMotionChanged() {
            if (Theme.reduceMotion && root.pop.running) {
                root.pop.stop()
                if (root.target)
                    root.target.scale = 1
            }
        }
    }

    onTriggerChanged: {
        if (!completed || trigger === lastTrigger)
            return
        lastTrigger = trigger
        if (Theme.reduceMotion || !target)
            return
        pop.restart()
    }

    Component.onCompleted: {
        lastTrigger = trigger
        completed = true
    }
}
