// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "AlbumAndArtist"

        readonly property string longText: "a name that is a good deal wider than the box that it has to run through"
        property var lines: null

        function prepare() {
            lines = create("AlbumAndArtist.qml", top, {
                x: 10, y: 20, width: 300, height: 100, album: "Kind of Blue", albumSize: 20, artist: "Miles Davis", artistSize: 24
            });
        }

        function line(name) {
            const found = find(lines, name);
            verify(found !== null, name);
            return found;
        }

        function label(name) {
            return find(line(name), "label");
        }

        function test_albumStandsAboveTheArtist() {
            compare(label("album").text, "Kind of Blue");
            compare(label("artist").text, "Miles Davis");
            compare(label("album").font.pixelSize, 20);
            compare(label("artist").font.pixelSize, 24);
            lines.album = "";
            lines.artist = "Bill Evans";
            compare(label("album").text, "");
            compare(label("artist").text, "Bill Evans");
        }

        function test_eachHasOneHalf_data() {
            return [
                { tag: "as made", width: 300, height: 100 },
                { tag: "smaller", width: 120, height: 31 },
                { tag: "nothing", width: 0, height: 0 }
            ];
        }

        function test_eachHasOneHalf(row) {
            lines.width = row.width;
            lines.height = row.height;
            compare(line("album").mapToItem(lines, 0, 0, line("album").width, line("album").height),
                    Qt.rect(0, 0, row.width, row.height / 2));
            compare(line("artist").mapToItem(lines, 0, 0, line("artist").width, line("artist").height),
                    Qt.rect(0, row.height / 2, row.width, row.height / 2));
        }

        function test_longNamesRunAtTheirOwnPace() {
            for (const name of ["album", "artist"]) {
                const marquee = find(line(name), "marquee");
                verify(!marquee.scrolling, name);
                lines[name] = longText;
                verify(marquee.scrolling, name);
                compare(marquee.scrollDuration, name === "album" ? 8000 : 10000);
            }
        }

        function test_scrollingOffStopsBoth() {
            lines.album = longText;
            lines.artist = longText;
            lines.scrollingEnabled = false;
            for (const name of ["album", "artist"]) {
                verify(!find(line(name), "marquee").scrolling, name);
                verify(label(name).truncated, name);
            }
        }

        function test_outlinesShowTheBoxes() {
            for (const outlined of [false, true]) {
                lines.outlined = outlined;
                compare(line("album").border.width > 0, outlined);
                compare(line("artist").border.width > 0, outlined);
            }
        }
    }
}
