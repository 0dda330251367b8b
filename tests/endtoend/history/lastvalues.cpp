// SPDX-License-Identifier: GPL-3.0-or-later
#include "lastvalues.h"

#include "topicbegin.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/** The zone's id in a topic about one zone. */
QString zoneId(const QString &topic)
{
    return topic.mid(TopicBegin::Zones.size()).section(QLatin1Char('/'), 0, 0);
}

QMap<QString, QString> zonesIn(const QByteArray &list)
{
    QMap<QString, QString> zones;
    const QJsonArray elements = QJsonDocument::fromJson(list).array();
    for (const QJsonValue &element : elements)
        zones.insert(
            element[QLatin1String("name")].toString(), element[QLatin1String("id")].toString());
    return zones;
}

} // namespace

LastValues::LastValues(const History &history)
{
    for (const Step &step : history)
        add(step);
}

void LastValues::add(const Step &step)
{
    if (step.kind != Step::Message || step.topic == Topics::command())
        return;
    m_values.insert(step.topic, step.payload);
    if (step.topic != Topics::availableZones())
        return;
    m_available = zonesIn(step.payload);
    dropStaleZones();
}

History LastValues::messages() const
{
    History messages;
    for (auto value = m_values.begin(); value != m_values.end(); ++value)
        messages.append(Step::message(value.key(), value.value()));
    return messages;
}

void LastValues::dropStaleZones()
{
    const QStringList available = m_available.values();
    for (auto value = m_values.begin(); value != m_values.end();) {
        const QString &topic = value.key();
        const bool isStale = topic.startsWith(TopicBegin::Zones)
            && topic != Topics::availableZones() && !available.contains(zoneId(topic));
        value = isStale ? m_values.erase(value) : std::next(value);
    }
}
