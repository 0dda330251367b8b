// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "oursalone.h"
#include "signallog.h"

#include <QtTest/QtTest>

namespace {
QStringList refusal(const QString &error)
{
    return { "stateChanged(Connecting)", "stateChanged(Disconnected)", "disconnected",
        "errorChanged(" + error + ")" };
}
} // namespace

/** What cannot be sent as it was set is not left out: there is no connection. */
class TestCredentials : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void unusableSettingIsRefused_data();
    void unusableSettingIsRefused();
    void unusualSettingIsSent();
};

void TestCredentials::initTestCase()
{
    OURS_ALONE("what the module sends then is its own affair");
}

void TestCredentials::unusableSettingIsRefused_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("error");
    const QString zero = QString("a") + QChar(QChar::Null) + QString("b");
    const auto row
        = [](const char *name, const char *property, const QVariant &value, const char *error) {
              QTest::newRow(name) << QByteArray(property) << value << QString(error);
          };
    row("user with a control character", "username", "a\x01", "BadUsernameOrPassword");
    row("user with a zero", "username", zero, "BadUsernameOrPassword");
    row("user too long", "username", QString(65536, 'x'), "BadUsernameOrPassword");
    row("password with a zero", "password", zero, "BadUsernameOrPassword");
    row("password without a user", "username", "", "BadUsernameOrPassword");
    row("will for a filter", "willTopic", "a/#", "ProtocolViolation");
    row("will topic with a control character", "willTopic", "a\x01", "ProtocolViolation");
    row("will topic with a zero", "willTopic", zero, "ProtocolViolation");
    row("will topic too long", "willTopic", QString(65536, 'x'), "ProtocolViolation");
    row("will message too long", "willMessage", QByteArray(65536, 'x'), "ProtocolViolation");
    row("id with a control character", "clientId", "a\x01", "IdRejected");
    row("id with a zero", "clientId", zero, "IdRejected");
}

void TestCredentials::unusableSettingIsRefused()
{
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    QFETCH(QString, error);
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setUsername("user");
    client.setPassword("secret");
    client.setWillTopic("will");
    QVERIFY(client.setProperty(property.constData(), value));
    SignalLog log(&client);
    for (int i = 0; i < 2; ++i) {
        client.connectToHost();
        QTRY_COMPARE(log.entries(), refusal(error));
        log.take();
    }
    // Nor has anything of it been sent: the first to call is another client.
    QMqttClient other;
    aim(&other, peer.port());
    other.connectToHost();
    QTRY_COMPARE(other.state(), QMqttClient::Connected);
    QCOMPARE(peer.connections(), 1);
}

void TestCredentials::unusualSettingIsSent()
{
    const QByteArray longest(65535, 'x');
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setUsername(QString(QChar(0xfc)));
    client.setPassword("\x01");
    client.setWillTopic(QString(QChar(0xfc)));
    client.setWillMessage(longest);
    client.connectToHost();
    QTRY_COMPARE(peer.count(FakeBroker::Connect), 1);
    const QByteArray will = QByteArray("\0\2\xc3\xbc\xff\xff", 6) + longest;
    QVERIFY(peer.packets().constFirst().endsWith(will + QByteArray("\0\2\xc3\xbc\0\1\1", 7)));
}

QTEST_GUILESS_MAIN(TestCredentials)
#include "tst_credentials.moc"
