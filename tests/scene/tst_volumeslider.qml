// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "VolumeSlider"

        property var dialog: null
        property var slider: null
        property var closeTimer: null

        function prepare() {
            open({ volume: 30, limitMinVolume: 0, limitMaxVolume: 100, limitSoftVolume: 80, volumeStep: 1,
                   zoneId: "z1" });
        }

        function open(properties) {
            dialog = create("components/VolumeSlider.qml", top, properties);
            slider = find(dialog, "volumeSlider");
            closeTimer = find(dialog, "closeTimer");
            for (const spy of [down, up, moved]) {
                spy.target = dialog;
                spy.clear();
            }
            dialog.open();
            tryCompare(dialog, "opened", true);
        }

        function text(name) {
            return find(dialog, name).text;
        }

        function test_elementsLieWhereTheyBelong() {
            const panel = find(dialog, "panel");
            compare(panel.width, 600);
            compare(panel.height, 200);
            compare(panel.rotation, 0);
            const corner = panel.mapToItem(null, 0, 0);
            compare(corner.x, 100);
            compare(corner.y, 140);
            const places = { volumeDown: [15, 62], volumeUp: [505, 62], volumeSlider: [90, 78], minimumText: [40, 140],
                             maximumText: [530, 140], softLimitText: [460, 110], currentText: [275, 20] };
            for (const name in places) {
                compare(find(dialog, name).x, places[name][0], name);
                compare(find(dialog, name).y, places[name][1], name);
            }
            compare(slider.width, 400);
            compare(find(dialog, "volumeDown").width, 75);
            compare(find(dialog, "volumeUp").height, 75);
            compare(find(find(dialog, "volumeDown"), "icon").status, Image.Ready);
            compare(find(find(dialog, "volumeUp"), "icon").status, Image.Ready);
            verify(dialog.modal);
            verify(!dialog.dim);
        }

        function test_sliderRunsToTheSoftLimit() {
            handleIsAt(30 / 80);
            dialog.limitMaxVolume = 200;
            handleIsAt(30 / 80);
            dialog.volume = 0;
            handleIsAt(0);
            dialog.volume = 80;
            handleIsAt(1);
        }

        function test_bothEndsAreOfTheRange_data() {
            return [
                { tag: "a step too far", min: 0, soft: 75, step: 2, lowest: 0, highest: 75 },
                { tag: "two units too far", min: 0, soft: 98, step: 3, lowest: 0, highest: 98 },
                { tag: "below zero", min: -80, soft: -10.5, step: 1, lowest: -80, highest: -10.5 },
                { tag: "step beyond the range", min: 0, soft: 50, step: 100, lowest: 0, highest: 50 },
                { tag: "last step is short", min: 0, soft: 97, step: 3, lowest: 0, highest: 97 },
                { tag: "a floating step", min: 0, soft: Math.fround(70.1), step: Math.fround(0.1), lowest: 0, highest: 70.1 },
                { tag: "no step", min: -60, soft: 7.5, step: 0, lowest: -60, highest: 7.5 },
                { tag: "step is no number", min: 0, soft: 75, step: NaN, lowest: 0, highest: 75 },
                // A command carries one decimal, and that, too, must not pass the limit.
                { tag: "finer than a command", min: -20.27, soft: 10.27, step: 0.25, lowest: -20.2, highest: 10.2 },
                { tag: "around zero", min: -0.04, soft: 0.48, step: 0, lowest: 0, highest: 0.4 }
            ];
        }

        function test_bothEndsAreOfTheRange(row) {
            open({ volume: row.min, limitMinVolume: row.min, limitMaxVolume: 200, limitSoftVolume: row.soft,
                   volumeStep: row.step });
            handleIsAt(0);
            for (const [end, value] of [[1, row.highest], [0, row.lowest], [1, row.highest]]) {
                drag(slider, grooveX(1 - end), 21, grooveX(end), 21);
                compare(lastMoved(), value);
                verify(!Object.is(lastMoved(), -0));
                handleIsAt(end);
                // Beyond the end is at the end.
                drag(slider, grooveX(0.5), 21, slider.width * (2 * end - 0.5), 21);
                compare(lastMoved(), value);
                handleIsAt(end);
            }
            for (let i = 0; i < moved.count; ++i) {
                const value = moved.signalArguments[i][0];
                verify(value >= row.lowest && value <= row.highest, value);
                verify(Math.abs(10 * value - Math.round(10 * value)) < 1e-6, value);
            }
        }

        function test_everyStepCanBeReached() {
            open({ volume: 0, limitMinVolume: 0, limitMaxVolume: 100, limitSoftVolume: 20, volumeStep: 3 });
            for (const value of [3, 6, 9, 12, 15, 18, 20]) {
                tap(slider, grooveX(value / 20), 21);
                compare(lastMoved(), value);
                handleIsAt(value / 20);
            }
            // Between the last step and the limit the nearer counts, as between two steps.
            tap(slider, grooveX(18.9 / 20), 21);
            compare(lastMoved(), 18);
            tap(slider, grooveX(19.1 / 20), 21);
            compare(lastMoved(), 20);
        }

        function test_textsHaveTheWantedDecimals() {
            compare(text("minimumText"), "0");
            compare(text("maximumText"), "100");
            compare(text("softLimitText"), "80");
            compare(text("currentText"), "30");
            dialog.volumeDisplayPrecision = 1;
            dialog.volume = 30.55;
            compare(text("minimumText"), "0.0");
            compare(text("maximumText"), "100.0");
            compare(text("softLimitText"), "80.0");
            compare(text("currentText"), (30.55).toFixed(1));
        }

        function test_stepsAreReportedWithTheSlidersValue() {
            closeTimer.stop();
            tap(find(dialog, "volumeDown"));
            verify(closeTimer.running);
            closeTimer.stop();
            verify(logged("info: VOLUME DOWN"));
            compare(down.count, 1);
            compare(down.signalArguments[0][0], 30);
            tap(find(dialog, "volumeUp"));
            verify(logged("info: VOLUME UP"));
            compare(up.count, 1);
            compare(up.signalArguments[0][0], 30);
            compare(moved.count, 0);
            verify(closeTimer.running);
        }

        function test_movingReportsTheValueUnderTheHandle() {
            drag(slider, handleX(30), 21, handleX(60), 21);
            verify(moved.count > 1);
            fuzzyCompare(moved.signalArguments[moved.count - 1][0], 60, 1);
            compare(moved.signalArguments[moved.count - 1][0], slider.value);
        }

        function test_aTapOnTheGrooveMovesTheHandle() {
            tap(slider, handleX(70), 21);
            compare(moved.count, 1);
            fuzzyCompare(moved.signalArguments[0][0], 70, 1);
        }

        function test_mouseMovesTheSliderToo() {
            mouseDrag(slider, handleX(30), 21, 100, 0);
            verify(moved.count > 0);
        }

        /** The middle of the handle, in the slider, when it is at this part of its way. */
        function grooveX(part) {
            return slider.handle.width / 2 + part * (slider.width - slider.handle.width);
        }

        /** Where the middle of the handle is, in the slider. */
        function handlePlace() {
            return slider.handle.mapToItem(slider, slider.handle.width / 2, 0).x;
        }

        function isHandleAt(part) {
            return Math.abs(handlePlace() - grooveX(part)) < 0.5;
        }

        function handleIsAt(part) {
            verify(isHandleAt(part), handlePlace() + " instead of " + grooveX(part));
        }

        function lastMoved() {
            return moved.signalArguments[moved.count - 1][0];
        }

        function handleX(value) {
            const travel = slider.availableWidth - slider.handle.width;
            return slider.handle.width / 2 + travel * (value - slider.from) / (slider.to - slider.from);
        }

        function test_theHandleStaysUnderTheFinger() {
            const touch = drag(slider, handleX(30), 21, handleX(60), 21, false);
            tryVerify(function() { return moved.count > 0 && lastMoved() === 60; });
            dialog.volume = 35;
            handleIsAt(60 / 80);
            compare(text("currentText"), "35");
            touch.release(1, slider, handleX(60), 21).commit();
        }

        function test_aFingerThatDidNotMoveLeavesTheVolume() {
            const touch = touchEvent(slider);
            touch.press(1, slider, handleX(30), 21).commit();
            dialog.volume = 50;
            handleIsAt(30 / 80);
            touch.release(1, slider, handleX(30), 21).commit();
            compare(moved.count, 0);
            handleIsAt(50 / 80);
        }

        function test_valuesPassedOnTheWayDoNotMoveTheHandle() {
            drag(slider, handleX(30), 21, handleX(60), 21);
            for (let volume = 31; volume < 60; ++volume) {
                dialog.volume = volume;
                handleIsAt(60 / 80);
                compare(text("currentText"), String(volume));
            }
            dialog.volume = 60;
            handleIsAt(60 / 80);
            // From then on it follows the zone at once, more than once.
            for (const volume of [50, 20, 60, 30]) {
                dialog.volume = volume;
                handleIsAt(volume / 80);
            }
        }

        /** The finger goes to these values one after the other, and each is reported before it goes on. */
        function passThrough(values) {
            const touch = touchEvent(slider);
            touch.press(1, slider, slider.handle.x + 17, 21).commit();
            for (const value of values) {
                touch.move(1, slider, handleX(value), 21).commit();
                tryVerify(function() { return moved.count > 0 && lastMoved() === value; });
            }
            return touch;
        }

        function test_aValuePassedTwiceComesBackTwice() {
            passThrough([40, 50, 60, 70, 60, 50]).release(1, slider, handleX(50), 21).commit();
            compare(lastMoved(), 50);
            for (const volume of [40, 50, 60, 70, 60, 50]) {
                dialog.volume = volume;
                handleIsAt(50 / 80);
            }
            dialog.volume = 20;
            handleIsAt(20 / 80);
        }

        function test_theWayOutAndBackDoesNotMoveTheHandle() {
            passThrough([45, 60, 30]).release(1, slider, handleX(30), 21).commit();
            for (const volume of [45, 60, 30]) {
                dialog.volume = volume;
                handleIsAt(30 / 80);
            }
            dialog.volume = 20;
            handleIsAt(20 / 80);
        }

        function test_whatCameBackUnderTheFingerIsNotWaitedFor() {
            const touch = drag(slider, handleX(30), 21, handleX(60), 21, false);
            tryVerify(function() { return moved.count > 0 && lastMoved() === 60; });
            for (const volume of [40, 50, 60])
                dialog.volume = volume;
            touch.release(1, slider, handleX(60), 21).commit();
            handleIsAt(60 / 80);
            dialog.volume = 20;
            handleIsAt(20 / 80);
        }

        function test_aVolumeAsGoodAsChosenIsNotWaitedFor() {
            dialog.volume = 60.04;
            tap(slider, grooveX(60 / 80), 21);
            dialog.volume = 50;
            handleIsAt(50 / 80);
        }

        function openWithFineSteps(step) {
            open({ volume: 0.5, limitMinVolume: 0, limitMaxVolume: 1, limitSoftVolume: 1, volumeStep: step,
                   volumeDisplayPrecision: 1, zoneId: "z1" });
        }

        function test_aTapOnTheNextFineStepStays() {
            openWithFineSteps(0.1);
            tap(slider, grooveX(0.6), 21);
            compare(lastMoved(), 0.6);
            handleIsAt(0.6);
            wait(50);
            handleIsAt(0.6);
            dialog.volume = Math.fround(0.6);
            handleIsAt(0.6);
            // It is back, so what comes next is somebody else's.
            dialog.volume = Math.fround(0.3);
            handleIsAt(0.3);
        }

        function test_fineStepsOnTheWayDoNotMoveTheHandle() {
            openWithFineSteps(0.1);
            passThrough([0.6, 0.7, 0.8, 0.9]).release(1, slider, handleX(0.9), 21).commit();
            for (const volume of [0.6, 0.7, 0.8, 0.9]) {
                dialog.volume = Math.fround(volume);
                handleIsAt(0.9);
            }
            dialog.volume = Math.fround(0.3);
            handleIsAt(0.3);
        }

        function test_placesThatAreToldAsOneComeBackAsOne() {
            openWithFineSteps(0);
            const touch = touchEvent(slider);
            touch.press(1, slider, grooveX(0.5), 21).commit();
            for (const place of [0.6, 0.81, 0.82, 0.83]) {
                const before = moved.count;
                touch.move(1, slider, grooveX(place), 21).commit();
                tryVerify(function() { return moved.count > before; });
            }
            compare(lastMoved(), 0.8);
            touch.release(1, slider, grooveX(0.83), 21).commit();
            dialog.volume = Math.fround(0.8);
            dialog.volume = Math.fround(0.3);
            handleIsAt(0.3);
        }

        // The player takes a difference of 0.1 for none, and a command has one decimal only.
        function test_aValueComesBackAsNearAsThePlayerTakesIt_data() {
            return [ { tag: "below", step: 0.1, off: -0.1 }, { tag: "above", step: 0.1, off: 0.1 },
                     { tag: "rounded", step: 0.25, off: 0.05 }, { tag: "rounded, below", step: 0.25, off: -0.15 } ];
        }

        function test_aValueComesBackAsNearAsThePlayerTakesIt(row) {
            dialog.volumeStep = row.step;
            tap(slider, grooveX(60 / 80), 21);
            dialog.volume = Math.fround(slider.value + row.off);
            dialog.volume = 50;
            handleIsAt(50 / 80);
        }

        function test_withoutAnAnswerTheHandleGoesBackAfterASecond_data() {
            return [ { tag: "refused" }, { tag: "another volume", volume: 40 }, { tag: "limited by the zone", volume: 55 } ];
        }

        function test_withoutAnAnswerTheHandleGoesBackAfterASecond(row) {
            drag(slider, handleX(30), 21, handleX(65), 21);
            const released = Date.now();
            if (row.volume) {
                // Neither does somebody else's change prolong the wait.
                dialog.volume = 20;
                wait(800);
                dialog.volume = row.volume;
            }
            while (Date.now() < released + 900) {
                handleIsAt(65 / 80);
                wait(10);
            }
            tryVerify(function() { return isHandleAt(dialog.volume / 80); });
            verify(Date.now() < released + 1700);
        }

        function test_aPressDuringTheWaitKeepsTheHandle() {
            tap(slider, handleX(60), 21);
            const touch = touchEvent(slider);
            touch.press(1, slider, handleX(60), 21).commit();
            wait(1200);
            dialog.volume = 35;
            handleIsAt(60 / 80);
            touch.release(1, slider, handleX(60), 21).commit();
            handleIsAt(60 / 80);
            tryVerify(function() { return isHandleAt(35 / 80); });
        }

        function test_theLastOfTwoTapsCounts() {
            tap(slider, handleX(60), 21);
            tap(slider, handleX(50), 21);
            dialog.volume = 60;
            handleIsAt(50 / 80);
            dialog.volume = 50;
            handleIsAt(50 / 80);
            dialog.volume = 20;
            handleIsAt(20 / 80);
        }

        function test_closingDoesNotEndTheWait() {
            drag(slider, handleX(30), 21, handleX(60), 21);
            dialog.close();
            dialog.volume = 35;
            dialog.open();
            handleIsAt(60 / 80);
            dialog.volume = 40;
            handleIsAt(60 / 80);
            tryVerify(function() { return isHandleAt(40 / 80); });
        }

        function test_aNewOpeningShowsTheVolume() {
            dialog.close();
            dialog.volume = 50;
            dialog.open();
            handleIsAt(50 / 80);
        }

        function test_aRangeThatComesAfterTheVolumeCounts() {
            open({ volume: 30 });
            dialog.limitSoftVolume = 80;
            handleIsAt(30 / 80);
            dialog.limitMinVolume = -80;
            handleIsAt(110 / 160);
        }

        function test_withoutARangeNothingIsChosen_data() {
            return [
                { tag: "never published", min: NaN, soft: NaN, volume: 0 },
                { tag: "no minimum", min: NaN, soft: 80, volume: 40 },
                { tag: "no soft limit", min: 0, soft: NaN, volume: 40 },
                { tag: "only zeros", min: 0, soft: 0, volume: 40 },
                { tag: "one value", min: 30, soft: 30, volume: 30 },
                { tag: "the wrong way round", min: 10, soft: -10, volume: 5 },
                { tag: "endless", min: -Infinity, soft: Infinity, volume: 5 },
                { tag: "less than a command can tell", min: 20.01, soft: 20.09, volume: 20 },
                { tag: "no number at all", min: NaN, soft: NaN, volume: NaN }
            ];
        }

        function test_withoutARangeNothingIsChosen(row) {
            open({ volume: row.volume, limitMinVolume: row.min, limitSoftVolume: row.soft, limitMaxVolume: row.soft,
                   volumeStep: 1 });
            verify(!slider.enabled);
            verify(slider.opacity < 0.5);
            verify(!slider.handle.visible);
            for (const part of [0, 0.3, 1])
                tap(slider, grooveX(part), 21);
            drag(slider, grooveX(0), 21, grooveX(0.7), 21);
            mouseDrag(slider, grooveX(0), 21, 100, 0);
            compare(moved.count, 0);
            verify(dialog.visible);
            tap(find(dialog, "volumeUp"));
            tap(find(dialog, "volumeDown"));
            compare(up.count, 1);
            compare(down.count, 1);
        }

        function test_aVolumeOutsideTheRangeCanBeLeft() {
            open({ volume: 90, limitMinVolume: 0, limitMaxVolume: 100, limitSoftVolume: 80, volumeStep: 1 });
            handleIsAt(1);
            const touch = drag(slider, grooveX(1), 21, grooveX(0.9), 21, false);
            touch.move(1, slider, slider.width, 21).commit();
            touch.release(1, slider, slider.width, 21).commit();
            compare(lastMoved(), 80);
            handleIsAt(1);
        }

        function test_aRangeThatComesUnderTheFingerIsForTheNext() {
            open({ volume: 30, limitMinVolume: 0, limitMaxVolume: 100, limitSoftVolume: 0, volumeStep: 1 });
            const touch = drag(slider, grooveX(0.2), 21, grooveX(0.3), 21, false);
            dialog.limitSoftVolume = 80;
            verify(slider.enabled);
            compare(slider.opacity, 1);
            verify(slider.handle.visible);
            touch.move(1, slider, grooveX(0.5), 21).commit();
            touch.release(1, slider, grooveX(0.5), 21).commit();
            compare(moved.count, 0);
            handleIsAt(30 / 80);
            tap(slider, grooveX(0.5), 21);
            compare(lastMoved(), 40);
        }

        function test_aRangeThatChangesUnderTheFingerEndsTheDrag_data() {
            return [ { tag: "goes", limit: "limitSoftVolume", to: 0 },
                     { tag: "smaller above", limit: "limitSoftVolume", to: 50 },
                     { tag: "larger above", limit: "limitSoftVolume", to: 90 },
                     { tag: "smaller below", limit: "limitMinVolume", to: 20 },
                     { tag: "larger below", limit: "limitMinVolume", to: -40 } ];
        }

        function test_aRangeThatChangesUnderTheFingerEndsTheDrag(row) {
            const touch = drag(slider, handleX(30), 21, handleX(60), 21, false);
            tryVerify(function() { return moved.count > 0 && lastMoved() === 60; });
            const before = dialog[row.limit];
            dialog[row.limit] = row.to;
            moved.clear();
            touch.move(1, slider, grooveX(0.4), 21).commit();
            wait(0);
            touch.release(1, slider, grooveX(0.4), 21).commit();
            compare(moved.count, 0);
            verify(closeTimer.running);
            dialog[row.limit] = before;
            handleIsAt(30 / 80);
            tap(slider, grooveX(0.5), 21);
            compare(lastMoved(), 40);
        }

        function test_openingStartsTheCloseTimer() {
            compare(closeTimer.interval, 5000);
            verify(!closeTimer.repeat);
            verify(closeTimer.running);
            dialog.close();
            verify(!closeTimer.running);
        }

        function test_theTimersEndCloses() {
            closeTimer.interval = 50;
            tryCompare(dialog, "visible", false);
        }

        function test_aFingerOnTheSliderHoldsTheTimer() {
            const touch = touchEvent(slider);
            touch.press(1, slider, 100, 21).commit();
            verify(!closeTimer.running);
            touch.move(1, slider, 200, 21).commit();
            verify(!closeTimer.running);
            touch.release(1, slider, 200, 21).commit();
            verify(closeTimer.running);
        }

        function test_aClosedDialogDoesNotStartItsTimer() {
            const touch = drag(slider, 100, 21, 200, 21, false);
            dialog.close();
            touch.release(1, top, 10, 10).commit();
            verify(!closeTimer.running);
        }

        function test_aDragEndsWithItsZone_data() {
            return [ { tag: "released", moves: false }, { tag: "moved on", moves: true } ];
        }

        function test_aDragEndsWithItsZone(row) {
            const touch = drag(slider, handleX(30), 21, handleX(60), 21, false);
            tryVerify(function() { return moved.count > 0 && lastMoved() === 60; });
            moved.clear();
            dialog.zoneId = "z2";
            dialog.volume = 10;
            for (let i = 0; row.moves && i < 10; ++i) {
                touch.move(1, slider, handleX(60) + i * 5, 21).commit();
                wait(0);
            }
            touch.release(1, slider, handleX(65), 21).commit();
            compare(moved.count, 0);
            handleIsAt(10 / 80);
            verify(closeTimer.running);
            dialog.volume = 20;
            handleIsAt(20 / 80);
            // The next one is the new zone's.
            tap(slider, handleX(50), 21);
            compare(moved.count, 1);
            tap(find(dialog, "volumeUp"));
            compare(up.count, 1);
        }

        function test_aMouseDragEndsWithItsZone() {
            mousePress(slider, handleX(30), 21);
            mouseMove(slider, handleX(50), 21);
            mouseMove(slider, handleX(60), 21);
            verify(moved.count > 0);
            moved.clear();
            dialog.zoneId = "z2";
            mouseMove(slider, handleX(65), 21);
            mouseRelease(slider, handleX(65), 21);
            compare(moved.count, 0);
            handleIsAt(30 / 80);
        }

        function test_aPressEndsWithItsZone() {
            const touch = touchEvent(slider);
            touch.press(1, slider, handleX(60), 21).commit();
            dialog.zoneId = "z2";
            touch.release(1, slider, handleX(60), 21).commit();
            compare(moved.count, 0);
            handleIsAt(30 / 80);
        }

        function test_aStepEndsWithItsZone_data() {
            return [ { tag: "up", on: "volumeUp" }, { tag: "down", on: "volumeDown" },
                     { tag: "up, moving", on: "volumeUp", moves: true }, { tag: "down, moving", on: "volumeDown", moves: true } ];
        }

        function test_aStepEndsWithItsZone(row) {
            const icon = find(dialog, row.on);
            const touch = touchEvent(icon);
            touch.press(1, icon, 30, 30).commit();
            dialog.zoneId = "z2";
            if (row.moves)
                touch.move(1, icon, 35, 32).commit();
            touch.release(1, icon, 35, 32).commit();
            mousePress(icon, 30, 30);
            dialog.zoneId = "z3";
            mouseRelease(icon, 30, 30);
            compare(up.count + down.count, 0);
            // The next one is the new zone's.
            tap(icon);
            compare(up.count + down.count, 1);
        }

        function test_theWaitEndsWithItsZone_data() {
            return [ { tag: "zone first", values: { zoneId: "z2", volume: 10 } },
                     { tag: "volume first", values: { volume: 10, zoneId: "z2" } },
                     { tag: "same volume", values: { zoneId: "z2" } } ];
        }

        function test_theWaitEndsWithItsZone(row) {
            drag(slider, handleX(30), 21, handleX(60), 21);
            handleIsAt(60 / 80);
            for (const name in row.values)
                dialog[name] = row.values[name];
            handleIsAt(dialog.volume / 80);
        }

        function test_withoutAVolumeTheDialogCloses() {
            dialog.volumeAvailable = false;
            verify(!dialog.visible);
            dialog.open();
            verify(!dialog.visible);
            verify(!closeTimer.running);
            dialog.volumeAvailable = true;
            verify(!dialog.visible);
            dialog.open();
            verify(dialog.visible);
        }

        function test_withoutAVolumeNoFingerSends_data() {
            return [ { tag: "slider", on: "volumeSlider" }, { tag: "slider, moving", on: "volumeSlider", moving: true },
                     { tag: "up", on: "volumeUp" }, { tag: "down", on: "volumeDown" } ];
        }

        function test_withoutAVolumeNoFingerSends(row) {
            const held = find(dialog, row.on);
            const touch = touchEvent(held);
            touch.press(1, held, 50, 30).commit();
            if (row.moving) {
                for (let x = 60; x <= 120; x += 10)
                    touch.move(1, held, x, 30).commit();
                tryVerify(function() { return moved.count > 0; });
                moved.clear();
            }
            dialog.volumeAvailable = false;
            verify(!dialog.visible);
            touch.move(1, held, 70, 30).commit();
            wait(0);
            touch.release(1, held, 70, 30).commit();
            for (const spy of [down, up, moved])
                compare(spy.count, 0);
            verify(!closeTimer.running);
        }

        function test_aTouchBesideTheDialogClosesIt() {
            tap(top, 20, 20);
            tryCompare(dialog, "visible", false);
        }

        function test_turnedOnItsSide() {
            dialog.screenRotation = 90;
            dialog.isRotated = true;
            const panel = find(dialog, "panel");
            compare(panel.rotation, 90);
            compare(dialog.width, 200);
            compare(dialog.height, 600);
            // The far end of the turned panel belongs to the pop-up.
            tap(find(dialog, "volumeUp"));
            compare(up.count, 1);
            verify(dialog.visible);
            drag(slider, handleX(30), 21, handleX(60), 21);
            fuzzyCompare(slider.value, 60, 1);
        }

        SignalSpy {
            id: down

            signalName: "volumeDown"
        }

        SignalSpy {
            id: up

            signalName: "volumeUp"
        }

        SignalSpy {
            id: moved

            signalName: "volumeMoved"
        }
    }
}
