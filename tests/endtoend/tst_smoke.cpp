// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/machine/panel.h"
#include "testkit/process/program.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/services/notifysocket.h"
#include "testkit/waiting.h"

#include <QTest>

/**
 * The shortest way through everything: start, a message in, a touch, a message out, a picture,
 * stop.
 */
class TestSmoke : public QObject {
    Q_OBJECT

private slots:
    void startsShowsAndStops();
};

void TestSmoke::startsShowsAndStops()
{
    Broker broker;
    BrokerClient services;
    QVERIFY(services.startBroker(&broker));
    NotifySocket serviceManager;
    const Panel panel;

    Program program;
    program.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    program.setEnvironment(
        QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), QStringLiteral("Kitchen"));
    QVERIFY(program.startAndWait());
    QTRY_COMPARE_WITH_TIMEOUT(serviceManager.count("READY=1"), 1, PatienceMs);
    QVERIFY(services.waitFor(Topics::display() + "zone", "Kitchen"));
    QCOMPARE(panel.brightness(), QByteArray("150"));
    QCOMPARE(
        program.probe().environment(QStringLiteral("QML_DISABLE_DISK_CACHE")), QJsonValue("true"));
    QTRY_VERIFY_WITH_TIMEOUT(
        program.probe().shows(Probe::Target::text(QStringLiteral("Welcome!"))), PatienceMs);
    QCOMPARE(program.probe().picture().size(), QSize(800, 480));
    QVERIFY(program.stop());
}

QTEST_GUILESS_MAIN(TestSmoke)
#include "tst_smoke.moc"
