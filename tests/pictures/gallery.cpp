// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery.h"

namespace {

constexpr int Ever = 3600 * 1000; // milliseconds

bool toPlayer(Studio &studio)
{
    return studio.waitForPage(QStringLiteral("RoonPlayerWindow2"));
}

bool openVolume(Studio &studio)
{
    return studio.tap("volumeBox") && studio.waitForItem("volumeSlider") && studio.keepOpen();
}

bool openZones(Studio &studio, const char *by)
{
    return studio.tap(by) && studio.waitForItem("zoneList") && studio.keepOpen();
}

bool closePopup(Studio &studio, const char *name)
{
    return studio.tapBeside() && studio.waitUntilGone(name);
}

} // namespace

QVector<Shot> gallery()
{
    return {
        { QStringLiteral("welcome"), [](Studio &studio) { return studio.waitForItem("motto"); } },
        { QStringLiteral("player"),
            [](Studio &studio) {
                return toPlayer(studio) && studio.act("seek seconds=83")
                    && studio.waitForText(QStringLiteral("1:23"))
                    && studio.waitForText(QStringLiteral("Harbour Before Six"));
            } },
        { QStringLiteral("volume"), openVolume },
        { QStringLiteral("zones"),
            [](Studio &studio) {
                return closePopup(studio, "volumeSlider") && openZones(studio, "zoneName");
            } },
        { QStringLiteral("decibels"),
            [](Studio &studio) {
                return closePopup(studio, "zoneList") && studio.highlightVolume(Ever)
                    && openZones(studio, "zoneName")
                    && studio.tap(Probe::Target::text(QStringLiteral("Living Room")))
                    && studio.waitUntilGone("zoneList")
                    && studio.act("play zone=\"Living Room\" album=\"Clockwork Orchard\"")
                    && studio.waitForText(QStringLiteral("Winding Song")) && openVolume(studio);
            } },
        { QStringLiteral("long-title"),
            [](Studio &studio) {
                return closePopup(studio, "volumeSlider")
                    && studio.set("touchscreen_scrolling", "false") && openZones(studio, "zoneName")
                    && studio.tap(Probe::Target::text(QStringLiteral("Hugo2X")))
                    && studio.waitUntilGone("zoneList")
                    && studio.act("play album=\"Concertos for Instruments That Are Rarely Asked, "
                                  "Volume 3: The Alpine "
                                  "Foghorn, the Glass Bassoon and Other Reluctant Soloists\"")
                    && studio.waitForText(
                        QStringLiteral("Concerto for Alpine Foghorn, Two Harps..."));
            } },
        { QStringLiteral("options"),
            [](Studio &studio) {
                return studio.act("shuffle on=true") && studio.act("radio on=true")
                    && studio.act("loop mode=loop_one")
                    && studio.act("play album=\"Northern Arithmetic\"")
                    && studio.waitForText(QStringLiteral("Carry the One")) && studio.act("pause")
                    && studio.waitForItem("loopOne");
            } },
        { QStringLiteral("radio"),
            [](Studio &studio) {
                return studio.act("play album=\"Harbour Light FM\"")
                    && studio.waitForText(QStringLiteral("The Breakfast Buoy with Nettie Quill"));
            } },
        { QStringLiteral("grouped"),
            [](Studio &studio) {
                return studio.act("play album=\"Velvet Elevator\"")
                    && studio.waitForText(QStringLiteral("Going Up?"))
                    && studio.act("group zones=Hugo2X,Kitchen,Bath")
                    && studio.waitForText(QStringLiteral("Hugo2X + Kitchen + Bath"));
            } },
        { QStringLiteral("update-available"),
            [](Studio &studio) {
                return studio.highlightVolume(1) && studio.act("ungroup")
                    && studio.waitForText(QStringLiteral("Hugo2X")) && studio.act("offer_update")
                    && studio.waitForItem("updateBadge");
            } },
        { QStringLiteral("nothing-playing"),
            [](Studio &studio) {
                return studio.act("withdraw_update") && studio.act("empty_queue")
                    && studio.waitForText(QStringLiteral("Nothing Playing"));
            } },
        { QStringLiteral("settings"),
            [](Studio &studio) {
                return studio.tap("settingsCorner")
                    && studio.waitForPage(QStringLiteral("SettingsWindow"));
            } },
        { QStringLiteral("clock"),
            [](Studio &studio) {
                return studio.tap("title") && toPlayer(studio) && studio.tap("cycleCorner")
                    && studio.waitForPage(QStringLiteral("Clock"));
            } },
        { QStringLiteral("clock-12-hours"),
            [](Studio &studio) {
                return studio.set("touchscreen_clock24", "false")
                    && studio.set("touchscreen_clockcolor", "blue") && studio.waitForItem("marker");
            } },
        { QStringLiteral("screen-saver"),
            [](Studio &studio) {
                return studio.tap("Clock") && studio.waitForPage(QStringLiteral("ScreenSaver"));
            } },
        { QStringLiteral("connection-failure"),
            [](Studio &studio) {
                return studio.tap("ScreenSaver") && toPlayer(studio) && studio.act("core_lost")
                    && studio.waitForPage(QStringLiteral("RoonConnectionFailure"));
            } },
        { QStringLiteral("zone-not-found"),
            [](Studio &studio) {
                // The display looks for its zone when the core comes back.
                return studio.act("remove zone=Hugo2X") && studio.act("core_back")
                    && studio.waitForPage(QStringLiteral("RoonZoneNotFound"));
            } },
        { QStringLiteral("zone-not-found-zones"),
            [](Studio &studio) { return openZones(studio, "chooserButton"); } },
        { QStringLiteral("update-installing"),
            [](Studio &studio) {
                return closePopup(studio, "zoneList") && studio.act("offer_update")
                    && studio.act("install_update")
                    && studio.waitForPage(QStringLiteral("UpdateInstalling"));
            } },
    };
}
