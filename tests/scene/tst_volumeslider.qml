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
            open({ volume: 30, limitMinVolume: 0, limitMaxVolume: 100, limitSoftVolume: 80, volumeStep: 1 });
        }

        function open(properties) {
            dialog = create("VolumeSlider.qml", top, properties);
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
            compare(slider.from, 0);
            compare(slider.to, 80);
            compare(slider.stepSize, 1);
            compare(slider.value, 30);
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
            tap(find(dialog, "volumeDown"));
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

        function handleX(value) {
            const travel = slider.availableWidth - slider.handle.width;
            return slider.handle.width / 2 + travel * (value - slider.from) / (slider.to - slider.from);
        }

        function test_theHandleStaysUnderTheFinger() {
            const touch = drag(slider, handleX(30), 21, handleX(60), 21, false);
            verify(slider.pressed);
            tryCompare(slider, "value", 60);
            dialog.volume = 35;
            compare(slider.value, 60);
            compare(text("currentText"), "35");
            touch.release(1, slider, handleX(60), 21).commit();
            verify(!slider.pressed);
            compare(slider.value, 60);
            // The zone's answer moves it from then on, more than once.
            dialog.volume = 50;
            compare(slider.value, 50);
            dialog.volume = 20;
            compare(slider.value, 20);
        }

        function test_withoutAnAnswerTheHandleGoesBack() {
            drag(slider, handleX(30), 21, handleX(60), 21);
            verify(slider.value > 50);
            tryCompare(slider, "value", 30);
        }

        function test_aNewOpeningShowsTheVolume() {
            drag(slider, handleX(30), 21, handleX(60), 21);
            dialog.close();
            dialog.open();
            compare(slider.value, 30);
        }

        function test_aRangeThatComesAfterTheVolumeCounts() {
            open({ volume: 30 });
            compare(slider.from, 0);
            compare(slider.to, 0);
            dialog.limitSoftVolume = 80;
            compare(slider.value, 30);
            dialog.limitMinVolume = -80;
            compare(slider.value, 30);
            compare(slider.from, -80);
        }

        function test_oddRangesAreQuiet_data() {
            return [
                { tag: "empty", min: 0, soft: 0, volume: 0 },
                { tag: "the wrong way round", min: 10, soft: -10, volume: 5 },
                { tag: "no number", min: NaN, soft: NaN, volume: NaN },
                { tag: "no soft limit", min: 0, soft: NaN, volume: 5 },
                { tag: "endless", min: -Infinity, soft: Infinity, volume: 5 },
                { tag: "volume above", min: 0, soft: 10, volume: 50 }
            ];
        }

        function test_oddRangesAreQuiet(row) {
            open({ volume: row.volume, limitMinVolume: row.min, limitSoftVolume: row.soft, limitMaxVolume: row.soft,
                   volumeStep: row.volume });
            verify(isFinite(slider.value));
            verify(slider.value >= slider.from && slider.value <= slider.to);
            verify(isFinite(slider.visualPosition));
            drag(slider, 20, 21, 300, 21);
            for (let i = 0; i < moved.count; ++i)
                verify(isFinite(moved.signalArguments[i][0]));
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
