// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/mqttreference.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QString ZoneId = QStringLiteral("{zoneId}");

bool matches(const QString &described, const QString &topic)
{
    if (!described.contains(ZoneId))
        return described == topic;
    const QString pattern = QRegularExpression::escape(described).replace(
        QRegularExpression::escape(ZoneId), QStringLiteral("[^/]+"));
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(topic).hasMatch();
}

MqttReference::Entry entryFrom(const QJsonObject &described)
{
    MqttReference::Entry entry;
    entry.message = described["message"].toString();
    entry.topic = described["topic"].toString();
    entry.received = described["received"].toBool();
    entry.qos = described["qos"].toInt();
    entry.retain = described["retain"].toBool();
    entry.examples = described["examples"].toArray();
    const QJsonArray sent = described["sent"].toArray();
    for (const QJsonValue &payload : sent)
        entry.sent.append(payload.toString().toUtf8());
    const QJsonArray pages = described["pages"].toArray();
    for (const QJsonValue &page : pages)
        entry.pages.append(page.toString());
    const QJsonObject property = described["property"].toObject();
    entry.object = property["object"].toString();
    entry.property = property["name"].toString();
    entry.type = property["type"].toString();
    entry.initial = property.value("initial");
    entry.becomes = property.value("becomes");
    const QJsonObject odd = described["odd"].toObject();
    entry.oddPayload = odd["payload"].toString().toUtf8();
    entry.oddBecomes = odd.value("becomes");
    return entry;
}

} // namespace

QString MqttReference::Entry::topicOf(const QString &zoneId) const
{
    return QString(topic).replace(ZoneId, zoneId);
}

const MqttReference &MqttReference::instance()
{
    static const MqttReference reference;
    return reference;
}

MqttReference::MqttReference()
{
    QFile file(QStringLiteral(TOUCHUI_MQTT_CATALOGUE));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(file.fileName()));
    const QJsonArray described = QJsonDocument::fromJson(file.readAll()).array();
    for (const QJsonValue &entry : described)
        m_entries.append(entryFrom(entry.toObject()));
    if (m_entries.isEmpty())
        qFatal("%s describes no message", qUtf8Printable(file.fileName()));
}

const MqttReference::Entry &MqttReference::entry(const QString &message) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
        [&message](const Entry &candidate) { return candidate.message == message; });
    if (found == m_entries.end())
        qFatal("docs/mqtt-api.yaml has no message %s", qUtf8Printable(message));
    return *found;
}

QString MqttReference::objection(const QString &topic, int qos, bool retain) const
{
    QString objection = QStringLiteral("is not documented");
    for (const Entry &entry : m_entries) {
        if (!matches(entry.topic, topic))
            continue;
        if (entry.retain == retain && (entry.received || entry.qos == qos))
            return QString();
        objection = QStringLiteral("is documented as QoS %1, %2, and was published as QoS %3, %4")
                        .arg(entry.qos)
                        .arg(entry.retain ? "retained" : "not retained")
                        .arg(qos)
                        .arg(retain ? "retained" : "not retained");
    }
    return objection;
}
