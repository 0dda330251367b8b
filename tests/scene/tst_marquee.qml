// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "Marquee"

        readonly property string longText: "a text that is a good deal wider than the box that it has to run through"

        function marquee(properties) {
            return create("Marquee.qml", top, Object.assign({ width: 200, pixelSize: 20, scrollDuration: 400 }, properties));
        }

        function test_shortTextStandsAtTheLeft() {
            const item = marquee({ text: "short" });
            const label = find(item, "label");
            verify(!item.scrolling);
            verify(!find(item, "passage").running);
            compare(label.x, 0);
            compare(label.text, "short");
            verify(!label.truncated);
        }

        function test_longTextRunsFromTheRightEdgeUntilItHasLeft() {
            const item = marquee({ text: longText });
            const label = find(item, "label");
            const passage = find(item, "passage");
            verify(item.scrolling);
            verify(passage.running);
            verify(passage.loops < 0); // endless
            compare(passage.from, 200);
            compare(passage.to, -label.width);
            verify(label.width > 200);
            verify(!label.truncated);
            tryVerify(function() { return label.x < 0; });
            tryVerify(function() { return label.x > 0; });
        }

        function test_scrollingOffStandsAndEndsInAnEllipsis() {
            const item = marquee({ text: longText, scrollingEnabled: false });
            const label = find(item, "label");
            verify(!find(item, "passage").running);
            compare(label.x, 0);
            verify(label.truncated);
        }

        function test_switchingScrollingMovesAndStopsTheText() {
            const item = marquee({ text: longText });
            const label = find(item, "label");
            tryVerify(function() { return label.x < 150; });
            item.scrollingEnabled = false;
            verify(!find(item, "passage").running);
            compare(label.x, 0);
            item.scrollingEnabled = true;
            verify(find(item, "passage").running);
            verify(label.x > 150);
            verify(!label.truncated);
        }

        function test_newTextBeginsItsPassageAtTheRightEdge() {
            const item = marquee({ text: longText, scrollDuration: 100000 });
            const label = find(item, "label");
            item.text = "another " + longText;
            verify(find(item, "passage").running);
            compare(find(item, "passage").to, -label.width);
            tryVerify(function() { return label.x > 190; });
            item.text = "short";
            verify(!find(item, "passage").running);
            compare(label.x, 0);
        }

        function test_hiddenTextDoesNotRun() {
            const item = marquee({ text: longText });
            item.visible = false;
            verify(!find(item, "passage").running);
            item.visible = true;
            verify(find(item, "passage").running);
        }

        function test_widerBoxStopsTheText() {
            const item = marquee({ text: longText });
            item.width = 5000;
            verify(!find(item, "passage").running);
            compare(find(item, "label").x, 0);
        }

        function test_defaults() {
            const item = create("Marquee.qml", top, { text: "0123456789" });
            compare(item.scrollDuration, 2000);
            verify(item.scrollingEnabled);
            verify(Qt.colorEqual(item.textColor, "#ed3131"));
            verify(item.clip);
            compare(item.height, find(item, "label").height);
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
            const label = find(marquee({ text: row.text }), "label");
            compare(label.textFormat, Text.PlainText);
            compare(label.text, row.shown);
            compare(label.lineCount, 1);
            compare(label.x === 0 || label.x > 100, true);
        }
    }
}
