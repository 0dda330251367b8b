// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import SceneTest 1.0

/** What all scene tests share: fingers, the search for inner objects, and that nothing may complain in the log. */
TestCase {
    /** What countFrames() counts with. */
    readonly property SignalSpy frames: SignalSpy { signalName: "frameSwapped" }

    when: windowShown

    function initTestCase() {
        Messages.listen();
    }

    function init() {
        // Complaints of objects that went after the former test's end.
        checkComplaints();
        prepare();
    }

    function cleanup() {
        checkComplaints();
    }

    function cleanupTestCase() {
        checkComplaints();
    }

    /** Fails if anything complained, and forgets the log, so that one complaint fails one test. */
    function checkComplaints() {
        const complaints = Messages.complaints.join("\n");
        Messages.clear();
        compare(complaints, "");
    }

    /** Runs before each test function. */
    function prepare() {
    }

    function create(file, parent, properties) {
        const component = Qt.createComponent("qrc:/qml/" + file);
        compare(component.status, Component.Ready, component.errorString());
        const object = createTemporaryObject(component, parent, properties);
        verify(object !== null);
        return object;
    }

    /** The object of this name below `object`, also inside pop-ups, windows and loaders; null if there is none. */
    function find(object, name) {
        if (object.objectName === name)
            return object;
        const inner = [];
        for (const list of [object.data, object.children, object.contentChildren]) {
            for (let i = 0; list && i < list.length; ++i) {
                if (inner.indexOf(list[i]) < 0)
                    inner.push(list[i]);
            }
        }
        if (object.contentItem)
            inner.push(object.contentItem);
        for (const child of inner) {
            const found = child ? find(child, name) : null;
            if (found)
                return found;
        }
        return null;
    }

    /** The colour that stands out most where the item lies on its page, as the page is on view; black is nothing. */
    function colourOnView(page, item) {
        const area = item.mapToItem(page, 0, 0, item.width, item.height);
        return Pixels.brightest(Pixels.part(Pixels.grab(page), area));
    }

    /** Compares colours that went through the drawing, which rounds. */
    function compareColour(found, expected, where) {
        const wanted = Qt.darker(expected, 1);
        const apart = Math.max(Math.abs(found.r - wanted.r), Math.abs(found.g - wanted.g), Math.abs(found.b - wanted.b));
        verify(apart < 0.02, (where || "colour") + " is " + found + ", not " + wanted);
    }

    /** Whether the picture of this source, drawn in the same size and manner, looks as the item does. */
    function looksLike(image, source) {
        const other = Qt.createQmlObject("import QtQuick 2.15; Image {}", image.parent);
        for (const name of ["width", "height", "sourceSize", "fillMode", "smooth", "cache"])
            other[name] = image[name];
        other.opacity = 0;
        other.source = source;
        tryCompare(other, "status", Image.Ready);
        const same = Pixels.same(Pixels.grab(image), Pixels.grab(other));
        other.destroy();
        return same;
    }

    function tap(item, x, y) {
        const px = x === undefined ? item.width / 2 : x;
        const py = y === undefined ? item.height / 2 : y;
        const touch = touchEvent(item);
        touch.press(1, item, px, py).commit();
        touch.release(1, item, px, py).commit();
    }

    /** A finger that goes from one place of the item to another in small steps; `lift` false leaves it there. */
    function drag(item, x1, y1, x2, y2, lift) {
        const touch = touchEvent(item);
        const steps = 20;
        touch.press(1, item, x1, y1).commit();
        for (let i = 1; i <= steps; ++i)
            touch.move(1, item, x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps).commit();
        if (lift !== false)
            touch.release(1, item, x2, y2).commit();
        return touch;
    }

    /** Counts from here on, in frames.count, the frames of the window that the item is in. */
    function countFrames(item) {
        frames.target = item.Window.window;
        frames.clear();
    }

    function logged(message) {
        return Messages.all.indexOf(message) >= 0;
    }
}
