// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "."
import "format.js" as Format

/**
 * A slider wide enough for a finger. It shows `source`, but never moves under the finger: while it is pressed, and
 * until the new value has come back, or a second has passed, the handle stays where the user put it.
 */
T.Slider {
    id: root

    /** The value to show while nobody touches the slider; NaN shows as the lower end. */
    property real source

    // Ends of the range. Unless both are numbers, the second above the first, there is nothing to choose from: the
    // slider is dimmed, without a handle, and takes no touch.
    property real lowest
    property real highest

    /** What lies between two values, counted from the lower end; 0 or less where every value counts. */
    property real step
    /** By how much the source may differ from a value that was told and still counts as that value. */
    property real tolerance: 0
    /** Whether there is something to choose from. */
    readonly property bool hasRange: isFinite(lowest) && isFinite(highest) && lowest < highest

    // For the slider itself: the value under the handle, whether the finger is being sent off, and the values that were
    // told and have not come back, in the order of telling.
    property real chosenValue
    property bool interrupted: false
    property var awaited: []

    /** A finger has moved the handle to another value of the range, which is told to the tenth. */
    signal chosen(real value)

    /** Takes the handle away from a finger that holds it: what it has begun ends, and its lifting chooses nothing. */
    function interrupt() {
        // An item that is disabled is taken away from the finger that holds it.
        interrupted = true;
        interrupted = false;
        stopWaiting();
    }

    // The rest is for the slider itself.

    /** Gives up on what has not come back, and shows the source again. */
    function stopWaiting() {
        echoTimer.stop();
        awaited = [];
        follow();
    }

    /** Shows the source, unless a finger is on the slider or a value has not come back. */
    function follow() {
        if (!pressed && awaited.length === 0)
            put(isFinite(source) ? source : from);
    }

    /** Waits for a value to come back; not for one told twice in a row or in force already, which gets no answer. */
    function expect(told) {
        const before = awaited.length > 0 ? awaited[awaited.length - 1] : Format.tenth(source);
        if (told !== before)
            awaited.push(told);
        if (awaited.length > 1000) // a finger that never lifts, and nobody who answers
            awaited.shift();
    }

    // Values come back in the order of choosing, though not all do. A finger may pass one value several times, and only
    // the last time counts, so those before it have to be remembered. The tolerance may be larger than a step: then the
    // nearest value is meant.
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

    /** Moves the handle. */
    function put(newValue) {
        value = newValue;
        chosenValue = value;
    }

    /** The value nearest to this one that can be chosen: that of a step, or either end wherever the steps fall. */
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
    // In another range, the place of a resting finger means another value, which nobody has chosen.
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

    // The steps are counted here: the last step of the slider's own `stepSize` may lie beyond the end or short of it.
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
        // Without a range, no place would be the right one.
        visible: root.hasRange
        color: Theme.sliderHandle
        border.width: 2
        border.color: root.pressed ? Theme.accent : Theme.sliderGroove
    }

    // A value that is refused does not come back, or another one does: then the handle returns to what is in force.
    Timer {
        id: echoTimer

        objectName: "echoTimer"
        interval: 1000
        onTriggered: root.stopWaiting()
    }
}
