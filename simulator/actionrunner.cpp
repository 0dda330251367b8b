// SPDX-License-Identifier: GPL-3.0-or-later
#include "actionrunner.h"

#include "disturbance.h"
#include "imageservice.h"
#include "library.h"
#include "remotecontrolservice.h"
#include "stateservice.h"

namespace {

constexpr int FloodPerSecond = 1000;
constexpr int FloodSeconds = 10;
constexpr int NoiseCount = 200;
constexpr int SlowMs = 3000;

} // namespace

ActionRunner::ActionRunner(RemoteControlService *remote, StateService *state, ImageService *images,
    Disturbance *disturbance, QObject *parent)
    : QObject(parent)
    , m_remote(remote)
    , m_state(state)
    , m_images(images)
    , m_disturbance(disturbance)
{
}

bool ActionRunner::run(const Action &action, QString *reason)
{
    const QString &name = action.name;
    const auto is = [&name](const char *known) { return name == QLatin1String(known); };

    bool known = true;
    const bool done = runOnZone(action, &known, reason);
    if (known)
        return done;

    if (is("core_lost"))
        m_remote->setCoreDetected(false);
    else if (is("core_back"))
        m_remote->setCoreDetected(true);
    else if (is("remote_lost"))
        m_remote->setConnected(false);
    else if (is("remote_back"))
        m_remote->setConnected(true);
    else if (is("image")) {
        m_images->setMode(ImageService::modeOf(action.text("mode")), action.number("ms", SlowMs));
    } else if (is("group")) {
        if (!m_remote->group(action.list("zones"))) {
            *reason = QStringLiteral("a group needs two different zones that are there");
            return false;
        }
    } else if (is("offer_update"))
        m_state->offerUpdate(
            action.text("info").isEmpty() ? QStringLiteral("a newer one") : action.text("info"));
    else if (is("withdraw_update"))
        m_state->offerUpdate(QString());
    else if (is("inhibit_update"))
        m_state->inhibitUpdates(action.text("reason"));
    else if (is("install_update"))
        return m_state->installUpdate(reason);
    else if (is("flood"))
        m_disturbance->flood(
            action.number("per_second", FloodPerSecond), action.number("seconds", FloodSeconds));
    else if (is("noise"))
        m_disturbance->noise(action.number("count", NoiseCount));
    else if (is("quit"))
        emit quitRequested();
    return true;
}

bool ActionRunner::runOnZone(const Action &action, bool *known, QString *reason)
{
    const QString &name = action.name;
    const auto is = [&name](const char *known_) { return name == QLatin1String(known_); };
    const QString zoneName = action.text("zone");
    ZoneSimulation *const zone = m_remote->zone(zoneName);
    if (!zone) {
        *reason = QStringLiteral("there is no zone \"%1\"").arg(zoneName);
        return false;
    }
    *reason = QStringLiteral("the zone cannot do that now");
    if (is("play"))
        return play(action, reason);
    if (is("pause"))
        return zone->pause();
    if (is("stop"))
        return zone->stop();
    if (is("next"))
        return zone->next();
    if (is("previous"))
        return zone->previous();
    if (is("seek"))
        return zone->seek(action.number("seconds", 0));
    if (is("loop"))
        return zone->setLoop(action.text("mode"));
    if (is("volume"))
        return zone->setVolume(action.real("value"));
    if (is("mute"))
        return zone->setMuted(action.flag("on"));
    if (is("rename"))
        return m_remote->rename(zone->ownName(), action.text("name"));
    if (is("remove") || is("restore"))
        return m_remote->setPresent(zone->ownName(), is("restore"));
    if (is("ungroup"))
        return m_remote->ungroup(zone->ownName());
    if (is("empty_queue"))
        zone->setQueue({});
    else if (is("shuffle"))
        zone->setShuffle(action.flag("on"));
    else if (is("radio"))
        zone->setAutoRadio(action.flag("on"));
    else
        *known = false;
    return true;
}

bool ActionRunner::play(const Action &action, QString *reason)
{
    ZoneSimulation *const zone = m_remote->zone(action.text("zone"));
    if (!m_remote->canPlay(zone)) {
        *reason = QStringLiteral("the zone is switched off or follows another");
        return false;
    }
    const Album *const album = Library::findAlbum(action.text("album"));
    if (album)
        zone->setQueue({ album }, action.number("track", 1) - 1);
    return zone->play();
}
