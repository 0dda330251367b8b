// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/disturbance.h"

#include "simulator/services/topics.h"

#include <QVector>

Disturbance::Disturbance(const QString &zoneId, quint32 seed, QObject *parent)
    : QObject(parent)
    , m_zoneId(zoneId)
    , m_random(seed)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &Disturbance::floodOn);
}

void Disturbance::flood(int perSecond, int seconds)
{
    m_perSecond = perSecond;
    m_total = perSecond * seconds;
    m_sent = 0;
    m_elapsed.start();
    m_timer.start();
}

void Disturbance::noise(int count)
{
    for (int i = 0; i < count; ++i)
        emit publish(noiseTopic(), noisePayload(), false);
    emit finished();
}

void Disturbance::floodOn()
{
    // As many as are due, so that a timer that comes late does not slow the stream down.
    const int due = int(qMin<qint64>(m_total, m_elapsed.elapsed() * m_perSecond / 1000));
    for (; m_sent < due; ++m_sent) {
        const QByteArray number = QByteArray::number(m_sent);
        switch (m_sent % 4) {
        case 0:
            emit publish(Topics::zone(m_zoneId, "nowPlaying/song"), "Flood " + number, true);
            break;
        case 1:
            emit publish(Topics::zone(m_zoneId, "nowPlaying/seekPosition"), number, true);
            break;
        case 2:
            emit publish(
                Topics::zone(m_zoneId, "volume/value"), QByteArray::number(m_sent % 100), true);
            break;
        case 3:
            emit publish(Topics::zone(m_zoneId, "queue_items_remaining"), number, true);
            break;
        }
    }
    if (m_sent == m_total) {
        m_timer.stop();
        emit finished();
    }
}

QString Disturbance::noiseTopic()
{
    static const QVector<QString> odd {
        Topics::availableZones(),
        Topics::connected(),
        Topics::connected() + QStringLiteral("/more"),
        Topics::core("coreDetected"),
        Topics::core("serverName"),
        Topics::core("unheard_of"),
        Topics::core(""),
        Topics::spotify("nowPlaying/length"),
        Topics::spotify("nowPlaying"),
        Topics::spotify("unheard_of"),
        Topics::state("UpdateAvailable"),
        Topics::state("unheard_of"),
        Topics::state("UpdateInfo/deeper/and/deeper"),
        Topics::settings("touchscreen_clockcolor"),
        Topics::settings("touchscreen_scrolling"),
        Topics::settings("unheard_of"),
        Topics::command(),
        Topics::zone(QStringLiteral("nobody"), "").chopped(1),
        Topics::zone(QString(), "state"),
        Topics::zone(QStringLiteral("ghost"), "state"),
        Topics::state("").chopped(1),
    };
    static const QVector<QByteArray> keys { "name", "state", "outputs", "nowPlaying/song",
        "nowPlaying/length", "nowPlaying/seekPosition", "nowPlaying", "nowPlaying/",
        "settings/loop", "settings/shuffle", "settings", "volume/value", "volume/step",
        "volume/hard_limit_max", "volume/available", "volume", "queue_items_remaining",
        "is_next_allowed", "unheard_of", "objectName" };
    if (m_random.bounded(2) == 0)
        return odd.at(m_random.bounded(odd.size()));
    return Topics::zone(m_zoneId, keys.at(m_random.bounded(keys.size())));
}

QByteArray Disturbance::noisePayload()
{
    static const QVector<QByteArray> odd { "", "0", "-1", "1e999", "-1e999", "nan", "inf",
        "99999999999999999999", "0x10", "3.", " 7 ", "true", "TRUE", "null", "[]", "{}", "[[[[",
        "[{\"id\":5,\"name\":[]}]", "[{\"display_name\":null},7]", "{\"command\":7}",
        "{\"command\":\"\"}", "{\"command\":\"toggle_standby\"", "\xc3\x28", "\xff\xfe\xfd",
        "\xe2\x80\xaepot", "<b><img src='x'>", "%1%n%s" };
    const int choice = m_random.bounded(odd.size() + 6);
    if (choice < odd.size())
        return odd.at(choice);
    QByteArray bytes(m_random.bounded(300), '\0');
    for (char &byte : bytes)
        byte = char(m_random.bounded(256));
    return bytes;
}
