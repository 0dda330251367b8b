// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/actionkind.h"

#include "simulator/house/library.h"
#include "simulator/house/zonesimulation.h"
#include "simulator/scenario/action.h"
#include "simulator/services/disturbance.h"
#include "simulator/services/imageservice.h"
#include "simulator/services/remotecontrolservice.h"
#include "simulator/services/stateservice.h"

#include <algorithm>

namespace {

constexpr int FloodPerSecond = 1000;
constexpr int FloodSeconds = 10;
constexpr int NoiseCount = 200;
constexpr int SlowMs = 3000;

using Handler = ActionKind::Handler;
using Targets = ActionTargets;
using Type = ActionArgument;

const ActionArgument ZoneName { "zone", Type::Text, false };
const ActionArgument On { "on", Type::Flag, true };

/** An action that always succeeds. */
Handler always(void (*run)(const Targets &, const Action &))
{
    return [run](const Targets &targets, const Action &action, QString *) {
        run(targets, action);
        return true;
    };
}

/** An action on the zone that it names; it fails where there is no such zone. */
Handler onZone(std::function<bool(ZoneSimulation &, const Targets &, const Action &)> run)
{
    return [run](const Targets &targets, const Action &action, QString *reason) {
        const QString name = action.text("zone");
        ZoneSimulation *const zone = targets.remote->zone(name);
        if (!zone) {
            *reason = QStringLiteral("there is no zone \"%1\"").arg(name);
            return false;
        }
        *reason = QStringLiteral("the zone cannot do that now");
        return run(*zone, targets, action);
    };
}

Handler onZone(bool (ZoneSimulation::*run)())
{
    return onZone(
        [run](ZoneSimulation &zone, const Targets &, const Action &) { return (zone.*run)(); });
}

bool group(const Targets &targets, const Action &action, QString *reason)
{
    *reason = QStringLiteral("a group needs two different zones that are there");
    return targets.remote->group(action.list("zones"));
}

bool play(const Targets &targets, const Action &action, QString *reason)
{
    const Handler goOn = onZone([](ZoneSimulation &zone, const Targets &, const Action &wanted) {
        if (const Album *const album = Library::findAlbum(wanted.text("album")))
            zone.setQueue({ album }, wanted.number("track", 1) - 1);
        return zone.play();
    });
    ZoneSimulation *const zone = targets.remote->zone(action.text("zone"));
    if (!zone || targets.remote->canPlay(zone))
        return goOn(targets, action, reason);
    *reason = QStringLiteral("the zone is switched off or follows another");
    return false;
}

} // namespace

const QVector<ActionKind> &ActionKind::all()
{
    static const QVector<ActionKind> kinds {
        { "core_lost", {}, "the music server leaves the network",
            always([](const Targets &to, const Action &) { to.remote->setCoreDetected(false); }) },
        { "core_back", {}, "it is there again, with all zones",
            always([](const Targets &to, const Action &) { to.remote->setCoreDetected(true); }) },
        { "remote_lost", {}, "the remote-control service loses its connection",
            always([](const Targets &to, const Action &) { to.remote->setConnected(false); }) },
        { "remote_back", {}, "it has it again",
            always([](const Targets &to, const Action &) { to.remote->setConnected(true); }) },
        { "image",
            { { "mode", Type::Text, true, ImageService::modeNames },
                { "ms", Type::Number, false } },
            "cover art from now on: normal, slow (by ms), hang, fail, drop or garbage",
            always([](const Targets &to, const Action &action) {
                to.images->setMode(
                    ImageService::modeOf(action.text("mode")), action.number("ms", SlowMs));
            }) },
        { "play",
            { ZoneName, { "album", Type::Text, false, Library::albumNames },
                { "track", Type::Number, false, nullptr, 1 } },
            "plays on, or an album (or station) from a track on, counted from 1", play },
        { "pause", { ZoneName }, "as another remote control would",
            onZone(&ZoneSimulation::pause) },
        { "stop", { ZoneName }, "", onZone(&ZoneSimulation::stop) },
        { "next", { ZoneName }, "", onZone(&ZoneSimulation::next) },
        { "previous", { ZoneName }, "", onZone(&ZoneSimulation::previous) },
        { "seek", { ZoneName, { "seconds", Type::Number, true } }, "moves within the track",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                return zone.seek(action.number("seconds", 0));
            }) },
        { "empty_queue", { ZoneName }, "nothing is left to play",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &) {
                zone.setQueue({});
                return true;
            }) },
        { "shuffle", { ZoneName, On }, "",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                zone.setShuffle(action.flag("on"));
                return true;
            }) },
        { "radio", { ZoneName, On }, "whether similar music follows the queue",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                zone.setAutoRadio(action.flag("on"));
                return true;
            }) },
        { "loop", { ZoneName, { "mode", Type::Text, true, ZoneSimulation::loopModes } },
            "disabled, loop or loop_one",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                return zone.setLoop(action.text("mode"));
            }) },
        { "volume", { ZoneName, { "value", Type::Real, true } }, "in the zone's own units",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                return zone.setVolume(action.real("value"));
            }) },
        { "mute", { ZoneName, On }, "",
            onZone([](ZoneSimulation &zone, const Targets &, const Action &action) {
                return zone.setMuted(action.flag("on"));
            }) },
        { "rename", { ZoneName, { "name", Type::Text, false } },
            "gives a zone another name; without one, its first name",
            onZone([](ZoneSimulation &zone, const Targets &to, const Action &action) {
                return to.remote->rename(zone.ownName(), action.text("name"));
            }) },
        { "remove", { ZoneName }, "the zone is switched off",
            onZone([](ZoneSimulation &zone, const Targets &to, const Action &) {
                return to.remote->setPresent(zone.ownName(), false);
            }) },
        { "restore", { ZoneName }, "and on again",
            onZone([](ZoneSimulation &zone, const Targets &to, const Action &) {
                return to.remote->setPresent(zone.ownName(), true);
            }) },
        { "group", { { "zones", Type::List, true } }, "the first leads, the others follow", group },
        { "ungroup", { ZoneName }, "dissolves the group to which the zone belongs",
            onZone([](ZoneSimulation &zone, const Targets &to, const Action &) {
                return to.remote->ungroup(zone.ownName());
            }) },
        { "offer_update", { { "info", Type::Text, false } }, "an update can be installed",
            always([](const Targets &to, const Action &action) {
                const QString info = action.text("info");
                to.state->offerUpdate(info.isEmpty() ? QStringLiteral("a newer one") : info);
            }) },
        { "withdraw_update", {}, "",
            always([](const Targets &to, const Action &) { to.state->offerUpdate(QString()); }) },
        { "inhibit_update", { { "reason", Type::Text, false } },
            "holds updates back; without a reason, no longer",
            always([](const Targets &to, const Action &action) {
                to.state->inhibitUpdates(action.text("reason"));
            }) },
        { "install_update", {}, "as the web service does when it is asked to",
            [](const Targets &to, const Action &, QString *reason) {
                return to.state->installUpdate(reason);
            } },
        { "flood",
            { { "per_second", Type::Number, false, nullptr, 1, Disturbance::MostPerSecond },
                { "seconds", Type::Number, false, nullptr, 1, Disturbance::LongestFloodS } },
            "changes of the first zone, 1000 a second for 10 s",
            always([](const Targets &to, const Action &action) {
                to.disturbance->flood(action.number("per_second", FloodPerSecond),
                    action.number("seconds", FloodSeconds));
            }) },
        { "noise", { { "count", Type::Number, false, nullptr, 1, Disturbance::MostNoise } },
            "malformed messages of every kind, 200 of them",
            always([](const Targets &to, const Action &action) {
                to.disturbance->noise(action.number("count", NoiseCount));
            }) },
        { "quit", {}, "the simulator ends",
            always([](const Targets &to, const Action &) { to.quit(); }) },
    };
    return kinds;
}

const ActionKind *ActionKind::find(const QString &name)
{
    const auto kind = std::find_if(all().begin(), all().end(),
        [&name](const ActionKind &candidate) { return name == QLatin1String(candidate.name); });
    return kind == all().end() ? nullptr : kind;
}
