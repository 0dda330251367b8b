// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import "qrc:/qml/components" as Scene

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        id: testCase

        name: "Marquee"

        // How far a text may run from one picture to the next.
        readonly property real stride: 20
        readonly property string longText: "a text that is a good deal wider than its box"
        readonly property string longerText: "another text, which is quite a bit longer than " + longText + " is"
        property var item: null
        property var label: null

        /** A box of 200 pixels; the stage on both sides of it shows what runs out of it. */
        function marquee(properties) {
            item = create("components/Marquee.qml", stage, Object.assign({ x: 50, width: 200, pixelSize: 20, family: "Noto Sans",
                                                                scrollDuration: 600 }, properties));
            label = find(item, "label");
            watch.target = label;
            watch.begin();
            return item;
        }

        function cleanup() {
            watch.target = null;
            checkComplaints();
        }

        function set(properties) {
            for (const name in properties)
                item[name] = properties[name];
        }

        /** What the text of the item needs when nothing is near it. */
        function wholeWidth() {
            free.font.family = "Noto Sans";
            free.font.pixelSize = item.pixelSize;
            free.font.bold = item.bold;
            free.text = item.text.replace(/\r\n/g, " ");
            return free.implicitWidth;
        }

        function left() {
            return label.mapToItem(item, 0, 0).x;
        }

        /** What runs is the whole text: no glyph is missing, and none has been put in its place. */
        function verifyWholeTextRuns() {
            wholeWidth();
            free.color = label.color;
            const whole = Pixels.drawn(Pixels.grab(free));
            compare(Pixels.drawn(Pixels.grab(label)).width, whole.width, "the text that is drawn");
        }

        /** Follows the text over whole passages: from the right edge, none of it on view, until it has left. */
        function verifyPassages() {
            fuzzyCompare(left(), item.width, stride, "the place where the passage begins");
            verifyWholeTextRuns();
            watch.begin();
            const textWidth = wholeWidth();
            tryVerify(function() { return watch.passages > 0 && watch.leftmost + textWidth < stride; }, 20000,
                      "the whole text leaves");
            tryVerify(function() { return watch.rightmost > item.width - stride; }, 20000, "the text comes in from the edge");
            tryVerify(function() { return Math.abs(watch.passageTime - item.scrollDuration) < 0.1 * item.scrollDuration; },
                      20000, "a passage takes its time");
            verify(watch.leftmost + textWidth > -2, "nothing is on view for a while");
            verify(watch.rightmost <= item.width, "the text begins outside the edge");
        }

        function verifyStands() {
            compare(left(), 0);
            watch.begin();
            waitForRendering(stage, 100);
            compare(watch.steps, 0);
            compare(left(), 0);
        }

        function test_shortTextStandsAtTheLeft() {
            marquee({ text: "short" });
            verifyStands();
            verify(sameAsFree());
        }

        /** Whether the box shows all of the text and nothing else. */
        function sameAsFree() {
            wholeWidth();
            free.color = label.color;
            return Pixels.same(Pixels.grab(stage), Pixels.grab(freeStage));
        }

        function test_aPassageBelongsToWhatIsOnViewNow_data() {
            return [
                { tag: "from the start", first: { text: longText } },
                { tag: "short, then long", first: { text: "Hi" }, then: { text: longText } },
                { tag: "empty, then long", first: { text: "" }, then: { text: longText } },
                { tag: "long, then longer", first: { text: longText }, then: { text: longerText } },
                { tag: "longer, then long", first: { text: longerText }, then: { text: longText } },
                { tag: "shortened, then switched on", first: { text: "a text that is a…", scrollingEnabled: false },
                  then: { scrollingEnabled: true, text: longText } },
                { tag: "switched on, then whole", first: { text: "a text that is a…", scrollingEnabled: false },
                  then: { text: longText, scrollingEnabled: true } },
                { tag: "switched on", first: { text: longText, scrollingEnabled: false }, then: { scrollingEnabled: true } },
                { tag: "larger", first: { text: longText, pixelSize: 12 }, then: { pixelSize: 24 } },
                { tag: "larger, had fitted", first: { text: "Half a text", pixelSize: 12 }, then: { pixelSize: 50 } },
                { tag: "smaller", first: { text: longerText, pixelSize: 24 }, then: { pixelSize: 12 } },
                { tag: "bold", first: { text: longText }, then: { bold: true } },
                { tag: "narrower", first: { text: longText, width: 600 }, then: { width: 100 } },
                { tag: "narrower, had run", first: { text: longText, width: 300 }, then: { width: 100 } },
                { tag: "wider", first: { text: longText, width: 100 }, then: { width: 300 } },
                { tag: "at another pace", first: { text: longText, scrollDuration: 100000 }, then: { scrollDuration: 600 } },
                { tag: "hidden and shown", first: { text: longText, visible: false }, then: { visible: true } },
                { tag: "changed while hidden", first: { text: longText, visible: false }, then: { text: longerText, visible: true } },
                { tag: "all at once", first: { text: "Hi", width: 700, scrollingEnabled: false, pixelSize: 30 },
                  then: { text: longText, width: 150, pixelSize: 20, scrollingEnabled: true } },
                { tag: "all at once, the text last", first: { text: "Hi", width: 700, scrollingEnabled: false, pixelSize: 30 },
                  then: { scrollingEnabled: true, pixelSize: 20, width: 150, text: longText } },
                { tag: "there and back", first: { text: longText },
                  then: { text: "Hi", width: 600, scrollingEnabled: false }, last: { scrollingEnabled: true, width: 200, text: longText } },
                { tag: "line breaks", first: { text: "Hi" }, then: { text: longText.replace(/ /g, "\r\n") } }
            ];
        }

        function test_aPassageBelongsToWhatIsOnViewNow(row) {
            marquee(row.first);
            set(row.then);
            set(row.last);
            verifyPassages();
        }

        // The same in the middle of a passage.
        function test_aChangeInThePassageBeginsANewOne_data() {
            return test_aPassageBelongsToWhatIsOnViewNow_data().filter(function(row) {
                return row.then && row.first.visible !== false && row.first.text === longText && !row.first.width
                       && !row.first.scrollDuration && row.first.scrollingEnabled === undefined;
            }).concat([ { tag: "wider", first: { text: longText }, then: { width: 250 } },
                        { tag: "off and on", first: { text: longText }, then: { scrollingEnabled: false }, last: { scrollingEnabled: true } },
                        { tag: "hidden and shown", first: { text: longText }, then: { visible: false }, last: { visible: true } },
                        { tag: "slower", first: { text: longText }, then: { scrollDuration: 900 } } ]);
        }

        function test_aChangeInThePassageBeginsANewOne(row) {
            marquee(row.first);
            tryVerify(function() { return left() < 50; });
            set(row.then);
            set(row.last);
            verifyPassages();
        }

        function test_whatChangesNothingDoesNotDisturbThePassage_data() {
            return [
                { tag: "the same text", values: { text: longText } },
                { tag: "the same size", values: { pixelSize: 20, width: 200, bold: false } },
                { tag: "the same pace", values: { scrollDuration: 2000 } },
                { tag: "another colour", values: { textColor: "green" } },
                { tag: "other line breaks", values: { text: longText.replace(/ /g, "\n") } }
            ];
        }

        function test_whatChangesNothingDoesNotDisturbThePassage(row) {
            marquee({ text: longText, scrollDuration: 2000 });
            tryVerify(function() { return left() < 100; });
            const before = left();
            set(row.values);
            verify(left() <= before);
            const passages = watch.passages;
            tryVerify(function() { return left() < before - stride; });
            compare(watch.passages, passages);
        }

        function test_whatNeedNotRunStands_data() {
            return [
                { tag: "switched off", then: { scrollingEnabled: false } },
                { tag: "short text", then: { text: "Hi" } },
                { tag: "no text", then: { text: "" } },
                { tag: "wider", then: { width: 700 } },
                { tag: "smaller", then: { pixelSize: 6 } },
                { tag: "hidden", then: { visible: false } }
            ];
        }

        function test_whatNeedNotRunStands(row) {
            marquee({ text: longText });
            tryVerify(function() { return left() < 100; });
            set(row.then);
            verifyStands();
        }

        function test_hiddenTextDoesNotRun() {
            marquee({ text: longText });
            stage.visible = false;
            verifyStands();
            stage.visible = true;
            verifyPassages();
        }

        function test_scrollingOffEndsInAnEllipsis() {
            marquee({ text: longText, scrollingEnabled: false });
            verifyStands();
            verify(label.truncated);
            const drawn = Pixels.drawn(Pixels.grab(stage));
            verify(drawn.right <= 250);
        }

        // Glyphs may reach beyond the place that they take in the line, to either side.
        function test_aTextStandsWholeOrRuns_data() {
            const rows = [];
            for (const text of ["Relief", "Half", "Leaf by Leaf", "Ode to Joy", "Hi", "Jazz", "jazz", "AV", "Über", "Tf"]) {
                for (const size of [20, 29, 49]) {
                    for (const bold of [false, true])
                        rows.push({ tag: text + " " + size + (bold ? " bold" : ""), text: text, size: size, bold: bold });
                }
            }
            return rows;
        }

        function test_aTextStandsWholeOrRuns(row) {
            marquee({ text: row.text, pixelSize: row.size, bold: row.bold, width: 700, scrollDuration: 100000 });
            const ink = Pixels.drawn(Pixels.grab(stage));
            let stood = 0;
            let ran = 0;
            // One pixel more than the layout asks for is enough for everything.
            const enough = Math.ceil(label.implicitWidth);
            for (let width = ink.right - 50 - 4; width <= enough + 2; ++width) {
                item.width = width;
                if (left() === 0) {
                    ++stood;
                    verify(!label.truncated, width + " pixels");
                    compare(Pixels.drawn(Pixels.grab(stage)), ink, width + " pixels");
                } else {
                    ++ran;
                    verify(width < enough, width + " pixels");
                    // It comes in from outside.
                    compare(Pixels.drawn(Pixels.grab(stage)).width, 0, width + " pixels");
                }
            }
            verify(ran > 0);
            compare(stood, 3);
            // As wide as it is when it has all the room that it wants.
            wholeWidth();
            compare(ink.width, Pixels.drawn(Pixels.grab(freeStage)).width);
        }

        function test_theLastPixelLeaves_data() {
            return [ { tag: "Relief", text: "Relief" }, { tag: "Half", text: "Half" }, { tag: "Joy", text: "Joy" } ];
        }

        // So slow that hardly a pixel is passed over.
        function test_theLastPixelLeaves(row) {
            marquee({ text: row.text, pixelSize: 49, width: 10, scrollDuration: 3000 });
            wholeWidth();
            const ink = Pixels.drawn(Pixels.grab(freeStage)).right - 50;
            tryVerify(function() { return watch.leftmost + ink < 1; }, 20000);
        }

        function test_aTextRunsInsideItsBoxOnly() {
            marquee({ text: longText });
            let seen = 0;
            while (left() > -200) {
                const drawn = Pixels.drawn(Pixels.grab(stage));
                if (drawn.width > 0) {
                    ++seen;
                    verify(drawn.left >= 50 && drawn.right <= 250, String(drawn));
                }
            }
            verify(seen > 0);
        }

        function test_aTextOfAbsurdLengthIsServed_data() {
            return [
                { tag: "2,000 characters are shown", text: "0123456789".repeat(200), shown: 2000 },
                { tag: "one more is not", text: "0123456789".repeat(200) + "x", shown: 2000 },
                { tag: "a million", text: "0123456789".repeat(100000), shown: 2000 },
                { tag: "a character of two halves at the limit", text: "x".repeat(1999) + "\ud83c\udfb5".repeat(9), shown: 1999 }
            ];
        }

        function test_aTextOfAbsurdLengthIsServed(row) {
            marquee({ text: "Hi" });
            item.text = row.text;
            compare(item.text.length, row.text.length);
            compare(label.text, row.text.substring(0, row.shown));
            fuzzyCompare(left(), 200, stride);
            compare(create("components/Marquee.qml", top, { text: row.text }).scrollDuration, 200 * Math.min(row.text.length, 2000));
        }

        function test_defaults() {
            const plain = create("components/Marquee.qml", top, { text: "0123456789" });
            compare(plain.scrollDuration, 2000);
            verify(plain.scrollingEnabled);
            verify(Qt.colorEqual(plain.textColor, "#ed3131"));
            compare(plain.height, find(plain, "label").height);
        }

        function test_textFromOutsideIsPlainAndOnOneLine_data() {
            return [
                { tag: "tags", text: "<b>x</b><img src='http://192.0.2.1/x.png'>", shown: "<b>x</b><img src='http://192.0.2.1/x.png'>" },
                { tag: "entity", text: "&amp;", shown: "&amp;" },
                { tag: "line breaks", text: "one\r\ntwo\u2028three", shown: "one two three" },
                { tag: "empty", text: "", shown: "" },
                { tag: "right to left", text: "שיר ארוך", shown: "שיר ארוך" },
                { tag: "emoji", text: "\ud83c\udfb5", shown: "\ud83c\udfb5" }
            ];
        }

        function test_textFromOutsideIsPlainAndOnOneLine(row) {
            marquee({ text: row.text, width: 700 });
            verifyStands();
            compare(label.text, row.shown);
            compare(label.lineCount, 1);
            item.text = row.shown;
            verify(sameAsFree());
        }
    }

    /** Remembers how far the label of the item has come. */
    Connections {
        id: watch

        property real leftmost
        property real rightmost
        property int steps
        /** Passages that have ended. */
        property int passages
        /** Milliseconds that the last whole passage took. */
        property real passageTime
        property real former
        property real begun

        function begin() {
            former = testCase.left();
            leftmost = former;
            rightmost = former;
            steps = 0;
            passages = 0;
            passageTime = 0;
            begun = 0;
        }

        function onXChanged() {
            const place = testCase.left();
            ++steps;
            leftmost = Math.min(leftmost, place);
            rightmost = Math.max(rightmost, place);
            if (place > former) {
                const now = Date.now();
                ++passages;
                passageTime = begun > 0 ? now - begun : 0;
                begun = now;
            }
            former = place;
        }

        target: null
    }

    Item {
        id: stage

        width: 800
        height: 100
    }

    Item {
        id: freeStage

        y: 200
        width: 800
        height: 100

        Scene.PageText {
            id: free

            x: 50
        }
    }
}
