// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

#include <QFile>
#include <QJsonDocument>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>

namespace {

const QString Prefix = "homeassistant/";

const QString OwnBroker = "127.0.0.2"; // Home Assistant's

/** What docs/home-assistant.md tells a reader to run, or to configure. */
QString recipe(const QString &beginning)
{
    QFile page(TOUCHUI_CHECKOUT "/docs/home-assistant.md");
    if (!page.open(QIODevice::ReadOnly))
        return QString();
    const QRegularExpression block("^```" + beginning + "(.*)^```$",
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption
            | QRegularExpression::InvertedGreedinessOption);
    return block.match(QString::fromUtf8(page.readAll())).captured(1);
}

} // namespace

/** The recipe for Home Assistant, run with a bridge between two brokers and the real program. */
class TestHomeAssistant : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatIsAnnouncedHasWhatDiscoveryAsksFor();
    void theButtonIsObeyed();
    void theSensorsAreFed();

private:
    QMap<QString, QJsonObject> announced(BrokerClient &client) const;

    std::unique_ptr<Broker> m_broker; // Home Assistant's
    std::unique_ptr<Appliance> m_appliance;
    BrokerClient m_late; // as Home Assistant, which comes after the messages
};

void TestHomeAssistant::init()
{
    m_broker = std::make_unique<Broker>();
    m_broker->setAddress(OwnBroker.toLatin1());
    QVERIFY(m_broker->start());
    const QString bridge = recipe("$(?=\nconnection )");
    QVERIFY(bridge.contains("HOME-ASSISTANT"));
    m_appliance = std::make_unique<Appliance>();
    m_appliance->broker.configure(QString(bridge).replace("HOME-ASSISTANT", OwnBroker).toUtf8());
    QVERIFY(m_appliance->start());
    QVERIFY(m_broker->waitForLine(QRegularExpression("^Sending SUBACK to .*homeassistant")));

    QProcess shell;
    shell.setProcessChannelMode(QProcess::MergedChannels);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("BROKER", OwnBroker);
    shell.setProcessEnvironment(environment);
    shell.start("sh", { "-eu", "-c", recipe("sh$") });
    QTRY_COMPARE_WITH_TIMEOUT(shell.state(), QProcess::NotRunning, PatienceMs);
    QVERIFY2(shell.exitCode() == 0, shell.readAll());
    m_late.clear();
    m_late.setAddress(OwnBroker);
    QVERIFY(m_late.connectToBroker());
}

void TestHomeAssistant::cleanup()
{
    m_appliance.reset();
    m_broker.reset();
}

/** What the late comer finds below "homeassistant/", by topic. */
QMap<QString, QJsonObject> TestHomeAssistant::announced(BrokerClient &client) const
{
    QMap<QString, QJsonObject> found;
    for (const BrokerClient::Message &message : client.messages()) {
        if (message.retained && message.topic.startsWith(Prefix))
            found.insert(message.topic, QJsonDocument::fromJson(message.payload).object());
    }
    return found;
}

void TestHomeAssistant::whatIsAnnouncedHasWhatDiscoveryAsksFor()
{
    // homeassistant/COMPONENT/ID/config, and what each component cannot do without.
    const QMap<QString, QStringList> required { { "button", { "command_topic", "payload_press" } },
        { "binary_sensor", { "state_topic", "payload_on", "payload_off" } },
        { "sensor", { "state_topic" } } };
    QTRY_COMPARE_WITH_TIMEOUT(announced(m_late).size(), 6, PatienceMs);
    const QMap<QString, QJsonObject> all = announced(m_late);
    QStringList identities;
    for (auto it = all.begin(); it != all.end(); ++it) {
        const QRegularExpressionMatch topic
            = QRegularExpression("^homeassistant/([a-z_]+)/([a-zA-Z0-9_-]+)/config$")
                  .match(it.key());
        QVERIFY2(topic.hasMatch(), qPrintable(it.key()));
        QVERIFY2(required.contains(topic.captured(1)), qPrintable(it.key()));
        const QJsonObject &entity = it.value();
        for (const QString &member :
            required[topic.captured(1)] + QStringList { "name", "unique_id" })
            QVERIFY2(!entity[member].toString().isEmpty(), qPrintable(it.key() + ' ' + member));
        QVERIFY(!entity["device"]["identifiers"].toArray().isEmpty());
        QVERIFY(!entity["device"]["name"].toString().isEmpty());
        identities.append(entity["unique_id"].toString());
        // It leads to what the display has.
        const QString own
            = entity.value(entity.contains("state_topic") ? "state_topic" : "command_topic")
                  .toString();
        QCOMPARE(MqttReference::instance().objection(
                     own, 1, !own.endsWith("/command") && !own.endsWith("/idle")),
            QString());
    }
    QCOMPARE(identities.removeDuplicates(), 0);
}

void TestHomeAssistant::theButtonIsObeyed()
{
    const QString topic = Prefix + "button/velunor_standby/config";
    QTRY_VERIFY_WITH_TIMEOUT(announced(m_late).contains(topic), PatienceMs);
    const QJsonObject button = announced(m_late).value(topic);
    const auto press = [&] {
        m_late.publish(
            button["command_topic"].toString(), button["payload_press"].toString().toUtf8());
    };
    for (const QString &page : { PageNames::Clock, PageNames::ScreenSaver, PageNames::Player }) {
        press();
        QVERIFY(m_appliance->waitForPage(page));
    }
}

void TestHomeAssistant::theSensorsAreFed()
{
    QTRY_COMPARE_WITH_TIMEOUT(announced(m_late).size(), 6, PatienceMs);
    const QMap<QString, QJsonObject> all = announced(m_late);
    const auto stateTopic = [&all](const QString &entity) {
        return all.value(Prefix + entity + "/config")["state_topic"].toString();
    };
    const QJsonObject idle = all.value(Prefix + "binary_sensor/velunor_idle/config");
    m_appliance->publishZone("nowPlaying/song", "Open Window");
    m_appliance->publishCore("coreDetected", "false");
    QVERIFY(m_late.waitFor(
        stateTopic("binary_sensor/velunor_idle"), idle["payload_on"].toString().toUtf8()));
    m_appliance->publishCore("coreDetected", "true");
    QVERIFY(m_late.waitFor(
        stateTopic("binary_sensor/velunor_idle"), idle["payload_off"].toString().toUtf8()));
    QVERIFY(m_late.waitFor(stateTopic("sensor/velunor_brightness"), "150"));
    QVERIFY(m_late.waitFor(stateTopic("sensor/velunor_zone"), "Kitchen"));
    QVERIFY(m_late.waitFor(stateTopic("sensor/velunor_state"), "paused"));
    QVERIFY(m_late.waitFor(stateTopic("sensor/velunor_title"), "Open Window"));
}

QTEST_GUILESS_MAIN(TestHomeAssistant)
#include "tst_homeassistant.moc"
