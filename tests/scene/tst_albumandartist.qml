// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import SceneTest 1.0

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "AlbumAndArtist"

        readonly property string longText: "a name that is a good deal wider than the box that it has to run through"
        property var lines: null

        function prepare() {
            lines = create("components/AlbumAndArtist.qml", top, {
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

        function test_longNamesRunAndShortOnesStand() {
            for (const name of ["album", "artist"]) {
                compare(left(name), 0);
                lines[name] = longText;
                tryVerify(function() { return left(name) < 250; });
                tryVerify(function() { return left(name) < 200; });
                lines[name] = "short";
                compare(left(name), 0);
            }
        }

        /** Where the text begins in its line. */
        function left(name) {
            return label(name).mapToItem(line(name), 0, 0).x;
        }

        function test_scrollingOffStopsBoth() {
            lines.album = longText;
            lines.artist = longText;
            lines.scrollingEnabled = false;
            waitForRendering(lines, 100);
            for (const name of ["album", "artist"]) {
                compare(left(name), 0, name);
                verify(label(name).truncated, name);
            }
        }

        function test_outlinesShowTheBoxes() {
            for (const outlined of [false, true]) {
                lines.outlined = outlined;
                const picture = Pixels.grab(lines);
                for (const y of [0, 49, 51, 99])
                    compare(Qt.colorEqual(Pixels.at(picture, 150, y), "cyan"), outlined, y);
            }
        }
    }
}
