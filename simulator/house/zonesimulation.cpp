// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/zonesimulation.h"

#include "simulator/house/library.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/** After this time, "previous" means the beginning of this track. */
constexpr int RestartAfterMs = 5000;

QByteArray boolean(bool value)
{
    return value ? "true" : "false";
}

QByteArray number(double value)
{
    return QByteArray::number(value, 'g', 6);
}

} // namespace

ZoneSimulation::ZoneSimulation(
    const ZoneDescription &description, QRandomGenerator *random, QObject *parent)
    : QObject(parent)
    , m_description(description)
    , m_firstName(description.name)
    , m_random(random)
    , m_loop(QStringLiteral("disabled"))
    , m_volume(description.volume.start)
    , m_reported(properties())
{
}

QString ZoneSimulation::name() const
{
    return (QStringList(m_description.name) + m_followers).join(QStringLiteral(" + "));
}

QString ZoneSimulation::song() const
{
    const Entry *const entry = current();
    return entry ? entry->track->song : QString();
}

QString ZoneSimulation::nowPlaying() const
{
    const Entry *const entry = current();
    if (!entry)
        return QStringLiteral("nothing");
    return entry->track->song + QStringLiteral(" / ") + entry->album->artist + QStringLiteral(" / ")
        + entry->album->name;
}

QVector<ZoneSimulation::Property> ZoneSimulation::properties() const
{
    const Entry *const entry = current();
    const bool radio = isRadio();
    QJsonArray outputs;
    const QStringList members = QStringList(m_description.name) + m_followers;
    for (const QString &member : members) {
        outputs.append(QJsonObject { { QStringLiteral("display_name"), member },
            { QStringLiteral("zone_id"), m_description.id } });
    }
    const char *state = "stopped";
    if (m_state == State::Playing)
        state = "playing";
    else if (m_state == State::Paused)
        state = "paused";

    QVector<Property> all {
        { "id", m_description.id.toUtf8() },
        { "name", name().toUtf8() },
        { "outputs", QJsonDocument(outputs).toJson(QJsonDocument::Compact) },
        { "nowPlaying/artist", entry ? entry->album->artist.toUtf8() : QByteArray() },
        { "nowPlaying/song", song().toUtf8() },
        { "nowPlaying/album", entry ? entry->album->name.toUtf8() : QByteArray() },
        { "nowPlaying/imageKey", entry ? entry->album->imageKey() : QByteArray() },
        { "nowPlaying/length", QByteArray::number(entry && !radio ? entry->track->seconds : 0) },
        { "nowPlaying/seekPosition", QByteArray::number(m_positionMs / 1000) },
        { "settings/shuffle", boolean(m_shuffle) },
        { "settings/loop", m_loop.toUtf8() },
        { "settings/autoRadio", boolean(m_autoRadio) },
        // The programmes of a station are nobody's queue.
        { "queue_items_remaining",
            QByteArray::number(entry && !radio ? m_order.size() - m_place : 0) },
        { "queue_time_remaining", QByteArray::number(remainingSeconds()) },
        { "is_previous_allowed", boolean(entry && !radio) },
        { "is_next_allowed", boolean(hasNext()) },
        { "is_pause_allowed", boolean(m_state == State::Playing) },
        { "is_play_allowed", boolean(entry && m_state != State::Playing) },
        { "is_seek_allowed", boolean(entry && !radio) },
        { "volume/available", boolean(m_description.volume.available) },
    };
    if (m_description.volume.available) {
        const VolumeRange &range = m_description.volume;
        all += QVector<Property> {
            { "volume/type", range.type },
            { "volume/min", number(range.min) },
            { "volume/max", number(range.max) },
            { "volume/hard_limit_min", number(range.hardLimitMin) },
            { "volume/hard_limit_max", number(range.hardLimitMax) },
            { "volume/soft_limit", number(range.softLimit) },
            { "volume/step", number(range.step) },
            { "volume/value", number(m_volume) },
            { "volume/is_muted", boolean(m_muted) },
        };
    }
    // The state last: whoever reacts to it finds the rest up to date.
    all.append(Property { "state", state });
    return all;
}

void ZoneSimulation::republish()
{
    m_reported = properties();
    for (const Property &property : qAsConst(m_reported))
        emit propertyChanged(property.key, property.value);
}

void ZoneSimulation::rename(const QString &name)
{
    m_description.name = name;
}

void ZoneSimulation::setFollowers(const QStringList &names)
{
    m_followers = names;
}

void ZoneSimulation::setQueue(const QVector<const Album *> &albums, int index)
{
    fillQueue(albums, index);
    setState(State::Stopped);
    reportChanges();
}

void ZoneSimulation::fillQueue(const QVector<const Album *> &albums, int index)
{
    m_queue.clear();
    for (const Album *const album : albums) {
        for (const Track &track : album->tracks)
            m_queue.append({ album, &track });
    }
    m_order.resize(m_queue.size());
    std::iota(m_order.begin(), m_order.end(), 0);
    m_place = qBound(0, index, qMax(0, int(m_order.size()) - 1));
    m_positionMs = 0;
    if (m_shuffle)
        shuffleRest();
}

bool ZoneSimulation::play()
{
    if (!current())
        return false;
    if (m_state == State::Playing)
        return true;
    setState(State::Playing);
    reportChanges();
    emit trackStarted();
    return true;
}

bool ZoneSimulation::pause()
{
    if (m_state != State::Playing)
        return false;
    if (isRadio())
        return stop();
    setState(State::Paused);
    reportChanges();
    return true;
}

bool ZoneSimulation::stop()
{
    m_positionMs = 0;
    setState(State::Stopped);
    reportChanges();
    return true;
}

bool ZoneSimulation::playPause()
{
    return m_state == State::Playing ? pause() : play();
}

bool ZoneSimulation::next()
{
    if (!hasNext())
        return false;
    moveOn();
    reportChanges();
    return true;
}

bool ZoneSimulation::previous()
{
    if (!current() || isRadio())
        return false;
    moveTo(m_positionMs > RestartAfterMs ? m_place : qMax(0, m_place - 1));
    reportChanges();
    return true;
}

bool ZoneSimulation::seek(int seconds)
{
    if (!current() || isRadio())
        return false;
    m_positionMs = qBound<qint64>(0, qint64(seconds) * 1000, lengthMs() - 1000);
    reportChanges();
    return true;
}

void ZoneSimulation::setAutoRadio(bool on)
{
    m_autoRadio = on;
    reportChanges();
}

void ZoneSimulation::setShuffle(bool on)
{
    if (m_shuffle != on && !m_order.isEmpty()) {
        if (on) {
            shuffleRest();
        } else { // back to the album's order, from the track that is on
            const int index = m_order.at(m_place);
            std::iota(m_order.begin(), m_order.end(), 0);
            m_place = index;
        }
    }
    m_shuffle = on;
    reportChanges();
}

QStringList ZoneSimulation::loopModes()
{
    return { QStringLiteral("disabled"), QStringLiteral("loop"), QStringLiteral("loop_one") };
}

bool ZoneSimulation::setLoop(const QString &mode)
{
    if (!loopModes().contains(mode))
        return false;
    m_loop = mode;
    reportChanges();
    return true;
}

bool ZoneSimulation::setVolume(double value)
{
    const VolumeRange &range = m_description.volume;
    if (!range.available || !std::isfinite(value))
        return false;
    const double whole = range.min + std::round((value - range.min) / range.step) * range.step;
    m_volume = qBound(range.hardLimitMin, whole, range.hardLimitMax);
    reportChanges();
    return true;
}

bool ZoneSimulation::setMuted(bool muted)
{
    if (!m_description.volume.available)
        return false;
    m_muted = muted;
    reportChanges();
    return true;
}

void ZoneSimulation::advance(int milliseconds)
{
    if (m_state != State::Playing)
        return;
    m_positionMs += milliseconds;
    while (m_state == State::Playing && m_positionMs >= lengthMs()) {
        const qint64 rest = m_positionMs - lengthMs();
        endOfTrack();
        m_positionMs = m_state == State::Playing ? rest : 0;
    }
    reportChanges();
}

const ZoneSimulation::Entry *ZoneSimulation::current() const
{
    return m_order.isEmpty() ? nullptr : &m_queue.at(m_order.at(m_place));
}

bool ZoneSimulation::isRadio() const
{
    const Entry *const entry = current();
    return entry && entry->album->radio;
}

bool ZoneSimulation::hasNext() const
{
    return current() && !isRadio()
        && (m_place + 1 < m_order.size() || m_loop == QLatin1String("loop") || m_autoRadio);
}

qint64 ZoneSimulation::lengthMs() const
{
    return qint64(1000) * current()->track->seconds;
}

int ZoneSimulation::remainingSeconds() const
{
    if (m_order.isEmpty() || isRadio())
        return 0;
    qint64 seconds = -m_positionMs / 1000;
    for (int place = m_place; place < m_order.size(); ++place)
        seconds += m_queue.at(m_order.at(place)).track->seconds;
    return int(seconds);
}

void ZoneSimulation::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit playingChanged();
}

void ZoneSimulation::moveTo(int place)
{
    m_place = place;
    m_positionMs = 0;
    emit trackStarted();
}

void ZoneSimulation::moveOn()
{
    // A station's programmes go round forever.
    if (isRadio() || m_loop == QLatin1String("loop") || m_place + 1 < m_order.size()) {
        moveTo((m_place + 1) % m_order.size());
        return;
    }
    const QVector<Album> &albums = Library::albums();
    const Album *album = nullptr;
    while (!album || album->radio)
        album = &albums.at(m_random->bounded(albums.size()));
    fillQueue({ album }, 0);
    emit trackStarted();
}

void ZoneSimulation::endOfTrack()
{
    if (m_loop == QLatin1String("loop_one"))
        moveTo(m_place);
    else if (isRadio() || hasNext())
        moveOn();
    else {
        m_place = 0;
        setState(State::Stopped);
    }
}

void ZoneSimulation::shuffleRest()
{
    // By hand: the standard library's shuffle may differ between versions.
    for (int place = int(m_order.size()) - 1; place > m_place + 1; --place)
        std::swap(m_order[place], m_order[m_random->bounded(m_place + 1, place + 1)]);
}

void ZoneSimulation::reportChanges()
{
    const QVector<Property> now = properties();
    const QVector<Property> before = m_reported;
    m_reported = now;
    for (int i = 0; i < now.size(); ++i) { // the keys never change
        if (now.at(i).value != before.at(i).value)
            emit propertyChanged(now.at(i).key, now.at(i).value);
    }
}
