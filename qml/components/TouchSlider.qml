// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "."
import "format.js" as Format

/**
 * A slider wide enough for a finger.  It shows `source`, but never moves under the finger: while it is pressed, and
 * until the new value has come back or failed to, the handle stays where the user put it.
 */
T.Slider {
    id: root

    /** The value to show while nobody touches the slider. */
    property real source
    /** Ends of the range.  Without two numbers, the second above the first, there is nothing to choose from. */
    property real lowest
    property real highest
    /** What lies between two values; 0 where every value counts. */
    property real step
    /** By how much the source may differ from a value that was told when it has come back. */
    property real tolerance: 0
    readonly property bool hasRange: isFinite(lowest) && isFinite(highest) && lowest < highest
    property real chosenValue
    property bool interrupted: false
    /** The values that were told and have not come back, in the order of telling. */
    property var awaited: []

    /** A finger has moved the handle to another value, which is told to the tenth. */
    signal chosen(real value)

    /** Has the finger lose the handle: what it has begun ends here, and its lifting chooses nothing. */
    function interrupt() {
        // An item that is disabled is taken away from the finger that holds it.
        interrupted = true;
        interrupted = false;
        stopWaiting();
    }

    function stopWaiting() {
        echoTimer.stop();
        awaited = [];
        follow();
    }

    function follow() {
        if (!pressed && awaited.length === 0)
            put(isFinite(source) ? source : from);
    }

    /** No answer comes to a value that is told twice in a row, or that holds already. */
    function expect(told) {
        const before = awaited.length > 0 ? awaited[awaited.length - 1] : Format.tenth(source);
        if (told !== before)
            awaited.push(told);
        if (awaited.length > 1000) // a finger that never lifts, and nobody who answers
            awaited.shift();
    }

    // Values come back in the order of choosing, though not all do.  A finger may pass one value several times, and only
    // the last time counts, so those before it have to be remembered.  The tolerance may be larger than a step: then the
    // nearest is meant.
    function recognise() {
        let nearest = -1;
        let least = tolerance;
        for (let i = 0; i < awaited.length; ++i) {
            const apart = Math.abs(source - awaited[i]);
            if (nearest < 0 ? apart <= least : apart < least) {
                nearest = i;
                least = apart;
            }
        }
        awaited.splice(0, nearest + 1);
    }

    function put(newValue) {
        value = newValue;
        chosenValue = value;
    }

    /** The value of the range that can be chosen next to this one: that of a step, or an end, whatever the steps. */
    function choice(wanted) {
        if (!(step > 0))
            return wanted;
        const nearest = from + Math.round((wanted - from) / step) * step;
        return nearest > to || to - wanted < Math.abs(wanted - nearest) ? to : nearest;
    }

    enabled: hasRange && !interrupted
    opacity: hasRange ? 1 : Theme.unusableOpacity
    from: hasRange ? lowest : 0
    to: hasRange ? highest : 0
    implicitWidth: 200
    implicitHeight: 43
    onSourceChanged: {
        recognise();
        follow();
    }
    // In another range the place of a resting finger means another value, which nobody has chosen.
    onFromChanged: interrupt()
    onToChanged: interrupt()
    onPressedChanged: {
        if (pressed) {
            echoTimer.stop();
        } else {
            echoTimer.restart();
            follow();
        }
    }

    // The steps are counted here and not left to the slider's own `stepSize`, whose last step may lie beyond the end, or
    // short of it.
    onMoved: {
        const before = chosenValue;
        put(choice(value));
        if (value === before)
            return;
        const told = Format.tenth(value);
        expect(told);
        chosen(told);
    }

    Component.onCompleted: follow()

    background: Rectangle {
        x: root.leftPadding
        y: (root.height - height) / 2
        width: root.availableWidth
        height: 8
        radius: height / 2
        color: Theme.sliderGroove

        Rectangle {
            width: root.visualPosition * parent.width
            height: parent.height
            radius: parent.radius
            color: Theme.accent
        }
    }

    handle: Rectangle {
        objectName: "handle"
        x: root.leftPadding + root.visualPosition * (root.availableWidth - width)
        y: (root.height - height) / 2
        width: 34
        height: width
        radius: width / 2
        // No place in a range that is not there would be true.
        visible: root.hasRange
        color: Theme.sliderHandle
        border.width: 2
        border.color: root.pressed ? Theme.accent : Theme.sliderGroove
    }

    // Who refuses the value sends nothing back, or another: then the handle returns to what holds.
    Timer {
        id: echoTimer

        objectName: "echoTimer"
        interval: 1000
        onTriggered: root.stopWaiting()
    }
}
