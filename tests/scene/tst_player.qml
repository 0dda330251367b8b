// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0
import Velunor.VelunorState 1.0

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "PlayerPage"

        readonly property var stopped: ({
            roonState: "init", song: "", artist: "", album: "", imageKey: "", seekPosition: 0, length: 0, zone: "UNKNOWN",
            autoRadio: false, loop: "disabled", shuffle: false, volumeAvailable: true, volume: 0, limitMinVolume: 0,
            limitMaxVolume: 100, limitSoftVolume: 80, volumeStep: 1, volumeDisplayPrecision: 0, queueItemsRemaining: 0,
            prevAllowed: false, nextAllowed: false, pauseAllowed: false, playAllowed: false, seekAllowed: false
        })
        readonly property var playing: ({
            roonState: "playing", song: "Blue in Green", artist: "Miles Davis", album: "Kind of Blue", imageKey: "abc",
            seekPosition: 125, length: 337, zone: "Kitchen", prevAllowed: true, nextAllowed: true, pauseAllowed: true,
            seekAllowed: true, queueItemsRemaining: 4
        })
        property var page: null

        function prepare() {
            ScreenController.width = 800;
            ScreenController.height = 480;
            Settings.scrolling = true;
            Settings.hideOptionsButtons = false;
            VelunorState.UpdateAvailable = false;
            VelunorState.UpdateInstalling = false;
            RoonZones.zones = ["Bath", "Kitchen"];
            set(stopped);
            open();
        }

        function open() {
            page = create("RoonPlayerWindow2.qml", top);
            tryCompare(item("coverPicture"), "status", Image.Ready);
            waitForCells();
            Messages.clear();
            Player.calls = [];
            Navigation.calls = [];
        }

        /** The cells of the rows find their places when the next frame is prepared. */
        function waitForCells() {
            tryVerify(function() {
                return item("loop").x === 2 * item("loop").width && item("next").x === 2 * item("next").width;
            });
        }

        function set(values) {
            for (const name in values)
                Player[name] = values[name];
        }

        function item(name) {
            const found = find(page, name);
            verify(found !== null, name);
            return found;
        }

        function icon(name) {
            return find(item(name), "icon");
        }

        function text(name) {
            return find(item(name), "label").text;
        }

        /** What stands out where it lies on the page: black is nothing. */
        function colour(it) {
            return colourOnView(page, it);
        }

        function shown(it) {
            return colour(it).hsvValue > 0;
        }

        /** Where the item lies on the page. */
        function area(name) {
            const it = item(name);
            return it.mapToItem(page, 0, 0, it.width, it.height);
        }

        // Half a pixel is left to the rounding of centred boxes.
        function compareArea(name, x, y, width, height) {
            const found = area(name);
            fuzzyCompare(found.x, x, 0.51, name + " x");
            fuzzyCompare(found.y, y, 0.51, name + " y");
            fuzzyCompare(found.width, width, 0.51, name + " width");
            fuzzyCompare(found.height, height, 0.51, name + " height");
        }

        function tapPage(x, y) {
            tap(page, x, y);
        }

        function test_boxesLieWhereTheyBelong_data() {
            return [
                { tag: "800x480", sw: 800, sh: 480 },
                { tag: "1280x800", sw: 1280, sh: 800 },
                { tag: "1280x720", sw: 1280, sh: 720 }
            ];
        }

        function test_boxesLieWhereTheyBelong(row) {
            ScreenController.width = row.sw;
            ScreenController.height = row.sh;
            waitForCells();
            const margin = 0.01 * row.sh;
            const side = 0.5 * row.sw;
            const left = margin + side + 0.01 * row.sw;
            const w = row.sw - margin - left;
            const h = side;
            const top = row.sh - margin - h;
            const middle = left + w / 2;
            compareArea("RoonPlayerWindow2", 0, 0, row.sw, row.sh);
            compareArea("cover", margin, top, side, side);
            compareArea("coverPicture", margin + 4, top + 4, side - 8, side - 8);
            compareArea("settingsCorner", 0.9 * row.sw, row.sh - row.sw / 10, row.sw / 10, row.sw / 10);
            compareArea("cycleCorner", 0.9 * row.sw, 0, row.sw / 10, row.sw / 10);
            compareArea("songTitle", 0.01 * row.sw, 0, 0.98 * row.sw, top);
            compareArea("album", left, top, w, 0.12 * h);
            compareArea("artist", left, top + 0.12 * h, w, 0.12 * h);
            compareArea("volumeBox", middle - 0.25 * w, top + 0.23 * h, 0.5 * w, 0.15 * h);
            compareArea("optionRow", middle - 0.375 * w, top + 0.33 * h, 0.75 * w, 0.22 * h);
            compareArea("radio", middle - 0.375 * w, top + 0.33 * h, 0.25 * w, 0.22 * h);
            compareArea("shuffle", middle - 0.125 * w, top + 0.33 * h, 0.25 * w, 0.22 * h);
            compareArea("loop", middle + 0.125 * w, top + 0.33 * h, 0.25 * w, 0.22 * h);
            compareArea("transportRow", middle - 0.375 * w, top + 0.56 * h, 0.75 * w, 0.22 * h);
            compareArea("playPause", middle - 0.125 * w, top + 0.56 * h, 0.25 * w, 0.22 * h);
            compareArea("updateBadge", middle - 0.2 * w, top + 0.78 * h, 0.4 * w, 0.07 * h);
            compareArea("bottomLine", left, top + 0.86 * h, w, 0.1 * h);
            compareArea("seekPosition", left, top + 0.86 * h, 0.3 * w, 0.1 * h);
            compareArea("zoneName", middle - 0.3 * w, top + 0.86 * h, 0.6 * w, 0.1 * h);
            compareArea("length", left + 0.7 * w, top + 0.86 * h, 0.3 * w, 0.1 * h);
            compareArea("progressBar", left, top + 0.97 * h, w, 0.03 * h);
            const title = find(item("songTitle"), "label");
            compare(title.font.pixelSize, Math.round(top / (row.sw === 800 ? 1.7 : 1.4)));
            compare(title.font.bold, true);
            const cell = Math.min(0.25 * w, 0.22 * h);
            compare(icon("radio").width, Math.round(0.4 * cell));
            compare(icon("next").width, Math.round(0.8 * cell));
            compare(icon("playPause").width, Math.round(cell));
        }

        function test_linesRunAtTheirOwnPace_data() {
            return [
                { tag: "title", line: "songTitle", duration: 18000 },
                { tag: "album", line: "album", duration: 8000 },
                { tag: "artist", line: "artist", duration: 10000 }
            ];
        }

        function test_linesRunAtTheirOwnPace(row) {
            const endless = "a name that is a good deal wider than the screen, which it has to run through ".repeat(2);
            set(playing);
            set({ song: endless, album: endless, artist: endless });
            const label = find(item(row.line), "label");
            const box = find(item(row.line), "marquee");
            verify(label.implicitWidth > box.width);
            pace.begin(label, box);
            tryVerify(function() { return pace.steps > 30; });
            pace.target = null;
            fuzzyCompare((box.width + label.implicitWidth) / pace.speed(), row.duration, 0.05 * row.duration);
        }

        function test_scrollingOffShowsTheBeginningsAtRest() {
            Settings.scrolling = false;
            const endless = "a name that is a good deal wider than the screen, which it has to run through ".repeat(2);
            set(playing);
            set({ song: endless, album: endless, artist: endless });
            waitForRendering(page, 100);
            for (const name of ["songTitle", "album", "artist"]) {
                const label = find(item(name), "label");
                compare(label.mapToItem(find(item(name), "marquee"), 0, 0).x, 0);
                verify(label.truncated);
            }
        }

        function test_outlinesAreOffUntilWanted() {
            // A change lights up the volume box, which would hardly be seen otherwise.
            Player.volume = 5;
            for (const outlined of [false, true]) {
                page.gl_show_debug_lines = outlined;
                const picture = Pixels.grab(page);
                for (const name of ["album", "volumeBox", "optionRow", "radio", "transportRow", "next", "zoneName", "songTitle"]) {
                    const box = area(name);
                    // Where the frame of two pixels covers a whole one, and no text and no icon is.
                    const edge = Pixels.at(picture, Math.floor(box.x) + 1, Math.floor(box.y + 0.25 * box.height));
                    const red = name === "transportRow" || name === "next";
                    compareColour(edge, !outlined ? "black" : red ? "red" : "cyan", name);
                }
            }
        }

        function test_nothingPlaying_data() {
            return [
                { tag: "start", values: {}, nothing: true },
                { tag: "stopped", values: { roonState: "stopped", song: "last" }, nothing: true },
                { tag: "paused without play", values: { roonState: "paused", song: "last" }, nothing: true },
                { tag: "playing", values: { roonState: "playing" }, nothing: false },
                { tag: "loading", values: { roonState: "loading" }, nothing: false },
                { tag: "queue", values: { roonState: "stopped", queueItemsRemaining: 1 }, nothing: false },
                { tag: "play allowed", values: { roonState: "stopped", playAllowed: true }, nothing: false }
            ];
        }

        function test_nothingPlaying(row) {
            set({ song: "S", artist: "A", album: "B", imageKey: "abc" });
            set(row.values);
            compare(text("songTitle"), row.nothing ? "Nothing Playing" : Player.song);
            compare(text("artist"), row.nothing ? "" : "A");
            compare(text("album"), row.nothing ? "" : "B");
            const picture = "image://velunor/" + (row.nothing ? "__VELUNOR_LOGO__" : "abc");
            tryVerify(function() { return looksLike(item("coverPicture"), picture); });
            verify(shown(item("coverPicture")));
            tryCompare(item("backgroundPicture"), "source", picture);
        }

        function test_pictureFollowsTheKey() {
            set(playing);
            tryVerify(function() { return looksLike(item("coverPicture"), "image://velunor/abc"); });
            compare(item("coverPicture").fillMode, Image.PreserveAspectFit);
            verify(!item("coverPicture").smooth);
            compare(item("backgroundPicture").fillMode, Image.PreserveAspectCrop);
            verify(!item("backgroundPicture").visible);
            verify(!item("coverPicture").cache);
            verify(!item("backgroundPicture").cache);
            Messages.clear();
            Player.imageKey = "def";
            tryVerify(function() { return logged("debug: imageBlurredBackground::onStatusChanged() img loaded"); });
            verify(looksLike(item("coverPicture"), "image://velunor/def"));
            verify(!looksLike(item("coverPicture"), "image://velunor/abc"));
        }

        function test_aPictureThatCannotBeShownIsLogged() {
            set(playing);
            Player.imageKey = "broken";
            tryVerify(function() { return logged("critical: imageBlurredBackground::onStatusChanged() ERROR!"); });
            compare(Messages.complaints.filter(function(line) { return line.indexOf("Failed to get image") < 0; }).length, 1);
            Messages.clear();
        }

        function test_blurIsThereOnlyWhileWanted() {
            compare(item("blur").item, null);
        }

        function test_touches_data() {
            return [
                { tag: "cover", on: "cover", calls: "navigation cycleDisplayOutput", line: "info: CoverArt clicked" },
                { tag: "settings corner", on: "settingsCorner", x: 78, y: 78, calls: "navigation clickedGotoSettings" },
                { tag: "cycle corner", on: "cycleCorner", calls: "navigation cycleDisplayOutput" },
                { tag: "radio", on: "radio", calls: "clickedRadioButton" },
                { tag: "shuffle", on: "shuffle", calls: "clickedShuffleButton" },
                { tag: "loop", on: "loop", calls: "clickedLoopButton" },
                { tag: "previous", on: "previous", calls: "prev" },
                { tag: "play", on: "playPause", calls: "playPause", line: "debug: PlayerWindow: playPause clicked" },
                { tag: "next", on: "next", calls: "next" },
                { tag: "title", on: "songTitle", x: 300, calls: "" },
                { tag: "artist", on: "artist", y: 20, calls: "" },
                { tag: "progress bar", on: "progressBar", x: 20, calls: "" },
                { tag: "radio, 9 pixels beyond its left edge", on: "radio", x: -9, calls: "clickedRadioButton" },
                { tag: "radio, 9 pixels above", on: "radio", x: 5, y: -9, calls: "clickedRadioButton" },
                { tag: "radio, 11 pixels beyond its left edge", on: "radio", x: -11, calls: "" },
                { tag: "shuffle, where radio reaches into it", on: "shuffle", x: 5, calls: "clickedShuffleButton" },
                { tag: "shuffle does not reach upwards", on: "loop", x: 90, y: -5, calls: "" },
                { tag: "previous, 9 pixels beyond its left edge", on: "previous", x: -9, calls: "prev" },
                { tag: "previous lies over radio", on: "radio", x: 40, y: 84, calls: "prev" },
                { tag: "play, where previous reaches into it", on: "playPause", x: 5, calls: "playPause" },
                { tag: "next reaches into play", on: "playPause", x: 91, calls: "next" },
                { tag: "next, 9 pixels below", on: "next", y: 97, calls: "next" },
                { tag: "options lie over the volume box", on: "shuffle", y: 5, calls: "clickedShuffleButton" }
            ];
        }

        function test_touches(row) {
            tap(item(row.on), row.x, row.y);
            const calls = Player.calls.concat(Navigation.calls.map(function(call) { return "navigation " + call; }));
            compare(calls.join(", "), row.calls);
            if (row.line)
                verify(logged(row.line), Messages.all.join("\n"));
            verify(!item("volumeDialog").visible);
            verify(!item("zoneDialog").visible);
        }

        function test_aSecondFingerDoesNotDisturbTheFirst() {
            const play = item("playPause");
            const cover = item("cover");
            const touch = touchEvent(page);
            touch.press(1, play, 50, 40).commit();
            touch.stationary(1).press(2, cover, 100, 100).commit();
            touch.stationary(1).release(2, cover, 100, 100).commit();
            touch.release(1, play, 50, 40).commit();
            compare(Player.calls, ["playPause"]);
            tap(item("next"));
            compare(Player.calls, ["playPause", "next"]);
        }

        function test_aFingerThatLeavesItsAreaCallsNothing() {
            drag(item("playPause"), 50, 40, -200, 40);
            compare(Player.calls, []);
        }

        function test_hiddenIconsStillAnswer() {
            Settings.hideOptionsButtons = true;
            for (const name of ["radio", "shuffle", "loop", "previous", "playPause", "next"]) {
                verify(!shown(icon(name)), name);
                tap(item(name));
            }
            compare(Player.calls, ["clickedRadioButton", "clickedShuffleButton", "clickedLoopButton", "prev", "playPause", "next"]);
        }

        /** Whether the "1" is on view, of which only the left part is not over the icon. */
        function oneShown() {
            const box = area("loopOne");
            const width = icon("loop").mapToItem(page, 0, 0).x - box.x;
            return Pixels.brightest(Pixels.part(Pixels.grab(page), Qt.rect(box.x, box.y, width, box.height))).hsvValue > 0;
        }

        function test_optionIcons_data() {
            return [
                { tag: "off", values: {}, radio: "white", shuffle: "white", loop: "white", one: false },
                { tag: "radio", values: { autoRadio: true }, radio: "blue", shuffle: "white", loop: "white", one: false },
                { tag: "shuffle", values: { shuffle: true }, radio: "white", shuffle: "blue", loop: "white", one: false },
                { tag: "loop", values: { loop: "loop" }, radio: "white", shuffle: "white", loop: "blue", one: false },
                { tag: "loop one", values: { loop: "loop_one" }, radio: "white", shuffle: "white", loop: "blue", one: true }
            ];
        }

        function test_optionIcons(row) {
            set(row.values);
            verify(looksLike(icon("radio"), "qrc:/icons/ic_radio_" + row.radio + "_48dp.png"));
            verify(looksLike(icon("shuffle"), "qrc:/icons/ic_shuffle_" + row.shuffle + "_48dp.png"));
            verify(looksLike(icon("loop"), "qrc:/icons/ic_loop_" + row.loop + "_48dp.png"));
            for (const name of ["radio", "shuffle", "loop"]) {
                const found = colour(icon(name));
                if (row[name] === "white")
                    compareColour(found, Qt.rgba(0.9, 0.9, 0.9, 1), name);
                else
                    verify(found.b > 0.8 * 0.9 && found.r < 0.5, name + " is " + found);
            }
            compare(oneShown(), row.one);
        }

        function test_optionIconsHide_data() {
            return [
                { tag: "playing", state: "playing", setting: false, visible: true },
                { tag: "paused", state: "paused", setting: false, visible: true },
                { tag: "stopped", state: "stopped", setting: false, visible: false },
                { tag: "hidden by the setting", state: "playing", setting: true, visible: false }
            ];
        }

        function test_optionIconsHide(row) {
            set({ roonState: row.state, loop: "loop_one" });
            Settings.hideOptionsButtons = row.setting;
            for (const name of ["radio", "shuffle", "loop"])
                compare(shown(icon(name)), row.visible, name);
            compare(oneShown(), row.visible);
        }

        function test_transportIcons_data() {
            return [
                { tag: "playing", values: { roonState: "playing", seekAllowed: true }, icon: "pause" },
                { tag: "playing a stream", values: { roonState: "playing", seekAllowed: false }, icon: "stop" },
                { tag: "paused", values: { roonState: "paused", seekAllowed: true }, icon: "play_arrow" },
                { tag: "loading", values: { roonState: "loading", seekAllowed: true }, icon: "play_arrow" }
            ];
        }

        function test_transportIcons(row) {
            set(row.values);
            set({ prevAllowed: true, nextAllowed: true, playAllowed: true });
            verify(looksLike(icon("playPause"), "qrc:/icons/round_" + row.icon + "_white_48dp.png"));
            verify(looksLike(icon("previous"), "qrc:/icons/round_skip_previous_white_48dp.png"));
            verify(looksLike(icon("next"), "qrc:/icons/round_skip_next_white_48dp.png"));
            compareColour(colour(icon("playPause")), "white");
            for (const name of ["previous", "next"])
                compareColour(colour(icon(name)), Qt.rgba(0.9, 0.9, 0.9, 1), name);
        }

        function test_permissionsShowAndHide_data() {
            return [
                { tag: "nothing allowed", values: {}, visible: [] },
                { tag: "previous", values: { prevAllowed: true }, visible: ["previous"] },
                { tag: "next", values: { nextAllowed: true }, visible: ["next"] },
                { tag: "play", values: { playAllowed: true }, visible: ["playPause", "seekPosition", "progressBar"] },
                { tag: "pause", values: { pauseAllowed: true }, visible: ["playPause", "seekPosition", "progressBar"] },
                { tag: "pause and seek", values: { pauseAllowed: true, seekAllowed: true },
                  visible: ["playPause", "seekPosition", "progressBar", "length"] },
                { tag: "pause and queue", values: { pauseAllowed: true, queueItemsRemaining: 2 },
                  visible: ["playPause", "seekPosition", "progressBar", "length"] },
                { tag: "seek alone", values: { seekAllowed: true }, visible: [] }
            ];
        }

        function test_permissionsShowAndHide(row) {
            set(row.values);
            for (const name of ["previous", "next", "playPause"])
                compare(shown(icon(name)), row.visible.indexOf(name) >= 0, name);
            // The name of the zone may reach into the boxes of the times.
            Player.zone = "";
            for (const name of ["seekPosition", "length", "progressBar"])
                compare(shown(item(name)), row.visible.indexOf(name) >= 0, name);
        }

        function test_bottomLineTexts() {
            set(playing);
            compare(item("seekPosition").text, "2:05");
            compare(item("length").text, "5:37");
            compare(item("zoneNameText").text, "Kitchen");
            Player.seekPosition = 126;
            compare(item("seekPosition").text, "2:06");
            Player.zone = "Kitchen + Bath + Living Room + Bedroom + Hall";
            verify(item("zoneNameText").truncated);
            compare(item("zoneNameText").elide, Text.ElideRight);
            Player.zone = "0123456789".repeat(100000);
            compare(item("zoneNameText").text.length, 2000); // as much as is laid out
        }

        function test_progress_data() {
            return [
                { tag: "unknown length", position: 12, length: 0, part: 0 },
                { tag: "start", position: 0, length: 200, part: 0 },
                { tag: "half", position: 100, length: 200, part: 0.5 },
                { tag: "third", position: 100, length: 300, part: 1 / 3 },
                { tag: "end", position: 200, length: 200, part: 1 },
                { tag: "beyond the end", position: 300, length: 200, part: 1 }
            ];
        }

        function test_progress(row) {
            set({ pauseAllowed: true, seekPosition: row.position, length: row.length });
            const bar = item("progressBar");
            const picture = Pixels.grab(bar);
            const middle = Math.round(bar.height / 2);
            let filled = 0;
            while (filled + 1 < Math.floor(bar.width) && Qt.colorEqual(Pixels.at(picture, filled + 1, middle), "#5A9BE3"))
                ++filled;
            fuzzyCompare(filled, Math.floor(row.part * bar.width), 1);
            // Nothing of it is beside the bar.
            const beside = Pixels.grab(page);
            const place = area("progressBar");
            compareColour(Pixels.at(beside, place.x + place.width + 2, place.y + middle), "black");
        }

        function test_framesAsDrawn() {
            const rows = [
                { box: "cover", colour: "#a8a0a0", width: 4, radius: 1 },
                { box: "updateBadge", colour: "black", width: 1, radius: 10 },
                { box: "progressBar", colour: "#5A9BE3", width: 1, radius: 1 }
            ];
            VelunorState.UpdateAvailable = true;
            set({ pauseAllowed: true, length: 100 });
            for (const row of rows) {
                const picture = Pixels.grab(item(row.box));
                const middle = Math.round(item(row.box).height / 2);
                for (let x = 0; x < row.width; ++x)
                    compareColour(Pixels.at(picture, x, middle), row.colour, row.box);
                verify(!Qt.colorEqual(Pixels.at(picture, row.width, middle), row.colour), row.box);
                compare(item(row.box).radius, row.radius, row.box);
            }
            compareColour(colour(item("updateBadge")), "orange");
        }

        function test_updateBadge_data() {
            return [
                { tag: "none", available: false, installing: false, visible: false },
                { tag: "available", available: true, installing: false, visible: true },
                { tag: "installing", available: true, installing: true, visible: false }
            ];
        }

        function test_updateBadge(row) {
            VelunorState.UpdateAvailable = row.available;
            VelunorState.UpdateInstalling = row.installing;
            compareColour(colour(item("updateBadge")), row.visible ? "orange" : "black");
            tap(item("updateBadge"));
            compare(Player.calls.join(), row.visible ? "installUpdate" : "");
            compare(logged("debug: update clicked"), row.visible);
        }

        function test_volumeTextHasTheWantedDecimals() {
            Player.volume = 33;
            compare(item("volumeText").text, "33");
            // As the player does it: the step is reported before the decimals that it means are decided.
            set({ volume: -32.5, volumeStep: 0.5, volumeDisplayPrecision: 1 });
            tryCompare(item("volumeText"), "text", "-32.5");
            compare(find(item("volumeDialog"), "currentText").text, "-32.5");
            Player.volume = NaN;
            compare(item("volumeText").text, "");
        }

        function test_volumeBoxNeedsAVolume() {
            verify(shown(item("volumeIcon")));
            Player.volumeAvailable = false;
            verify(!shown(item("volumeIcon")));
        }

        function test_aVolumeChangeLightsTheBoxForAMoment() {
            const box = item("volumeIcon");
            const timer = item("highlightTimer");
            compare(timer.interval, 2500);
            verify(!timer.repeat);
            const dim = Qt.rgba(0.1, 0.1, 0.1, 1);
            compareColour(colour(box), dim);
            Player.volume = 20;
            compareColour(colour(box), "white");
            // A further change begins the time anew.
            timer.interval = 50;
            Player.volume = 21;
            compareColour(colour(box), "white");
            tryVerify(function() { return colour(box).hsvValue < 0.2; });
            compareColour(colour(box), dim);
            timer.interval = 2500;
            Player.volume = 22;
            compareColour(colour(box), "white");
        }

        function openVolumeDialog() {
            tap(item("volumeBox"), 10, 10);
            const dialog = item("volumeDialog");
            tryCompare(dialog, "opened", true);
            return dialog;
        }

        function test_volumeDialogSpeaksToThePlayer() {
            Player.volume = 40;
            const dialog = openVolumeDialog();
            compare(Player.calls, []);
            tap(find(dialog, "volumeDown"));
            tap(find(dialog, "volumeUp"));
            compare(Player.calls, ["commandVolumeDown", "commandVolumeUp"]);
            Player.calls = [];
            const slider = find(dialog, "volumeSlider");
            // The right end is the soft limit.
            drag(slider, slider.width / 2, 20, slider.width - 1, 20);
            verify(Player.calls.length > 0);
            compare(Player.calls[Player.calls.length - 1], "movedVolumeSlider 80");
            compare(Player.calls.filter(function(call) { return call.indexOf("movedVolumeSlider ") !== 0; }), []);
            dialog.close();
        }

        function test_volumeDialogGoesWithTheVolume() {
            const dialog = openVolumeDialog();
            Player.volumeAvailable = false;
            verify(!dialog.visible);
            tap(item("volumeBox"), 10, 10);
            verify(!dialog.visible);
            Player.volumeAvailable = true;
            verify(!dialog.visible);
            tap(item("volumeBox"), 10, 10);
            verify(dialog.visible);
            dialog.close();
        }

        function test_aVolumeDragEndsWithItsZone() {
            const dialog = openVolumeDialog();
            const slider = find(dialog, "volumeSlider");
            const touch = drag(slider, 17, 20, slider.width / 2, 20, false);
            tryVerify(function() { return Player.calls.length > 0; });
            item("controlledZone").zoneId = "z2";
            Player.calls = [];
            touch.move(1, slider, slider.width - 17, 20).commit();
            touch.release(1, slider, slider.width - 17, 20).commit();
            compare(Player.calls, []);
            tap(find(dialog, "volumeUp"));
            compare(Player.calls, ["commandVolumeUp"]);
            dialog.close();
        }

        function test_aRangeThatIsNotTheZonesIsNotOffered() {
            const dialog = openVolumeDialog();
            const slider = find(dialog, "volumeSlider");
            const limits = ["minimumText", "maximumText", "softLimitText"];
            for (const name of limits)
                verify(find(dialog, name).text !== "", name);
            item("controlledZone").shown = false;
            for (const name of limits)
                compare(find(dialog, name).text, "");
            verify(!slider.handle.visible);
            tap(slider, slider.width - 17, 20);
            drag(slider, 17, 20, slider.width / 2, 20);
            compare(Player.calls, []);
            item("controlledZone").shown = true;
            verify(slider.handle.visible);
            compare(find(dialog, "softLimitText").text, "80");
            tap(slider, slider.width - 17, 20);
            compare(Player.calls, ["movedVolumeSlider 80"]);
            dialog.close();
        }

        function test_zoneChooserSpeaksToThePlayer() {
            // 9 pixels beyond the name's box still count.
            tap(item("zoneName"), -9, 10);
            verify(logged("debug: zone clicked"));
            const dialog = item("zoneDialog");
            tryCompare(dialog, "opened", true);
            tap(find(dialog, "zoneList").itemAtIndex(1));
            compare(Player.calls, ["selectZone Kitchen"]);
            verify(logged("debug: Kitchen"));
            verify(logged("debug: ZONE SELECTED!"));
            verify(!dialog.visible);
        }

        function test_aModalPopupKeepsTouchesFromThePage() {
            tap(item("zoneName"));
            tryCompare(item("zoneDialog"), "opened", true);
            tapPage(20, 460);
            compare(Navigation.calls, []);
            tryCompare(item("zoneDialog"), "visible", false);
            tapPage(20, 460);
            compare(Navigation.calls, ["cycleDisplayOutput"]);
        }

        function test_popupsTurnWithTheScreen_data() {
            return [ { tag: "180", angle: 180 }, { tag: "90", angle: 90 }, { tag: "270", angle: 270 } ];
        }

        function test_popupsTurnWithTheScreen(row) {
            ScreenController.rotation = row.angle;
            ScreenController.rotated = true;
            tap(item("zoneName"));
            const dialog = item("zoneDialog");
            tryCompare(dialog, "opened", true);
            const panel = find(dialog, "panel");
            const corners = { 90: [590, -110, 210, 590], 180: [750, 430, 50, 50], 270: [210, 590, 590, -110] }[row.angle];
            compare(panel.mapToItem(null, 0, 0), Qt.point(corners[0], corners[1]));
            compare(panel.mapToItem(null, 700, 380), Qt.point(corners[2], corners[3]));
            // A finger at the far end of a row reaches the row, not what lies beside the unturned pop-up.
            if (row.angle === 180)
                tap(find(dialog, "zoneList").itemAtIndex(0), 600, 10);
            else
                tap(find(dialog, "zoneList").itemAtIndex(0));
            compare(Player.calls, ["selectZone Bath"]);
            ScreenController.rotated = false;
            ScreenController.rotation = 0;
        }

        function test_hidingThePageClosesItsPopups() {
            tap(item("zoneName"));
            tryCompare(item("zoneDialog"), "opened", true);
            page.visible = false;
            verify(!item("zoneDialog").visible);
            verify(!find(item("zoneDialog"), "closeTimer").running);
        }

        function test_allTextIsPlain() {
            set(playing);
            const texts = [];
            const collect = function(object) {
                if (object.textFormat !== undefined)
                    texts.push(object);
                for (let i = 0; object.children && i < object.children.length; ++i)
                    collect(object.children[i]);
            };
            collect(page);
            verify(texts.length >= 8);
            for (const found of texts) {
                compare(found.textFormat, Text.PlainText);
                compare(found.font.family, "Noto Sans");
            }
        }

        function test_aRestingPageDrawsNothing() {
            set(playing);
            set({ roonState: "paused" });
            tryCompare(item("coverPicture"), "source", "image://velunor/abc");
            waitForRendering(page);
            wait(100);
            countFrames(page);
            wait(500);
            compare(frames.count, 0);
        }

        Connections {
            id: pace

            property Item label: null
            property Item box: null
            property int steps
            property real firstPlace
            property real firstTime
            property real lastPlace
            property real lastTime

            function begin(what, within) {
                label = what;
                box = within;
                steps = 0;
                target = what;
            }

            /** Pixels a millisecond. */
            function speed() {
                return (firstPlace - lastPlace) / (lastTime - firstTime);
            }

            function onXChanged() {
                lastPlace = label.mapToItem(box, 0, 0).x;
                lastTime = Date.now();
                if (++steps === 1) {
                    firstPlace = lastPlace;
                    firstTime = lastTime;
                }
            }

            target: null
        }
    }
}
