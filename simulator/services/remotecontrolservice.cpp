// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/remotecontrolservice.h"

#include "simulator/house/library.h"
#include "simulator/services/topics.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

RemoteControlService::RemoteControlService(const QString &mainZone, quint32 seed, QObject *parent)
    : QObject(parent)
    , m_random(seed)
{
    for (ZoneDescription description : Library::zones()) {
        if (m_zones.isEmpty())
            description.name = mainZone;
        ZoneSimulation *const zone = new ZoneSimulation(description, &m_random, this);
        m_zones.append(zone);
        m_status.insert(zone, Status());
        connect(zone, &ZoneSimulation::propertyChanged, this,
            [this, zone](const QByteArray &key, const QByteArray &value) {
                if (isAvailable(zone))
                    emit publish(Topics::zone(zone->id(), key), value, true);
            });
        connect(zone, &ZoneSimulation::trackStarted, this, [this, zone] {
            if (zone->isPlaying())
                emit told(QStringLiteral("playing: %1: %2").arg(zone->name(), zone->nowPlaying()));
        });
        connect(zone, &ZoneSimulation::playingChanged, this, &RemoteControlService::playingChanged);
    }
}

void RemoteControlService::start(const QString &serverUrl)
{
    m_serverUrl = serverUrl;
    m_started = true;
    republish();
}

void RemoteControlService::republish()
{
    publishCore();
    publishConnected();
    publishSpotify();
    m_published.clear();
    updateAvailable();
}

ZoneSimulation *RemoteControlService::zone(const QString &name) const
{
    if (name.isEmpty())
        return mainZone();
    for (ZoneSimulation *const candidate : m_zones) {
        if (candidate->ownName() == name)
            return candidate;
    }
    return nullptr;
}

QString RemoteControlService::nameOf(const QString &id) const
{
    for (const ZoneSimulation *const candidate : m_zones) {
        if (candidate->id() == id)
            return candidate->name();
    }
    return id;
}

bool RemoteControlService::canPlay(ZoneSimulation *zone) const
{
    const Status status = m_status.value(zone);
    return status.present && !status.leader;
}

void RemoteControlService::setCoreDetected(bool detected)
{
    m_coreDetected = detected;
    if (m_started) {
        publishCore();
        updateAvailable();
    }
    emit playingChanged();
}

void RemoteControlService::setConnected(bool connected)
{
    m_connected = connected;
    if (m_started)
        publishConnected();
}

bool RemoteControlService::setPresent(const QString &name, bool present)
{
    ZoneSimulation *const found = zone(name);
    if (!found)
        return false;
    if (!present) {
        ungroup(name);
        found->stop();
    }
    m_status[found].present = present;
    updateAvailable();
    return true;
}

bool RemoteControlService::rename(const QString &name, const QString &newName)
{
    ZoneSimulation *const found = zone(name);
    if (!found)
        return false;
    const QString wanted = newName.isEmpty() ? found->firstName() : newName;
    if (wanted != found->ownName() && zone(wanted))
        return false;
    found->rename(wanted);
    ZoneSimulation *const leader = m_status.value(found).leader;
    if (leader) { // the group's name has the follower's in it
        QStringList names;
        for (const ZoneSimulation *const follower : m_status.value(leader).followers)
            names.append(follower->ownName());
        leader->setFollowers(names);
    }
    updateAvailable();
    return true;
}

bool RemoteControlService::group(const QStringList &names)
{
    QVector<ZoneSimulation *> members;
    for (const QString &name : names) {
        ZoneSimulation *const member = zone(name);
        if (!member || members.contains(member) || !m_status.value(member).present)
            return false;
        members.append(member);
    }
    if (members.size() < 2)
        return false;
    for (ZoneSimulation *const member : qAsConst(members)) {
        const Status &status = m_status[member];
        dissolve(status.leader ? status.leader : member);
    }
    ZoneSimulation *const leader = members.takeFirst();
    QStringList followers;
    for (ZoneSimulation *const follower : qAsConst(members)) {
        follower->stop();
        m_status[follower].leader = leader;
        followers.append(follower->ownName());
    }
    m_status[leader].followers = members;
    leader->setFollowers(followers);
    updateAvailable();
    return true;
}

bool RemoteControlService::ungroup(const QString &name)
{
    ZoneSimulation *const found = zone(name);
    if (!found)
        return false;
    ZoneSimulation *const leader = m_status.value(found).leader;
    if (!dissolve(leader ? leader : found))
        return false;
    updateAvailable();
    return true;
}

bool RemoteControlService::obey(const RemoteCommand &command, QString *reason)
{
    if (command.kind == RemoteCommand::Invalid) {
        *reason = command.error;
        return false;
    }
    if (command.kind == RemoteCommand::ToggleStandby)
        return true;
    const auto addressed = std::find_if(m_zones.cbegin(), m_zones.cend(),
        [&command](const ZoneSimulation *candidate) { return candidate->id() == command.zoneId; });
    if (addressed == m_zones.cend() || !isAvailable(*addressed)) {
        *reason = QStringLiteral("there is no such zone now");
        return false;
    }
    ZoneSimulation *const zone = *addressed;
    bool done = true;
    switch (command.kind) {
    case RemoteCommand::Invalid:
    case RemoteCommand::ToggleStandby:
        break;
    case RemoteCommand::PlayPause:
        done = zone->playPause();
        break;
    case RemoteCommand::Previous:
        done = zone->previous();
        break;
    case RemoteCommand::Next:
        done = zone->next();
        break;
    case RemoteCommand::SetRadio:
        zone->setAutoRadio(command.on);
        break;
    case RemoteCommand::SetShuffle:
        zone->setShuffle(command.on);
        break;
    case RemoteCommand::SetLoop:
        done = zone->setLoop(command.mode);
        break;
    case RemoteCommand::SetVolume:
        done = zone->setVolume(command.value);
        break;
    case RemoteCommand::ChangeVolume:
        done = zone->changeVolume(command.value);
        break;
    }
    if (!done)
        *reason = QStringLiteral("the zone cannot do that now");
    return done;
}

bool RemoteControlService::isPlaying() const
{
    return m_coreDetected
        && std::any_of(m_zones.cbegin(), m_zones.cend(),
            [](const ZoneSimulation *zone) { return zone->isPlaying(); });
}

void RemoteControlService::advance(int milliseconds)
{
    if (!m_coreDetected)
        return;
    for (ZoneSimulation *const zone : qAsConst(m_zones))
        zone->advance(milliseconds);
}

bool RemoteControlService::isAvailable(ZoneSimulation *zone) const
{
    return m_started && m_coreDetected && canPlay(zone);
}

void RemoteControlService::publishCore()
{
    const auto fact = [this](const char *key, const QByteArray &value) {
        emit publish(Topics::core(key), value, true);
    };
    // The address first: whoever reacts to the detection wants to fetch pictures.
    fact("serverUrl", m_serverUrl.toUtf8());
    fact("serverName", "Music server (simulated)");
    fact("id", "5f0c5e1a-simulated-core");
    fact("version", "2.0 (simulated)");
    fact("coreDetected", m_coreDetected ? "true" : "false");
}

void RemoteControlService::publishConnected()
{
    emit publish(Topics::connected(), m_connected ? "true" : "false", true);
}

void RemoteControlService::publishSpotify()
{
    const auto state = [this](const char *key, const QByteArray &value) {
        emit publish(Topics::spotify(key), value, true);
    };
    const Album &album = Library::albums().first();
    const Track &track = album.tracks.first();
    state("state", "stopped");
    state("nowPlaying/seekPosition", "0");
    state("nowPlaying/length", QByteArray::number(track.seconds));
    state("nowPlaying/album", album.name.toUtf8());
    state("nowPlaying/song", track.song.toUtf8());
    state("nowPlaying/artist", album.artist.toUtf8());
    state("nowPlaying/imageUrl", "http://" + m_serverUrl.toUtf8() + "/image/" + album.imageKey());
}

void RemoteControlService::updateAvailable()
{
    if (!m_started)
        return;
    QVector<ZoneSimulation *> available;
    QJsonArray list;
    for (ZoneSimulation *const zone : qAsConst(m_zones)) {
        if (!isAvailable(zone))
            continue;
        available.append(zone);
        list.append(QJsonObject {
            { QStringLiteral("id"), zone->id() }, { QStringLiteral("name"), zone->name() } });
    }
    emit publish(
        Topics::availableZones(), QJsonDocument(list).toJson(QJsonDocument::Compact), true);
    const QVector<ZoneSimulation *> before = m_published;
    m_published = available;
    for (ZoneSimulation *const zone : qAsConst(available)) {
        if (!before.contains(zone))
            zone->republish();
        else
            zone->reportChanges(); // of its name, which must have been in the list first
    }
}

bool RemoteControlService::dissolve(ZoneSimulation *leader)
{
    Status &status = m_status[leader];
    if (status.followers.isEmpty())
        return false;
    for (ZoneSimulation *const follower : qAsConst(status.followers))
        m_status[follower].leader = nullptr;
    status.followers.clear();
    leader->setFollowers({});
    return true;
}
