// SPDX-License-Identifier: GPL-3.0-or-later
#include "playertest.h"
#include "mqtt.h"
#include "navigationcontroller.h"
#include "roonzones.h"

#include <QTest>

void PlayerTest::initTestCase()
{
    // No broker: the attempt to connect fails, and its lines are over, before the first test.
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
    NavigationController::instance();
    const auto *const client = Mqtt::instance()->findChild<QMqttClient *>();
    QTRY_COMPARE(client->error(), QMqttClient::TransportInvalid);
}

void PlayerTest::init()
{
    m_log = std::make_unique<LogCapture>();
    RoonZones::instance()->updateAvailableZones("[]");
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z1","name":"Kitchen"}])");
    m_zone = new RoonZone(QStringLiteral("z1"));
    QVERIFY(RoonZones::instance()->add(m_zone));
    m_zone->setName(QStringLiteral("Kitchen"));
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
    m_player = std::make_unique<Player>();
    m_signals = std::make_unique<SignalRecorder>(m_player.get());
    m_log->clear();
}

void PlayerTest::cleanup()
{
    m_signals.reset();
    m_player.reset();
    QCoreApplication::processEvents(); // the queued evaluations of the navigation
    m_log->clear();                    // what a test has to say about the log, it has said
    m_log.reset();
}
