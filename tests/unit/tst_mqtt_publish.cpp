// SPDX-License-Identifier: GPL-3.0-or-later
#include "modelclasstest.h"
#include "mqtt.h"
#include "player.h"
#include "signalrecorder.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QMetaEnum>
#include <QMqttSubscription>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include <memory>

namespace {

const QString BailOutLine = QStringLiteral("debug: Mqtt::publish() cached value, bail out");
const QString ConnectedLine = QStringLiteral("info: Mqtt::connectedToBroker()");
const QString DisconnectedLine = QStringLiteral("warning: Mqtt::brokerDisconnected()");
const QString LostLine = QStringLiteral("critical: Mqtt::error() TransportInvalid");

const QStringList Filters {
    "Velunor/Settings/v2/#",
    "Velunor/State/v1/#",
    "Velunor/Controller/remote_control/v4/roon/Roon/#",
    "Velunor/Controller/remote_control/v4/roon/Zones/#",
    "Velunor/Controller/remote_control/v4/connected",
    "Velunor/Controller/remote_control/v4/Control/command",
    "Velunor/Controller/remote_control/v4/spotify/#",
};

} // namespace

class TestMqttPublish : public ModelClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<Mqtt>(); }
    QStringList methodEntries() const override;
    QStringList constructorLines() const override;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void constructorConnects();
    void connectionSubscribesInOrder();
    void clientSettingsAreTheDefaults();
    void connectedComesAfterTheSubscriptions();
    void receivedMessagesAreDispatched();

    void publishPassesQosAndRetainOn_data();
    void publishPassesQosAndRetainOn();
    void publishWithoutCacheAlwaysSends();
    void cachedPublish_data();
    void cachedPublish();
    void cacheIsKeptForEachTopic();
    void payloadIsSentByteForByte_data();
    void payloadIsSentByteForByte();
    void publishWithoutConnectionIsSilentButRemembered();

    void refusedConnectionIsReportedOnce();
    void brokerThatEndsStaysLost_data();
    void brokerThatEndsStaysLost();
    void errorIsLoggedByItsName_data();
    void errorIsLoggedByItsName();
    void connectionTimeoutOnlyLogs();
    void destructorDisconnects();
    void instanceIsOneObject();

private:
    QStringList lines() { return m_log->take(QStringLiteral("mqtt.cpp")); }
    void connectMqtt();
    QList<QByteArray> sent(const QString &topic);

    std::unique_ptr<Broker> m_broker;
    std::unique_ptr<BrokerClient> m_services;
    std::unique_ptr<Mqtt> m_mqtt;
};

void TestMqttPublish::initTestCase()
{
    // Nobody listens yet: the program's own link has failed before the first test.
    Player::instance();
    QVERIFY(waitUntil([] { return !Player::instance()->remoteConnected(); }));
}

void TestMqttPublish::init()
{
    ModelClassTest::init();
    m_broker = std::make_unique<Broker>();
    QVERIFY(m_broker->start());
    m_services = std::make_unique<BrokerClient>();
    QVERIFY(m_services->connectToBroker());
}

void TestMqttPublish::cleanup()
{
    m_mqtt.reset();
    m_services.reset();
    m_broker.reset();
    Player::instance()->setRemoteConnected(true);
    m_log->clear(); // what a test has to say about the log, it has said
    ModelClassTest::cleanup();
}

void TestMqttPublish::connectMqtt()
{
    m_mqtt = std::make_unique<Mqtt>();
    QVERIFY(waitUntil([this] { return m_mqtt->isConnected(); }));
    QVERIFY(m_broker->waitForLine(
        QRegularExpression(QStringLiteral("^Sending SUBACK to .*")))); // the first of them
    m_log->clear();
}

/** What has reached the broker on @p topic. */
QList<QByteArray> TestMqttPublish::sent(const QString &topic)
{
    m_mqtt->publish(QStringLiteral("test/fence"), "here", false);
    if (!m_services->waitFor(QStringLiteral("test/fence"), "here"))
        QTest::qFail("the broker does not answer", __FILE__, __LINE__);
    const QList<QByteArray> payloads = m_services->payloads(topic);
    m_services->clear();
    return payloads;
}

QStringList TestMqttPublish::methodEntries() const
{
    return { "public signal connected()", "public slot publish(QString,QByteArray,bool,uchar,bool)",
        "public slot publish(QString,QByteArray,bool,uchar) cloned",
        "public slot publish(QString,QByteArray,bool) cloned", "private slot connectionTimeout()",
        "private slot connectedToBroker()", "private slot brokerDisconnected()",
        "private slot error(QMqttClient::ClientError)",
        "private slot messageReceived(QByteArray,QMqttTopicName)" };
}

QStringList TestMqttPublish::constructorLines() const
{
    return { constructorLine(QStringLiteral("Mqtt")),
        QStringLiteral("debug: Mqtt::constructor: connecting...") };
}

void TestMqttPublish::constructorConnects()
{
    m_mqtt = std::make_unique<Mqtt>();
    QVERIFY(!m_mqtt->isConnected());
    QTRY_VERIFY(m_mqtt->isConnected());
}

void TestMqttPublish::connectionSubscribesInOrder()
{
    m_broker->stop(); // a fresh log
    QVERIFY(m_broker->start());
    m_log->clear();
    m_mqtt = std::make_unique<Mqtt>();
    QTRY_VERIFY(m_mqtt->isConnected());
    QStringList expected { ConnectedLine };
    for (const QString &filter : Filters)
        expected.append(QStringLiteral("info: Mqtt::subscribe() to ") + filter);
    QCOMPARE(m_log->take(QStringLiteral("mqtt.cpp")).mid(2), expected);

    const QRegularExpression subscription(QStringLiteral("^\\t(\\S+) \\(QoS (\\d)\\)$"));
    QTRY_COMPARE(m_broker->lines(subscription).size(), Filters.size());
    QStringList subscribed;
    for (const QString &line : m_broker->lines(subscription))
        subscribed.append(line.trimmed());
    QStringList wanted;
    for (const QString &filter : Filters)
        wanted.append(filter + QStringLiteral(" (QoS 0)"));
    QCOMPARE(subscribed, wanted);
    QVERIFY(m_log->count(LostLine) == 0);
}

void TestMqttPublish::clientSettingsAreTheDefaults()
{
    connectMqtt();
    // MQTT 3.1.1, clean session, keep-alive 60 s, no user; the identifier is the library's own.
    QVERIFY(m_broker->waitForLine(QRegularExpression(QStringLiteral(
        "^New client connected from 127\\.0\\.0\\.1:\\d+ as \\S+ \\(p2, c1, k60\\)\\.$"))));
    QVERIFY(
        m_broker->lines(QRegularExpression(QStringLiteral("Will message specified"))).isEmpty());
    QCOMPARE(
        m_broker->lines(QRegularExpression(QStringLiteral("^No will message specified"))).size(),
        m_broker->lines(QRegularExpression(QStringLiteral("^New client connected"))).size());
    auto *const client = m_mqtt->findChild<QMqttClient *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(client);
    QVERIFY(client->autoKeepAlive());
    QCOMPARE(client->port(), quint16(1883));
    QCOMPARE(client->hostname(), QStringLiteral("127.0.0.1"));
}

void TestMqttPublish::connectedComesAfterTheSubscriptions()
{
    m_mqtt = std::make_unique<Mqtt>();
    QStringList linesBefore;
    bool wasConnected = false;
    int count = 0;
    connect(m_mqtt.get(), &Mqtt::connected, this, [&] {
        ++count;
        wasConnected = m_mqtt->isConnected();
        linesBefore = lines();
    });
    QTRY_COMPARE(count, 1);
    QVERIFY(wasConnected);
    QCOMPARE(linesBefore.last(), QStringLiteral("info: Mqtt::subscribe() to ") + Filters.last());
    sent(QString());
    QCOMPARE(count, 1);
}

void TestMqttPublish::receivedMessagesAreDispatched()
{
    m_broker->allowUndocumented();
    connectMqtt();
    const QString topic = QStringLiteral("Velunor/Settings/v2/unknown");
    m_services->publish(topic, "1");
    QTRY_VERIFY(m_log->contains(QStringLiteral("debug: Mqtt::updateSettings() unknown")));
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("debug: Mqtt::processMessageApi() receiving msg ") + topic,
            QStringLiteral("debug: Mqtt::updateSettings() unknown") }));

    // By name, as the event system does it.
    QVERIFY(QMetaObject::invokeMethod(m_mqtt.get(), "messageReceived", Q_ARG(QByteArray, "1"),
        Q_ARG(QMqttTopicName, QMqttTopicName(topic))));
    QCOMPARE(lines().size(), 2);
}

void TestMqttPublish::publishPassesQosAndRetainOn_data()
{
    QTest::addColumn<int>("qos");
    QTest::addColumn<bool>("retain");
    for (int qos = 0; qos <= 2; ++qos) {
        for (const bool retain : { false, true })
            QTest::addRow("QoS %d%s", qos, retain ? ", retained" : "") << qos << retain;
    }
}

void TestMqttPublish::publishPassesQosAndRetainOn()
{
    QFETCH(int, qos);
    QFETCH(bool, retain);
    connectMqtt();
    m_mqtt->publish(QStringLiteral("test/topic"), "payload", retain, static_cast<uchar>(qos));
    QVERIFY(m_broker->waitForLine(QRegularExpression(QStringLiteral(
        "^Received PUBLISH from \\S+ \\(d0, q%1, r%2, m\\d+, 'test/topic', .* \\(7 bytes\\)\\)$")
                                                         .arg(qos)
                                                         .arg(retain ? 1 : 0))));
    QCOMPARE(lines(), QStringList());
}

void TestMqttPublish::publishWithoutCacheAlwaysSends()
{
    connectMqtt();
    for (int i = 0; i < 3; ++i)
        m_mqtt->publish(QStringLiteral("test/topic"), "1", false, 1);
    QCOMPARE(lines(), QStringList());
    QCOMPARE(sent(QStringLiteral("test/topic")), QList<QByteArray>({ "1", "1", "1" }));
}

void TestMqttPublish::cachedPublish_data()
{
    QTest::addColumn<QStringList>("payloads"); // cached, unless there is a minus sign before it
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("bailOutLines");
    QTest::newRow("once") << QStringList({ "1" }) << QStringList({ "1" }) << 0;
    QTest::newRow("twice the same") << QStringList({ "1", "1" }) << QStringList({ "1" }) << 1;
    QTest::newRow("and back again")
        << QStringList({ "1", "2", "1" }) << QStringList({ "1", "2", "1" }) << 2;
    QTest::newRow("empty") << QStringList({ "", "" }) << QStringList({ "", "" }) << 0;
    QTest::newRow("empty in between")
        << QStringList({ "1", "", "1", "1" }) << QStringList({ "1", "", "1" }) << 2;
    QTest::newRow("not cached in between")
        << QStringList({ "1", "-2", "1" }) << QStringList({ "1", "2" }) << 1;
    QTest::newRow("not cached first")
        << QStringList({ "-1", "1", "-1" }) << QStringList({ "1", "1", "1" }) << 0;
    QTest::newRow("many not cached in between") << QStringList({ "50", "-a", "-b", "-a", "50" })
                                                << QStringList({ "50", "a", "b", "a" }) << 1;
}

void TestMqttPublish::cachedPublish()
{
    QFETCH(QStringList, payloads);
    QFETCH(QStringList, expected);
    QFETCH(int, bailOutLines);
    connectMqtt();
    for (const QString &payload : payloads) {
        const bool cache = !payload.startsWith(QLatin1Char('-'));
        m_mqtt->publish(QStringLiteral("test/topic"), (cache ? payload : payload.mid(1)).toLatin1(),
            false, 1, cache);
    }
    QStringList lineList;
    for (int i = 0; i < bailOutLines; ++i)
        lineList.append(BailOutLine);
    QCOMPARE(lines(), lineList);
    QStringList arrived;
    for (const QByteArray &payload : sent(QStringLiteral("test/topic")))
        arrived.append(QString::fromLatin1(payload));
    QCOMPARE(arrived, expected);
}

void TestMqttPublish::cacheIsKeptForEachTopic()
{
    connectMqtt();
    m_mqtt->publish(QStringLiteral("test/a"), "1", false, 1, true);
    m_mqtt->publish(QStringLiteral("test/b"), "1", false, 1, true);
    QCOMPARE(lines(), QStringList());
    m_mqtt->publish(QStringLiteral("test/a"), "1", true, 0, true); // retain and QoS do not count
    QCOMPARE(lines(), QStringList({ BailOutLine }));
    QCOMPARE(sent(QStringLiteral("test/a")), QList<QByteArray>({ "1" }));
}

void TestMqttPublish::payloadIsSentByteForByte_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("zero bytes") << QByteArray("\0a\0", 3);
    QTest::newRow("not UTF-8") << QByteArray("\xff\xfe\x80");
    QTest::newRow("accented") << QByteArray("K\xc3\xbc"
                                            "che");
    QTest::newRow("large") << QByteArray(300000, 'x');
}

void TestMqttPublish::payloadIsSentByteForByte()
{
    QFETCH(QByteArray, payload);
    connectMqtt();
    m_mqtt->publish(QStringLiteral("test/topic"), payload, false, 1, true);
    QCOMPARE(sent(QStringLiteral("test/topic")), QList<QByteArray>({ payload }));
}

void TestMqttPublish::publishWithoutConnectionIsSilentButRemembered()
{
    m_mqtt = std::make_unique<Mqtt>();
    m_log->clear();
    m_mqtt->publish(QStringLiteral("test/topic"), "1", false, 1, true);
    m_mqtt->publish(QStringLiteral("test/topic"), "2", false, 1);
    QCOMPARE(m_log->take(), QStringList());
    QTRY_VERIFY(m_mqtt->isConnected());
    m_log->clear();
    m_mqtt->publish(QStringLiteral("test/topic"), "1", false, 1, true);
    QCOMPARE(lines(), QStringList({ BailOutLine }));
    QCOMPARE(sent(QStringLiteral("test/topic")), QList<QByteArray>());
}

void TestMqttPublish::refusedConnectionIsReportedOnce()
{
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    const quint16 port = closed.serverPort();
    closed.close();
    Player::instance()->setRemoteConnected(true);
    QSignalSpy remoteConnectionChanged(Player::instance(), &Player::remoteConnectionChanged);
    m_mqtt = std::make_unique<Mqtt>(port);
    m_log->clear();
    QTRY_VERIFY(!Player::instance()->remoteConnected());
    QCOMPARE(remoteConnectionChanged.count(), 1);
    QCOMPARE(lines(), QStringList({ DisconnectedLine, LostLine }));
    QVERIFY(m_log->contains(QStringLiteral("debug: Player::connectionStateChanged() false")));
    QVERIFY(!m_mqtt->isConnected());
}

void TestMqttPublish::brokerThatEndsStaysLost_data()
{
    QTest::addColumn<bool>("kill");
    QTest::newRow("stopped") << false;
    QTest::newRow("killed") << true;
}

void TestMqttPublish::brokerThatEndsStaysLost()
{
    m_broker->allowUndocumented();
    QFETCH(bool, kill);
    connectMqtt();
    QSignalSpy connectedAgain(m_mqtt.get(), &Mqtt::connected);
    Player::instance()->setRemoteConnected(true);
    QVERIFY(kill ? m_broker->kill() : m_broker->stop());
    QTRY_VERIFY(!Player::instance()->remoteConnected());
    QVERIFY(!m_mqtt->isConnected());
    QCOMPARE(lines(), QStringList({ DisconnectedLine, LostLine }));

    // A broker that is there again is not found: the program is started again instead.
    QVERIFY(m_broker->start());
    QVERIFY(m_services->connectToBroker());
    m_services->publish(QStringLiteral("Velunor/Settings/v2/unknown"), "1");
    QVERIFY(m_services->flush());
    m_mqtt->publish(QStringLiteral("test/topic"), "1", false, 1);
    QVERIFY(!m_mqtt->isConnected());
    QCOMPARE(connectedAgain.count(), 0);
    QCOMPARE(lines(), QStringList());
    QCOMPARE(
        m_broker->lines(QRegularExpression(QStringLiteral("^New client connected"))).size(), 1);
}

void TestMqttPublish::errorIsLoggedByItsName_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("name");
    const QMetaEnum errors = QMetaEnum::fromType<QMqttClient::ClientError>();
    for (int i = 0; i < errors.keyCount(); ++i)
        QTest::newRow(errors.key(i)) << errors.value(i) << QString::fromLatin1(errors.key(i));
    QTest::newRow("without a name") << 6 << "6";
}

void TestMqttPublish::errorIsLoggedByItsName()
{
    QFETCH(int, code);
    QFETCH(QString, name);
    connectMqtt();
    Player::instance()->setRemoteConnected(true);
    m_log->clear();
    QVERIFY(QMetaObject::invokeMethod(m_mqtt.get(), "error",
        Q_ARG(QMqttClient::ClientError, static_cast<QMqttClient::ClientError>(code))));
    QCOMPARE(lines(), QStringList(QStringLiteral("critical: Mqtt::error() ") + name));
    QCOMPARE(Player::instance()->remoteConnected(), code == QMqttClient::NoError);
    QCOMPARE(m_log->count(QStringLiteral("debug: Player::connectionStateChanged() false")),
        code == QMqttClient::NoError ? 0 : 1);
    QVERIFY(m_mqtt->isConnected());
}

void TestMqttPublish::connectionTimeoutOnlyLogs()
{
    connectMqtt();
    SignalRecorder recorder(m_mqtt.get());
    QVERIFY(QMetaObject::invokeMethod(m_mqtt.get(), "connectionTimeout"));
    QCOMPARE(m_log->take(), QStringList(QStringLiteral("warning: Mqtt::connectionTimeout()")));
    QCOMPARE(recorder.take(), QStringList());
    QVERIFY(m_mqtt->isConnected());
}

void TestMqttPublish::destructorDisconnects()
{
    connectMqtt();
    // Qt's module may lose what it said last when it leaves with answers unread.  Asking again for
    // a subscription sends nothing.
    auto *const client = m_mqtt->findChild<QMqttClient *>();
    for (const QString &filter : Filters)
        QTRY_COMPARE(client->subscribe(filter)->state(), QMqttSubscription::Subscribed);
    m_mqtt->publish(QStringLiteral("test/topic"), "last words", false, 1);
    m_mqtt.reset();
    QCOMPARE(
        m_log->take(QStringLiteral("mqtt.cpp")).first(), QStringLiteral("debug: Mqtt::destructor"));
    QVERIFY(m_services->waitFor(QStringLiteral("test/topic"), "last words"));
    QVERIFY(
        m_broker->waitForLine(QRegularExpression(QStringLiteral("^Received DISCONNECT from "))));
}

void TestMqttPublish::instanceIsOneObject()
{
    QVERIFY(Mqtt::instance());
    QCOMPARE(Mqtt::instance(), Mqtt::instance());
    QVERIFY(!Mqtt::instance()->parent());
}

QTEST_GUILESS_MAIN(TestMqttPublish)
#include "tst_mqtt_publish.moc"
