// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/services/notifysocket.h"
#include "testkit/waiting.h"

#include <QTest>
#include <QTime>

#include <ctime>

using namespace PageNames;

namespace {

constexpr qint64 Wrap = Q_INT64_C(1) << 31; // ms; half of what 32 bits count, 24.8 days
/** Five seconds; Qt may end a timer 5 % early, to wake the processor less. */
constexpr int WelcomeMs = 5000 * 95 / 100;
constexpr int PingMs = 2800;

/** Milliseconds since the machine was switched on, as timers count them. */
qint64 uptimeMs()
{
    timespec time {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

} // namespace

/**
 * What has run for weeks: milliseconds that are kept in 32 bits change their sign after 24.8 days
 * and begin anew after 49.7. To be run by "sandbox --uptime", shortly before one of these moments.
 */
class TestUptime : public QObject {
    Q_OBJECT

private slots:
    void everythingGoesOnAfterTheMoment();
};

void TestUptime::everythingGoesOnAfterTheMoment()
{
    const qint64 moment = (uptimeMs() / Wrap + 1) * Wrap;
    QVERIFY2(
        moment - uptimeMs() < 60000, "start this by sandbox --uptime, shortly before the moment");
    NotifySocket serviceManager;
    Appliance appliance;
    appliance.program.setEnvironment("NOTIFY_SOCKET", serviceManager.path());
    QVERIFY(appliance.startServices());
    appliance.publishZone("nowPlaying/song", QByteArray(100, 'o')); // scrolls
    appliance.publishZone("state", "playing");

    // The welcome page stands over the moment.
    QVERIFY2(moment - uptimeMs() > 3000, "the machine is too busy: the moment has passed");
    QVERIFY(waitUntil([&] { return moment - uptimeMs() <= 3000; }, 60000));
    const qint64 start = uptimeMs();
    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.waitForPage(Player));
    const qint64 player = uptimeMs();
    QVERIFY2(player >= start + WelcomeMs,
        "the welcome page went early: after " + QByteArray::number(player - start) + " ms");
    QVERIFY2(player > moment, "the moment was not met");

    // What moves goes on moving.
    QVERIFY(waitUntil([&] { return serviceManager.count("WATCHDOG=1") >= 4; }));
    appliance.program.probe().frames();
    QVERIFY(waitUntil([&] { return appliance.program.probe().frames() > 0; }));

    // What is touched answers, and what ticks tells the time.
    QVERIFY(appliance.program.probe().tap("cover"));
    QVERIFY(appliance.waitForPage(Clock));
    QVERIFY(waitUntil([&] {
        return appliance.program.probe().property("time", "text")
            == QJsonValue(QTime::currentTime().toString("H:mm"));
    }));

    // The service manager has heard all the time, and never too often.
    QList<qint64> pings;
    for (const NotifySocket::Message &message : serviceManager.messages()) {
        if (message.text == "WATCHDOG=1")
            pings.append(message.milliseconds);
    }
    for (int i = 1; i < pings.size(); ++i) {
        const qint64 apart = pings.at(i) - pings.at(i - 1);
        QVERIFY2(apart > PingMs / 2 && apart < 4 * PingMs, qPrintable(QString::number(apart)));
    }
    QVERIFY(appliance.program.stop());
}

QTEST_GUILESS_MAIN(TestUptime)
#include "tst_uptime.moc"
