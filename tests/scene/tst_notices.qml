// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.Roon 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0

/** What connection failure, zone not found and update page have in common, and what each of them says. */
Item {
    id: top

    width: 1280
    height: 800

    SceneTestCase {
        name: "Notices"

        readonly property var pages: ["RoonConnectionFailure", "RoonZoneNotFound", "UpdateInstalling"]

        function prepare() {
            Navigation.calls = [];
            Player.calls = [];
            Player.wantedZone = "Hugo2X";
            RoonZones.zones = [];
            Roon.localHostName = "velunor";
            Roon.ipAddress = "192.0.2.10";
            ScreenController.width = 800;
            ScreenController.height = 480;
        }

        function cleanupTestCase() {
            prepare();
        }

        function open(page) {
            return create(page + ".qml", top);
        }

        function text(page, name) {
            return find(find(page, name), "text");
        }

        function place(page, name) {
            const item = find(page, name);
            const corner = item.mapToItem(page, 0, 0);
            return { x: corner.x, y: corner.y, width: item.width, height: item.height };
        }

        function comparePlace(page, name, x, y, width, height) {
            const found = place(page, name);
            fuzzyCompare(found.x, x, 0.6, name);
            fuzzyCompare(found.y, y, 0.6, name);
            fuzzyCompare(found.width, width, 0.01, name);
            fuzzyCompare(found.height, height, 0.01, name);
        }

        function sizes(pageNames) {
            const rows = [];
            for (const page of pageNames) {
                for (const size of [[800, 480], [1280, 720], [1280, 800]])
                    rows.push({ tag: page + " " + size[0] + "x" + size[1], page: page, width: size[0], height: size[1] });
            }
            return rows;
        }

        function test_layout_data() {
            return sizes(pages);
        }

        function test_layout(row) {
            const w = row.width;
            const h = row.height;
            ScreenController.width = w;
            ScreenController.height = h;
            const page = open(row.page);
            compare(page.objectName, row.page);
            compare(page.width, w);
            compare(page.height, h);
            verify(Qt.colorEqual(page.color, "#000000"));

            comparePlace(page, "header", 0.05 * w, 0.05 * h, 0.6 * w, 0.15 * h);
            comparePlace(page, "noticeIcon", 0.05 * w, 0.05 * h, 0.09 * w, 0.15 * h);
            const icon = find(find(page, "noticeIcon"), "icon");
            tryCompare(icon, "status", Image.Ready);
            const picture = Pixels.grab(page);
            const colourAt = function(item) {
                return Pixels.brightest(Pixels.part(picture, item.mapToItem(page, 0, 0, item.width, item.height)));
            };
            verify(looksLike(icon, "qrc:/icons/round_error_outline_white_48dp.png"));
            compareColour(colourAt(icon), "#ffffff", "icon");
            const title = find(page, "title");
            compare(title.font.pixelSize, Math.round(0.6 * w / 16));
            compareColour(colourAt(title), "#ffffff", "title");
            verify(place(page, "title").x >= place(page, "noticeIcon").x + 0.09 * w);
            verify(title.contentWidth <= title.width);
            compare(title.fontInfo.pixelSize, title.font.pixelSize);

            for (let i = 0; i < page.lines.length; ++i) {
                comparePlace(page, "line" + i, 0.05 * w, (0.2 + 0.1 * i) * h, 0.9 * w, 0.1 * h);
                const line = text(page, "line" + i);
                compare(line.font.pixelSize, Math.round(0.9 * w / 32));
                compareColour(colourAt(line), line.text === "" ? "black" : "#a8a0a0", "line" + i);
                compare(line.horizontalAlignment, Text.AlignLeft);
                compare(line.lineCount, 1);
                compare(line.fontInfo.pixelSize, line.font.pixelSize);
            }
            comparePlace(page, "hint", 0.05 * w, 0.77 * h, 0.9 * w, 0.08 * h);
            comparePlace(page, "addresses", 0.05 * w, 0.85 * h, 0.9 * w, 0.08 * h);
            for (const name of ["hint", "addresses"]) {
                compare(text(page, name).lineCount, 1);
                compare(text(page, name).fontInfo.pixelSize, Math.round(0.9 * w / 32));
                compareColour(colourAt(text(page, name)), "#a8a0a0", name);
            }
        }

        function test_texts_data() {
            return [
                { tag: "connection failure", page: "RoonConnectionFailure", title: "Connection Failure",
                  lines: ["It seems there's a problem with the connection.",
                          "• Is <b>Roon Core</b> running?",
                          "• Is the <b>Velunor Extension</b> enabled In <b>Roon</b>?"] },
                { tag: "zone not found", page: "RoonZoneNotFound", title: "Zone Not Found",
                  lines: ["We're still waiting for Roon zone <b>Hugo2X</b> to appear...",
                          "• Is the correct zone configured in <b>Velunor?</b>",
                          "• Is the zone enabled in <b>Roon</b>?",
                          "• Is your DAC turned on?"] },
                { tag: "update", page: "UpdateInstalling", title: "Update in progress...",
                  lines: ["", "Good news, your unit is being updated!",
                          "When the update is finished, your unit will restart.", ""] }
            ];
        }

        function test_texts(row) {
            const page = open(row.page);
            compare(find(page, "title").text, row.title);
            compare(find(page, "line" + row.lines.length), null);
            for (let i = 0; i < row.lines.length; ++i)
                compare(text(page, "line" + i).text, row.lines[i]);
            compare(text(page, "hint").text, "For configuring <b>Velunor</b> you can point your browser to:");
            compare(text(page, "addresses").text, "<b>http://velunor.local</b> or <b>http://192.0.2.10</b>");
        }

        function test_outlinesShowOnlyOnRequest() {
            const page = open("RoonZoneNotFound");
            const boxes = ["header", "noticeIcon", "line0", "line3", "hint", "addresses", "chooserBox"];
            for (const outlined of [false, true]) {
                page.gl_show_debug_lines = outlined;
                const picture = Pixels.grab(page);
                for (const name of boxes) {
                    const box = place(page, name);
                    // The middle of the right edge, where the frame of two pixels covers a whole one.
                    const edge = Pixels.at(picture, Math.ceil(box.x + box.width) - 2, Math.floor(box.y + box.height / 2));
                    compareColour(edge, outlined ? "cyan" : "black", name);
                }
            }
        }

        function test_longHostNamesAreNotCut_data() {
            return [ { tag: "40 characters", name: "a-host-name-that-has-forty-characters-xy" },
                     { tag: "40 wide ones", name: "w".repeat(40) }, { tag: "63 characters", name: "n".repeat(63) } ];
        }

        function test_longHostNamesAreNotCut(row) {
            for (const width of [800, 1280]) {
                ScreenController.width = width;
                Roon.localHostName = row.name;
                const page = open("RoonConnectionFailure");
                const addresses = text(page, "addresses");
                verify(!addresses.truncated);
                verify(addresses.contentWidth <= addresses.width);
                verify(addresses.contentHeight <= addresses.height);
            }
        }

        function test_namesFromOutsideShowAsTheyAre_data() {
            return [ { tag: "plain", name: "Hugo2X" },
                     { tag: "tags", name: "<b>Bath</b>" },
                     { tag: "picture", name: "<img src='x'>" },
                     { tag: "end of the bold part", name: "</b>Bath" },
                     { tag: "entities", name: "&amp; &lt;3" },
                     { tag: "quotes", name: "\"Bath\" 'Hall'" },
                     { tag: "lone signs", name: "a < b & c > d" },
                     { tag: "percent", name: "100 %1 %2" },
                     { tag: "accents", name: "Küche Ærø" } ];
        }

        function test_namesFromOutsideShowAsTheyAre(row) {
            Player.wantedZone = row.name;
            Roon.localHostName = row.name;
            const page = open("RoonZoneNotFound");
            const line = text(page, "line0");
            compare(line.textFormat, Text.StyledText);
            before.font.pixelSize = line.font.pixelSize;
            after.font.pixelSize = line.font.pixelSize;
            bold.font.pixelSize = line.font.pixelSize;
            bold.text = row.name;
            fuzzyCompare(line.contentWidth, before.advanceWidth + bold.advanceWidth + after.advanceWidth, 4);
            verify(text(page, "addresses").text.indexOf("http://192.0.2.10") > 0);
            verify(row.name.indexOf("<") < 0 || text(page, "addresses").text.indexOf(row.name) < 0);
        }

        function test_aNameWithoutEndIsLaidOutInPart() {
            Player.wantedZone = "0123456789".repeat(100000);
            verify(text(open("RoonZoneNotFound"), "line0").text.length < 2100);
        }

        function test_longNamesStayInTheirLine_data() {
            return [ { tag: "300 characters", name: "A zone with a name ".repeat(16).substring(0, 300) },
                     { tag: "300 without a blank", name: "x".repeat(300) },
                     { tag: "300 entities", name: "&".repeat(300) },
                     { tag: "right to left", name: "غرفة المعيشة" },
                     { tag: "emoji", name: "Bath 🛁🎵👩‍👩‍👧" },
                     { tag: "Chinese", name: "起居室的音響系統" },
                     { tag: "many lines", name: "a\nb\r\nc\u2028d" } ];
        }

        function test_longNamesStayInTheirLine(row) {
            for (const size of [[800, 480], [1280, 720], [1280, 800]]) {
                ScreenController.width = size[0];
                ScreenController.height = size[1];
                Player.wantedZone = row.name;
                const line = text(open("RoonZoneNotFound"), "line0");
                verify(line.contentWidth <= line.width);
                verify(line.contentHeight <= line.height, line.contentHeight + " in " + line.height);
            }
        }

        function test_connectionFailureCyclesAtATouchAnywhere_data() {
            return [ { tag: "middle", x: 400, y: 240 }, { tag: "left top", x: 1, y: 1 },
                     { tag: "right bottom", x: 799, y: 479 } ];
        }

        function test_connectionFailureCyclesAtATouchAnywhere(row) {
            const page = open("RoonConnectionFailure");
            tap(page, row.x, row.y);
            compare(Navigation.calls, ["cycleDisplayOutput"]);
            verify(logged("info: onClicked()"));
        }

        function test_theUpdatePageCannotBeLeft() {
            const page = open("UpdateInstalling");
            for (const y of [30, 240, 400])
                tap(page, 400, y);
            compare(Navigation.calls, []);
        }

        TextMetrics {
            id: before

            font.family: "Noto Sans"
            text: "We're still waiting for Roon zone "
        }

        TextMetrics {
            id: bold

            font { family: "Noto Sans"; bold: true }
        }

        TextMetrics {
            id: after

            font.family: "Noto Sans"
            text: " to appear..."
        }
    }
}
