// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "loggedclient.h"
#include "mosquittoprocess.h"
#include "oursalone.h"
#include "resolver.h"
#include "signallog.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

namespace {
constexpr int PatienceMs = 60000;
constexpr quint16 ShortestKeepAlive = 5; // seconds

/** How often threads of this process have gone to sleep of their own accord. */
int timesAsleep()
{
    int sum = 0;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task + "/status"));
        if (!status.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                sum += line.mid(line.indexOf('\t')).trimmed().toInt();
        }
    }
    return sum;
}

/** timesAsleep() while an event loop runs for this time and ends by a timer. */
int timesAsleepWithin(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    const int before = timesAsleep();
    loop.exec();
    return timesAsleep() - before;
}
} // namespace

/** Pings, and the silence between them. */
class TestKeepAlive : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void idleClientDoesNotWakeUp();
    void silentBrokerIsGivenUp();
    void unansweredConnectRequestIsGivenUp();
    void unansweredLookupIsGivenUp();
    void busyAndIdleClientsAreKept();
    void pingsCanBeSwitchedOff();
};

void TestKeepAlive::idleClientDoesNotWakeUp()
{
    constexpr int SpanMs = 5000;
    MosquittoProcess broker;
    QVERIFY(broker.start());
    const int withoutClient = timesAsleepWithin(SpanMs);

    LoggedClient client(broker.port());
    QVERIFY(client.connects());
    const QMqttSubscription *subscription = client.subscribe(QLatin1String("a"));
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Subscribed);
    broker.log(); // or reading it would count
    const int withClient = timesAsleepWithin(SpanMs);
    QVERIFY2(withClient <= withoutClient + 2,
        qPrintable(QString("%1 instead of %2").arg(withClient).arg(withoutClient)));
}

void TestKeepAlive::silentBrokerIsGivenUp()
{
    OURS_ALONE("the module gives up one ping later");
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setKeepAlive(ShortestKeepAlive);
    SignalLog log(&client);
    client.connectToHost();
    QTRY_COMPARE_WITH_TIMEOUT(peer.count(FakeBroker::PingRequest), 1, PatienceMs);
    peer.setAnsweringPings(false);
    QTRY_COMPARE_WITH_TIMEOUT(client.state(), QMqttClient::Disconnected, PatienceMs);
    QCOMPARE(peer.count(FakeBroker::PingRequest), 2);
    QCOMPARE(log.entries(),
        (QStringList { "stateChanged(Connecting)", "stateChanged(Connected)", "connected",
            "stateChanged(Disconnected)", "disconnected", "errorChanged(ServerUnavailable)" }));
}

void TestKeepAlive::unansweredConnectRequestIsGivenUp()
{
    OURS_ALONE("the module waits without an end");
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    QMqttClient client;
    aim(&client, peer.port());
    client.setKeepAlive(ShortestKeepAlive);
    SignalLog log(&client);
    client.connectToHost();
    QTRY_COMPARE_WITH_TIMEOUT(client.state(), QMqttClient::Disconnected, PatienceMs);
    QCOMPARE(log.entries(),
        (QStringList { "stateChanged(Connecting)", "stateChanged(Disconnected)", "disconnected",
            "errorChanged(ServerUnavailable)" }));
}

void TestKeepAlive::unansweredLookupIsGivenUp()
{
    OURS_ALONE("the module waits for as long as the lookup takes");
    Resolver resolver("unanswered.test", "127.0.0.1");
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setHostname("unanswered.test");
    client.setKeepAlive(ShortestKeepAlive);
    SignalLog log(&client);
    client.connectToHost();
    QTRY_VERIFY(resolver.isAsked());
    const QStringList expected { "stateChanged(Connecting)", "stateChanged(Disconnected)",
        "disconnected", "errorChanged(TransportInvalid)" };
    QTRY_COMPARE_WITH_TIMEOUT(log.entries(), expected, PatienceMs);
    resolver.release();
    // The late answer is not used: the first to call is another client.
    QMqttClient other;
    aim(&other, peer.port());
    other.setHostname("unanswered.test");
    other.connectToHost();
    QTRY_COMPARE(other.state(), QMqttClient::Connected);
    QCOMPARE(peer.connections(), 1);
    QCOMPARE(log.entries(), expected);
}

void TestKeepAlive::busyAndIdleClientsAreKept()
{
    MosquittoProcess
        broker; // throws out whoever is silent for one and a half times the keep-alive time
    QVERIFY(broker.start());
    QMqttClient idle, busy, onceBusy, unkept;
    for (QMqttClient *client : { &idle, &busy, &onceBusy, &unkept }) {
        aim(client, broker.port());
        client->setKeepAlive(ShortestKeepAlive);
        client->setAutoKeepAlive(client != &unkept);
        client->connectToHost();
        QTRY_COMPARE(client->state(), QMqttClient::Connected);
    }
    QTimer often;
    connect(&often, &QTimer::timeout, this, [&] { busy.publish(QLatin1String("a"), "x"); });
    often.start(1700);
    // Speaks up shortly before its ping is due, so that the next one is due much later.
    QTimer::singleShot(4500, this, [&] { onceBusy.publish(QLatin1String("a"), "x"); });

    QTRY_COMPARE_WITH_TIMEOUT(unkept.state(), QMqttClient::Disconnected, PatienceMs);
    // One more such time.
    unkept.connectToHost();
    QTRY_COMPARE(unkept.state(), QMqttClient::Connected);
    QTRY_COMPARE_WITH_TIMEOUT(unkept.state(), QMqttClient::Disconnected, PatienceMs);
    for (const QMqttClient *client : { &idle, &busy, &onceBusy })
        QCOMPARE(client->state(), QMqttClient::Connected);
}

void TestKeepAlive::pingsCanBeSwitchedOff()
{
    OURS_ALONE("the module ends a connection without an interval");
    FakeBroker peer, other;
    QMqttClient noInterval, notAutomatic, pinging;
    aim(&noInterval, peer.port());
    noInterval.setKeepAlive(0);
    aim(&notAutomatic, peer.port());
    notAutomatic.setKeepAlive(ShortestKeepAlive);
    notAutomatic.setAutoKeepAlive(false);
    aim(&pinging, other.port());
    pinging.setKeepAlive(ShortestKeepAlive);
    for (QMqttClient *client : { &noInterval, &notAutomatic, &pinging }) {
        client->connectToHost(); // the pinging one last: pings of the others would come earlier
        QTRY_COMPARE(client->state(), QMqttClient::Connected);
    }
    QTRY_COMPARE_WITH_TIMEOUT(other.count(FakeBroker::PingRequest), 1, PatienceMs);
    QCOMPARE(peer.count(FakeBroker::PingRequest), 0);
    QCOMPARE(noInterval.state(), QMqttClient::Connected);
    QCOMPARE(notAutomatic.state(), QMqttClient::Connected);
}

QTEST_GUILESS_MAIN(TestKeepAlive)
#include "tst_keepalive.moc"
