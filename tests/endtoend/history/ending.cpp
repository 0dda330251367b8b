// SPDX-License-Identifier: GPL-3.0-or-later
#include "ending.h"

#include "topicbegin.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

/** Values of this grid differ by more than what counts as no change, or not at all. */
constexpr float VolumeGrid = 0.5f;

bool isOnGrid(const QByteArray &volume)
{
    const float steps = volume.toFloat() / VolumeGrid;
    return std::fabs(steps - std::round(steps)) < 1e-6f;
}

bool isTrue(const QByteArray &payload)
{
    return QVariant(payload).toBool();
}

} // namespace

Ending::Ending(const History &history, const QString &wantedZone)
    : m_values(history)
{
    core();
    zone(wantedZone);
    picture();
    playbackState();
    volume(history);
    screenSaver();
}

Step Ending::lastWord() const
{
    const QString topic = zoneTopic(QStringLiteral("name"));
    return Step::message(topic, m_values.value(topic));
}

void Ending::publish(const QString &topic, const QByteArray &payload)
{
    m_messages.append(Step::message(topic, payload));
    m_values.add(m_messages.last());
}

QString Ending::zoneTopic(const QString &key) const
{
    return TopicBegin::Zones + m_zoneId + QLatin1Char('/') + key;
}

/** The zone's id if the list of zones leaves no doubt which one it is. */
QString Ending::resolvedZone(const QString &name) const
{
    const QMap<QString, QString> &available = m_values.availableZones();
    if (available.contains(name))
        return available.value(name);
    const QStringList groups = QStringList(available.keys()).filter(name + QStringLiteral(" + "));
    return groups.size() == 1 ? available.value(groups.first()) : QString();
}

void Ending::core()
{
    const QString topic = TopicBegin::Core + QStringLiteral("coreDetected");
    if (!isTrue(m_values.value(topic)))
        publish(topic, "true");
}

void Ending::zone(const QString &wantedZone)
{
    m_zoneId = resolvedZone(wantedZone);
    if (m_zoneId.isEmpty()) {
        m_zoneId = QStringLiteral("last");
        const QJsonObject element { { QStringLiteral("id"), m_zoneId },
            { QStringLiteral("name"), wantedZone } };
        publish(Topics::availableZones(),
            QJsonDocument(QJsonArray { element }).toJson(QJsonDocument::Compact));
    }
    const QMap<QString, QString> &available = m_values.availableZones();
    if (!available.contains(QString::fromUtf8(m_values.value(zoneTopic(QStringLiteral("name"))))))
        publish(zoneTopic(QStringLiteral("name")), available.key(m_zoneId).toUtf8());
}

void Ending::picture()
{
    const QString topic = zoneTopic(QStringLiteral("nowPlaying/imageKey"));
    if (m_values.value(topic).isEmpty())
        publish(topic, "red");
}

void Ending::playbackState()
{
    const QString topic = zoneTopic(QStringLiteral("state"));
    if (m_values.has(topic) && m_values.value(topic).isEmpty())
        publish(topic, "paused");
}

void Ending::volume(const History &history)
{
    if (!isTrue(m_values.value(zoneTopic(QStringLiteral("volume/available")))))
        return;
    const bool anyOffGrid = std::any_of(history.begin(), history.end(), [](const Step &step) {
        return step.topic.endsWith(QStringLiteral("/volume/value")) && !isOnGrid(step.payload);
    });
    if (!anyOffGrid)
        return;
    publish(zoneTopic(QStringLiteral("volume/value")), "-1000");
    publish(zoneTopic(QStringLiteral("volume/value")), "30");
}

void Ending::screenSaver()
{
    const QString topic = TopicBegin::Settings + QStringLiteral("touchscreen_screensaver_time");
    if (m_values.has(topic) && m_values.value(topic).toUInt() == 0)
        publish(topic, "10");
}
