// SPDX-License-Identifier: GPL-3.0-or-later
#include "playertest.h"

#include "navigationcontroller.h"
#include "nobroker.h"
#include "roonzones.h"

void startPlayerWithoutBroker()
{
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
    NavigationController::instance();
    waitForTheFailureOf(Mqtt::instance());
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
