// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"

#include "simulator/services/topics.h"
#include "testkit/services/opening.h"
#include "testkit/waiting.h"

Appliance::Appliance(QObject *parent)
    : QObject(parent)
{
    program.setEnvironment("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
}

bool Appliance::startServices()
{
    return services.startBroker(&broker) && Opening::publish(services, "paused", images.address());
}

bool Appliance::start()
{
    return startServices() && program.startAndWait() && skipWelcome()
        && waitForPage("RoonPlayerWindow2");
}

bool Appliance::skipWelcome()
{
    const bool known = waitUntil([this] {
        return program.probe().objectProperty(Probe::Target::type("Player"), "playAllowed")
            == QJsonValue(true);
    });
    endWelcome();
    return known;
}

void Appliance::endWelcome()
{
    const Probe::Target welcomeTimer(QJsonObject { { "type", "QTimer" },
        { "where", QJsonObject { { "interval", 5000 }, { "active", true } } } });
    // On a busy machine its five seconds may have gone before.
    if (program.probe().alive(welcomeTimer) > 0)
        program.probe().setObjectProperty(welcomeTimer, "interval", 0);
}

void Appliance::publishCore(const QString &property, const QByteArray &value)
{
    services.publish(Topics::core(qPrintable(property)), value, true);
}

void Appliance::publishZone(const QString &key, const QByteArray &value)
{
    services.publish(Topics::zone("z1", key.toLatin1()), value, true);
}

void Appliance::publishVolume()
{
    publishZone("volume/hard_limit_min", "0");
    publishZone("volume/soft_limit", "80");
    publishZone("volume/available", "true");
}

void Appliance::publishZones(const QByteArray &json)
{
    services.publish(Topics::availableZones(), json, true);
}

void Appliance::publishSetting(const QString &key, const QByteArray &value)
{
    services.publish(Topics::settings(qPrintable(key)), value, true);
}

void Appliance::publishState(const QString &property, const QByteArray &value)
{
    services.publish(Topics::state(qPrintable(property)), value, true);
}

void Appliance::sendCommand(const QByteArray &json)
{
    services.publish(Topics::command(), json);
}

bool Appliance::handled()
{
    // A key that means nothing: it is logged and leaves everything as it is.
    const QString marker = QString("end_of_step_%1").arg(++m_markers);
    services.publish(Topics::settings(qPrintable(marker)), QByteArray());
    return program.waitForLine(Line::debug("Mqtt::updateSettings() " + marker));
}

QList<QByteArray> Appliance::commands() const
{
    return services.payloads(Topics::command());
}

QString Appliance::songOnView()
{
    return program.probe().property(Probe::Target("label").inside("songTitle"), "text").toString();
}
