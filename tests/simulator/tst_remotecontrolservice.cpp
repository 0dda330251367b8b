// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/remotecontrolservice.h"

#include "simulator/house/library.h"
#include "simulator/services/topics.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include <memory>

/** What subscribers would know after each step: the last payload of every topic. */
class TestRemoteControlService : public QObject {
    Q_OBJECT

private slots:
    void init();

    void publishesNothingBeforeTheStart();
    void publishesEverythingRetained();
    void obeysEachCommand();
    void volumeCommandsAreClamped();
    void commandForNobodyIsRefused_data();
    void commandForNobodyIsRefused();
    void withoutCoreThereAreNoZonesAndNoTime();
    void returningZonesAreToldWhole();
    void groupTakesTheFollowersIn();
    void groupFromOtherGroupsDissolvesThem();
    void groupOfOneIsRefused();
    void removedZoneStopsAndLeavesItsGroup();
    void renamedZoneHasANewNameEverywhere();
    void connectionFlagIsPublished();
    void playingChangedFollowsTheZones();

private:
    void send(const char *payload);
    QByteArray inZone(const char *key, int zone = 0) const;
    QStringList available() const;

    std::unique_ptr<RemoteControlService> m_service;
    QHash<QString, QByteArray> m_broker;
    int m_published = 0;
    bool m_allRetained = true;
    bool m_obeyed = false;
    QString m_reason;
};

void TestRemoteControlService::init()
{
    m_broker.clear();
    m_published = 0;
    m_allRetained = true;
    m_service = std::make_unique<RemoteControlService>(QStringLiteral("Den"), 1);
    m_service->mainZone()->setQueue({ &Library::albums().at(0) });
    connect(m_service.get(), &RemoteControlService::publish, this,
        [this](const QString &topic, const QByteArray &payload, bool retain) {
            m_broker[topic] = payload;
            m_allRetained = m_allRetained && retain;
            ++m_published;
        });
}

void TestRemoteControlService::send(const char *payload)
{
    QByteArray bytes(payload);
    bytes.replace("ID", m_service->mainZone()->id().toUtf8());
    m_obeyed = m_service->obey(RemoteCommand::parse(bytes), &m_reason);
}

QByteArray TestRemoteControlService::inZone(const char *key, int zone) const
{
    return m_broker.value(Topics::zone(Library::zones().at(zone).id, key), "(missing)");
}

QStringList TestRemoteControlService::available() const
{
    QStringList names;
    const QJsonArray list
        = QJsonDocument::fromJson(m_broker.value(Topics::availableZones())).array();
    for (const QJsonValue &element : list) {
        if (element.toObject().value(QLatin1String("id")).toString().isEmpty())
            return {};
        names.append(element.toObject().value(QLatin1String("name")).toString());
    }
    return names;
}

void TestRemoteControlService::publishesNothingBeforeTheStart()
{
    m_service->mainZone()->play();
    m_service->group({ QString(), QStringLiteral("Kitchen") });
    m_service->setCoreDetected(false);
    m_service->setConnected(false);
    QCOMPARE(m_published, 0);
    m_service->start(QStringLiteral("127.0.0.1:1"));
    QCOMPARE(m_broker.value(Topics::core("coreDetected")), QByteArray("false"));
    QCOMPARE(m_broker.value(Topics::connected()), QByteArray("false"));
    QCOMPARE(m_broker.value(Topics::availableZones()), QByteArray("[]"));
}

void TestRemoteControlService::publishesEverythingRetained()
{
    m_service->start(QStringLiteral("127.0.0.1:4711"));
    QVERIFY(m_allRetained);
    QCOMPARE(m_broker.value(Topics::core("serverUrl")), QByteArray("127.0.0.1:4711"));
    QCOMPARE(m_broker.value(Topics::core("coreDetected")), QByteArray("true"));
    QCOMPARE(m_broker.value(Topics::connected()), QByteArray("true"));
    QCOMPARE(m_broker.value(Topics::spotify("state")), QByteArray("stopped"));
    QCOMPARE(available().size(), Library::zones().size());
    QCOMPARE(available().first(), QStringLiteral("Den"));
    QCOMPARE(m_broker.value(Topics::core("serverName")), QByteArray("Music server (simulated)"));
    QVERIFY(!m_broker.value(Topics::core("id")).isEmpty());
    QVERIFY(!m_broker.value(Topics::core("version")).isEmpty());
    const Album &album = Library::albums().at(0);
    const QByteArray song = album.tracks.at(0).song.toUtf8();
    const QByteArray length = QByteArray::number(album.tracks.at(0).seconds);
    const QByteArray picture = "http://127.0.0.1:4711/image/" + album.imageKey();
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/seekPosition")), QByteArray("0"));
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/length")), length);
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/album")), album.name.toUtf8());
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/song")), song);
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/artist")), album.artist.toUtf8());
    QCOMPARE(m_broker.value(Topics::spotify("nowPlaying/imageUrl")), picture);

    const QString zoneId = m_service->mainZone()->id();
    const QVector<QPair<const char *, QByteArray>> truth {
        { "id", zoneId.toUtf8() },
        { "name", "Den" },
        { "state", "stopped" },
        { "outputs", R"([{"display_name":"Den","zone_id":")" + zoneId.toUtf8() + R"("}])" },
        { "nowPlaying/seekPosition", "0" },
        { "nowPlaying/length", length },
        { "nowPlaying/album", album.name.toUtf8() },
        { "nowPlaying/song", song },
        { "nowPlaying/artist", album.artist.toUtf8() },
        { "nowPlaying/imageKey", album.imageKey() },
        { "settings/shuffle", "false" },
        { "settings/loop", "disabled" },
        { "settings/autoRadio", "false" },
        { "volume/available", "true" },
        { "volume/type", "number" },
        { "volume/value", "42" },
        { "volume/min", "0" },
        { "volume/max", "100" },
        { "volume/hard_limit_min", "0" },
        { "volume/hard_limit_max", "95" },
        { "volume/soft_limit", "85" },
        { "volume/step", "1" },
        { "volume/is_muted", "false" },
        { "queue_items_remaining", QByteArray::number(album.tracks.size()) },
        { "queue_time_remaining", "2006" },
        { "is_previous_allowed", "true" },
        { "is_next_allowed", "true" },
        { "is_pause_allowed", "false" },
        { "is_play_allowed", "true" },
        { "is_seek_allowed", "true" },
    };
    for (const auto &property : truth)
        QVERIFY2(inZone(property.first) == property.second, property.first);
    QCOMPARE(inZone("volume/type", 2), QByteArray("db"));
    QCOMPARE(inZone("volume/value", 2), QByteArray("-28.5"));
    QCOMPARE(inZone("volume/step", 2), QByteArray("0.5"));
    QCOMPARE(inZone("volume/available", 3), QByteArray("false"));
    QCOMPARE(inZone("volume/value", 3), QByteArray("(missing)"));
}

void TestRemoteControlService::obeysEachCommand()
{
    m_service->start(QString());
    send(R"({"command":"playpause","zone_id":"ID"})");
    QVERIFY(m_obeyed);
    QCOMPARE(inZone("state"), QByteArray("playing"));
    send(R"({"command":"playpause","zone_id":"ID"})");
    QCOMPARE(inZone("state"), QByteArray("paused"));
    send(R"({"command":"next","zone_id":"ID"})");
    QCOMPARE(inZone("nowPlaying/song"), Library::albums().at(0).tracks.at(1).song.toUtf8());
    send(R"({"command":"previous","zone_id":"ID"})");
    QCOMPARE(inZone("nowPlaying/song"), Library::albums().at(0).tracks.at(0).song.toUtf8());
    send(R"({"command":"set_radio","radio":true,"zone_id":"ID"})");
    QCOMPARE(inZone("settings/autoRadio"), QByteArray("true"));
    send(R"({"command":"set_radio","radio":false,"zone_id":"ID"})");
    QCOMPARE(inZone("settings/autoRadio"), QByteArray("false"));
    send(R"({"command":"set_shuffle","shuffle":true,"zone_id":"ID"})");
    QCOMPARE(inZone("settings/shuffle"), QByteArray("true"));
    send(R"({"command":"set_shuffle","shuffle":false,"zone_id":"ID"})");
    QCOMPARE(inZone("settings/shuffle"), QByteArray("false"));
    send(R"({"command":"set_loopmode","loop":"loop_one","zone_id":"ID"})");
    QCOMPARE(inZone("settings/loop"), QByteArray("loop_one"));
    send(R"({"command":"set_volume","how":"absolute","value":33.0,"zone_id":"ID"})");
    QCOMPARE(inZone("volume/value"), QByteArray("33"));
    send(R"({"command":"set_volume","how":"relative","value":-1.0,"zone_id":"ID"})");
    QCOMPARE(inZone("volume/value"), QByteArray("32"));
    QVERIFY(m_obeyed);
    const int before = m_published;
    send(R"({"command":"toggle_standby"})");
    QVERIFY(m_obeyed);
    QCOMPARE(m_published, before);
}

void TestRemoteControlService::volumeCommandsAreClamped()
{
    m_service->start(QString());
    send(R"({"command":"set_volume","how":"absolute","value":1000.0,"zone_id":"ID"})");
    QCOMPARE(inZone("volume/value"), QByteArray("95"));
    send(R"({"command":"set_volume","how":"relative","value":1.0,"zone_id":"ID"})");
    QCOMPARE(inZone("volume/value"), QByteArray("95"));
    send(R"({"command":"set_volume","how":"relative","value":-500.0,"zone_id":"ID"})");
    QCOMPARE(inZone("volume/value"), QByteArray("0"));
}

void TestRemoteControlService::commandForNobodyIsRefused_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("unknown zone") << QByteArray(R"({"command":"next","zone_id":"ghost"})");
    QTest::newRow("unknown command") << QByteArray(R"({"command":"explode","zone_id":"ID"})");
    QTest::newRow("malformed") << QByteArray("{");
    QTest::newRow("unknown mode") << QByteArray(
        R"({"command":"set_loopmode","loop":"x","zone_id":"ID"})");
}

void TestRemoteControlService::commandForNobodyIsRefused()
{
    QFETCH(QByteArray, payload);
    m_service->start(QString());
    const int before = m_published;
    send(payload.constData());
    QVERIFY(!m_obeyed);
    QVERIFY(!m_reason.isEmpty());
    QCOMPARE(m_published, before);
}

void TestRemoteControlService::withoutCoreThereAreNoZonesAndNoTime()
{
    m_service->start(QString());
    m_service->mainZone()->play();
    m_service->advance(3000);
    m_service->setCoreDetected(false);
    QCOMPARE(m_broker.value(Topics::core("coreDetected")), QByteArray("false"));
    QVERIFY(available().isEmpty());
    QVERIFY(!m_service->isPlaying());
    const int before = m_published;
    m_service->advance(3000);
    send(R"({"command":"playpause","zone_id":"ID"})");
    QVERIFY(!m_obeyed);
    QCOMPARE(m_published, before);
}

void TestRemoteControlService::returningZonesAreToldWhole()
{
    m_service->start(QString());
    m_service->mainZone()->play();
    m_service->setCoreDetected(false);
    m_broker.clear();
    m_service->setCoreDetected(true);
    QCOMPARE(inZone("state"), QByteArray("playing"));
    QCOMPARE(inZone("nowPlaying/song"), Library::albums().at(0).tracks.at(0).song.toUtf8());
    QCOMPARE(inZone("name", 1), QByteArray("Kitchen"));
}

void TestRemoteControlService::groupTakesTheFollowersIn()
{
    m_service->start(QString());
    ZoneSimulation *const kitchen = m_service->zone(QStringLiteral("Kitchen"));
    kitchen->setQueue({ &Library::albums().at(1) });
    QVERIFY(kitchen->play());
    QVERIFY(m_service->group({ QString(), QStringLiteral("Kitchen"), QStringLiteral("Bath") }));
    QVERIFY(!kitchen->isPlaying());
    QCOMPARE(available().first(), QStringLiteral("Den + Kitchen + Bath"));
    QVERIFY(!available().contains(QStringLiteral("Kitchen")));
    QCOMPARE(inZone("outputs").count("display_name"), 3);
    m_broker.clear();
    QVERIFY(m_service->ungroup(QStringLiteral("Bath")));
    QCOMPARE(available().size(), Library::zones().size());
    QCOMPARE(inZone("name"), QByteArray("Den"));
    QCOMPARE(inZone("name", 1), QByteArray("Kitchen"));
}

void TestRemoteControlService::groupFromOtherGroupsDissolvesThem()
{
    m_service->start(QString());
    QVERIFY(m_service->group({ QStringLiteral("Kitchen"), QStringLiteral("Bath") }));
    QVERIFY(m_service->group({ QStringLiteral("Living Room"), QStringLiteral("Bath") }));
    QVERIFY(available().contains(QStringLiteral("Kitchen")));
    QVERIFY(available().contains(QStringLiteral("Living Room + Bath")));
    QVERIFY(m_service->group({ QString(), QStringLiteral("Living Room") }));
    QVERIFY(available().contains(QStringLiteral("Den + Living Room")));
    QVERIFY(available().contains(QStringLiteral("Bath")));
}

void TestRemoteControlService::groupOfOneIsRefused()
{
    m_service->start(QString());
    const int before = m_published;
    QVERIFY(!m_service->group({ QStringLiteral("Kitchen") }));
    QVERIFY(!m_service->group({ QStringLiteral("Kitchen"), QStringLiteral("Kitchen") }));
    QVERIFY(!m_service->group({ QStringLiteral("Kitchen"), QStringLiteral("Nowhere") }));
    QVERIFY(!m_service->group({}));
    QVERIFY(!m_service->ungroup(QStringLiteral("Nowhere")));
    QCOMPARE(m_published, before);
}

void TestRemoteControlService::removedZoneStopsAndLeavesItsGroup()
{
    m_service->start(QString());
    m_service->group({ QString(), QStringLiteral("Kitchen") });
    m_service->mainZone()->play();
    QVERIFY(m_service->setPresent(QStringLiteral("Den"), false));
    QVERIFY(!available().contains(QStringLiteral("Den")));
    QVERIFY(available().contains(QStringLiteral("Kitchen")));
    QVERIFY(!m_service->isPlaying());
    QVERIFY(!m_service->group({ QStringLiteral("Kitchen"), QStringLiteral("Den") }));
    m_broker.clear();
    QVERIFY(m_service->setPresent(QStringLiteral("Den"), true));
    QCOMPARE(inZone("state"), QByteArray("stopped"));
}

void TestRemoteControlService::renamedZoneHasANewNameEverywhere()
{
    m_service->start(QString());
    m_service->group({ QString(), QStringLiteral("Kitchen") });
    QVERIFY(m_service->rename(QStringLiteral("Kitchen"), QStringLiteral("Küche")));
    QCOMPARE(available().first(), QStringLiteral("Den + Küche"));
    QVERIFY(!m_service->rename(QStringLiteral("Küche"), QStringLiteral("Bath")));
    QVERIFY(!m_service->rename(QStringLiteral("Kitchen"), QStringLiteral("X")));
    QVERIFY(m_service->rename(QStringLiteral("Küche"), QString()));
    QCOMPARE(inZone("name"), QByteArray("Den + Kitchen"));
}

void TestRemoteControlService::connectionFlagIsPublished()
{
    m_service->start(QString());
    m_service->setConnected(false);
    QCOMPARE(m_broker.value(Topics::connected()), QByteArray("false"));
    m_service->setConnected(true);
    QCOMPARE(m_broker.value(Topics::connected()), QByteArray("true"));
}

void TestRemoteControlService::playingChangedFollowsTheZones()
{
    m_service->start(QString());
    QSignalSpy changed(m_service.get(), &RemoteControlService::playingChanged);
    QVERIFY(!m_service->isPlaying());
    m_service->mainZone()->play();
    QVERIFY(m_service->isPlaying());
    QCOMPARE(changed.count(), 1);
    m_service->advance(10000000); // beyond the only album
    QVERIFY(!m_service->isPlaying());
    QCOMPARE(changed.count(), 2);
}

QTEST_GUILESS_MAIN(TestRemoteControlService)
#include "tst_remotecontrolservice.moc"
