// SPDX-License-Identifier: GPL-3.0-or-later
#include "roonzone.h"

#include "storeifchanged.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

RoonZone::RoonZone(const QString &id)
    : m_id(id)
{
    qDebug().noquote().nospace() << "RoonZone::constructor in thread "
                                 << QThread::currentThreadId();
}

void RoonZone::setId(const QString &value)
{
    if (storeIfChanged(m_id, value))
        emit zoneChanged();
}

void RoonZone::setName(const QString &value)
{
    if (storeIfChanged(m_name, value))
        emit zoneChanged();
}

void RoonZone::setState(const QString &value)
{
    if (storeIfChanged(m_state, value))
        emit zoneChanged();
}

void RoonZone::setOutputs(const QByteArray &json)
{
    const QJsonArray elements = QJsonDocument::fromJson(json).array();
    qDebug().noquote().nospace() << "RoonZone::setOutputs() "
                                 << QJsonDocument(elements).toJson(QJsonDocument::Compact);
    QStringList outputs;
    for (const QJsonValue &element : elements)
        outputs.append(element.toObject().value(QLatin1String("display_name")).toString());
    if (storeIfChanged(m_outputs, outputs))
        emit m_outputsNotifier.changed();
}
