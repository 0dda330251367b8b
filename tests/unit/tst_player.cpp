// SPDX-License-Identifier: GPL-3.0-or-later
#include "player.h"
#include "logcapture.h"
#include "mqtt.h"
#include "playertest.h"
#include "roon.h"
#include "roonzones.h"
#include "settings.h"
#include "signalrecorder.h"

#include <QDateTime>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QTest>

namespace {

const QString LookingLine
    = QStringLiteral("debug: Player::update() looking for zone Kitchen with ID z1");
const QString NotFoundLine = QStringLiteral("debug: Player::update() can't find zone Kitchen");
const QString VolumeLine
    = QStringLiteral("debug: Player::updateFromZones() volume available for zone: Kitchen");
const QByteArray KitchenIsAvailable = R"([{"id":"z1","name":"Kitchen"}])";

QVariantMap snapshot(const Player &player)
{
    QVariantMap values;
    for (int i = 0; i < player.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = player.metaObject()->property(i);
        if (qstrcmp(property.name(), "time") != 0)
            values.insert(QString::fromLatin1(property.name()), property.read(&player));
    }
    return values;
}

} // namespace

class TestPlayer : public PlayerTest {
    Q_OBJECT

private slots:
    void init();

    void startsWithoutTexts();
    void wantedZoneComesFromTheEnvironment_data();
    void wantedZoneComesFromTheEnvironment();
    void writtenRoonStateKeepsThePreviousOne();

    void updateCopiesInOrder();
    void updateWithoutChangeIsAlmostSilent();
    void updateWithoutAnIdChangesNothing();
    void updateWithoutAZoneObjectShowsUnknown();
    void updateNotifiesEachChangeByItsOwnSignal_data();
    void updateNotifiesEachChangeByItsOwnSignal();
    void emptyStateAndPictureAreNotCopied();
    void emptyTextsAreCopied();
    void roonStateChangeIsLogged();
    void navigationEvaluatesAfterwards();
    void groupIsFoundByAMember();

    void longTextsAreCutWhileScrollingIsOff_data();
    void longTextsAreCutWhileScrollingIsOff();
    void scrollingSettingNotifiesTheThreeTexts();
    void timeFollowsTheSetting();
    void timesAreMinutesAndSeconds_data();
    void timesAreMinutesAndSeconds();
    void imageAddressesAreBuiltOnEachRead_data();
    void imageAddressesAreBuiltOnEachRead();
    void connectionStateNotifiesOnlyOnAChange();
};

void TestPlayer::init()
{
    Settings::instance()->setScrolling(true);
    Settings::instance()->setTimeFormat(true);
    PlayerTest::init();
}

void TestPlayer::startsWithoutTexts()
{
    QVERIFY(m_player->song().isNull() && m_player->loop().isNull());
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("init"));
}

void TestPlayer::wantedZoneComesFromTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("variable"); // null: not set
    QTest::addColumn<QString>("zone");
    QTest::newRow("not set") << QByteArray() << "Hugo2X";
    QTest::newRow("set") << QByteArray("Bath") << "Bath";
    QTest::newRow("empty") << QByteArray("") << "";
    QTest::newRow("accented") << QByteArray("K\xc3\xbc"
                                            "che")
                              << "Küche";
}

void TestPlayer::wantedZoneComesFromTheEnvironment()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, zone);
    if (variable.isNull())
        qunsetenv("VELUNOR_TOUCHUI_CONTROL_ZONE");
    else
        qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", variable);
    const Player player;
    QCOMPARE(player.wantedZone(), zone);
    QCOMPARE(
        lines().last(), QStringLiteral("info: Player::Player() setting wanted zone to ") + zone);
}

void TestPlayer::writtenRoonStateKeepsThePreviousOne()
{
    m_player->setProperty("roonState", "playing");
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("init"));
    m_player->setProperty("roonState", "playing");
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("init"));
    m_player->setProperty("roonState", "");
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("playing"));
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("info: Player::setRoonState() Roon state set to: playing"),
            QStringLiteral("info: Player::setRoonState() Roon state set to: ") }));
    QCOMPARE(m_signals->take(), QStringList({ "roonStateChanged", "roonStateChanged" }));
}

void TestPlayer::updateCopiesInOrder()
{
    m_zone->setState(QStringLiteral("playing"));
    m_zone->setNowPlayingArtist(QStringLiteral("Artist"));
    m_zone->setNowPlayingSong(QStringLiteral("Song"));
    m_zone->setNowPlayingAlbum(QStringLiteral("Album"));
    m_zone->setNowPlayingImageKey(QStringLiteral("key"));
    m_zone->setNowPlayingLength(200);
    m_zone->setNowPlayingSeekPosition(65);
    m_zone->setSettingsAutoRadio(true);
    m_zone->setSettingsShuffle(true);
    m_zone->setSettingsLoop(QStringLiteral("loop_one"));
    m_zone->setQueueItemsRemaining(12);
    m_zone->setIsPreviousAllowed(true);
    m_zone->setIsNextAllowed(true);
    m_zone->setIsPauseAllowed(true);
    m_zone->setIsPlayAllowed(true);
    m_zone->setIsSeekAllowed(true);
    m_zone->setVolumeAvailable(true);
    m_zone->setVolumeValue(-20.5f);
    m_zone->setVolumeMin(-80.0f);
    m_zone->setVolumeMax(10.0f);
    m_zone->setVolumeHardLimitMin(-70.0f);
    m_zone->setVolumeHardLimitMax(5.0f);
    m_zone->setVolumeSoftLimit(-1.0f);
    m_zone->setVolumeStep(0.5f);
    m_zone->setVolumeIsMuted(true);
    m_player->update();

    QCOMPARE(m_signals->take(),
        QStringList({ "zoneChanged", "roonStateChanged", "artistChanged", "songChanged",
            "albumChanged", "imageKeyChanged", "lengthChanged", "seekPositionChanged",
            "autoRadioChanged", "shuffleChanged", "loopChanged", "queueItemsRemainingChanged",
            "prevAllowedChanged", "nextAllowedChanged", "pauseAllowedChanged", "playAllowedChanged",
            "seekAllowedChanged", "volumeChanged", "minVolumeChanged", "maxVolumeChanged",
            "limitMinVolumeChanged", "limitMaxVolumeChanged", "limitSoftVolumeChanged",
            "volumeStepChanged", "volumeMuteChanged", "volumeAvailableChanged" }));
    QCOMPARE(lines(),
        QStringList({ LookingLine,
            QStringLiteral("info: Player::setRoonState() Roon state set to: playing"), VolumeLine,
            QStringLiteral("info: Player::setVolume() -20.5"),
            QStringLiteral(
                "info: Player::setVolumeStep() changing precision to 1 based on: 0.5") }));
    const QVariantMap expected {
        { "roonState", "playing" },
        { "song", "Song" },
        { "artist", "Artist" },
        { "album", "Album" },
        { "imageKey", "key" },
        { "seekPosition", 65u },
        { "autoRadio", true },
        { "loop", "loop_one" },
        { "shuffle", true },
        { "length", 200u },
        { "zone", "Kitchen" },
        { "wantedZone", "Kitchen" },
        { "volumeAvailable", true },
        { "volume", -20.5f },
        { "minVolume", -80.0f },
        { "maxVolume", 10.0f },
        { "limitMinVolume", -70.0f },
        { "limitMaxVolume", 5.0f },
        { "limitSoftVolume", -1.0f },
        { "volumeStep", 0.5f },
        { "volumeMuted", 1.0f },
        { "volumeDisplayPrecision", 1u },
        { "seekPositionText", "1:05" },
        { "lengthText", "3:20" },
        { "queueItemsRemaining", 12u },
        { "prevAllowed", true },
        { "nextAllowed", true },
        { "pauseAllowed", true },
        { "playAllowed", true },
        { "seekAllowed", true },
    };
    for (auto property = expected.begin(); property != expected.end(); ++property)
        QCOMPARE(m_player->property(property.key().toLatin1()), property.value());
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("init"));
}

void TestPlayer::updateWithoutChangeIsAlmostSilent()
{
    m_player->update();
    m_signals->take();
    m_log->clear();
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(lines(), QStringList(LookingLine));
}

void TestPlayer::updateWithoutAnIdChangesNothing()
{
    m_player->update();
    m_player->setRemoteConnected(false);
    m_signals->take();
    QCoreApplication::processEvents();
    RoonZones::instance()->updateAvailableZones("[]");
    const QVariantMap before = snapshot(*m_player);
    m_log->clear();
    m_player->update();
    QCOMPARE(snapshot(*m_player), before);
    QCOMPARE(m_signals->take(), QStringList());
    m_log->take(); // the addresses that the snapshot has read
    m_player->update();
    QCoreApplication::processEvents();
    QCOMPARE(m_log->take(), QStringList()); // not even the navigation
}

void TestPlayer::updateWithoutAZoneObjectShowsUnknown()
{
    m_zone->setNowPlayingSong(QStringLiteral("Song"));
    m_zone->setState(QStringLiteral("playing"));
    m_zone->setVolumeAvailable(true);
    m_zone->setVolumeValue(50.0f);
    m_zone->setVolumeHardLimitMin(0.0f);
    m_zone->setVolumeHardLimitMax(100.0f);
    m_zone->setVolumeSoftLimit(80.0f);
    m_zone->setIsNextAllowed(true);
    m_player->update();
    QCoreApplication::processEvents();
    RoonZones::instance()->updateAvailableZones("[]"); // destroys the zone object
    RoonZones::instance()->updateAvailableZones(KitchenIsAvailable);
    m_signals->take();
    QVariantMap expected = snapshot(*m_player);
    expected.insert(QStringLiteral("zone"), QStringLiteral("UNKNOWN"));
    m_log->clear();
    m_player->update();
    QCOMPARE(lines(), QStringList({ LookingLine, NotFoundLine }));
    QCOMPARE(m_signals->take(), QStringList("remoteConnectionChanged"));
    QCOMPARE(snapshot(*m_player), expected);
    m_log->clear();
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList()); // unknown already
    QCOMPARE(lines(), QStringList({ LookingLine, NotFoundLine }));
    QCoreApplication::processEvents();
    QCOMPARE(m_log->take(), QStringList());
}

void TestPlayer::updateNotifiesEachChangeByItsOwnSignal_data()
{
    QTest::addColumn<QByteArray>("zoneProperty");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QByteArray>("property");
    const auto row = [](const char *zoneProperty, const QVariant &value, const char *signal,
                         const char *property) {
        QTest::newRow(zoneProperty) << QByteArray(zoneProperty) << value
                                    << QString::fromLatin1(signal) << QByteArray(property);
    };
    row("name", "Kitchen + Bath", "zoneChanged", "zone");
    row("state", "paused", "roonStateChanged", "roonState");
    row("nowPlaying_artist", "x", "artistChanged", "artist");
    row("nowPlaying_song", "x", "songChanged", "song");
    row("nowPlaying_album", "x", "albumChanged", "album");
    row("nowPlaying_imageKey", "x", "imageKeyChanged", "imageKey");
    row("nowPlaying_length", 7u, "lengthChanged", "length");
    row("nowPlaying_seekPosition", 7u, "seekPositionChanged", "seekPosition");
    row("settings_autoRadio", true, "autoRadioChanged", "autoRadio");
    row("settings_shuffle", true, "shuffleChanged", "shuffle");
    row("settings_loop", "loop", "loopChanged", "loop");
    row("queue_items_remaining", 7u, "queueItemsRemainingChanged", "queueItemsRemaining");
    row("is_previous_allowed", true, "prevAllowedChanged", "prevAllowed");
    row("is_next_allowed", true, "nextAllowedChanged", "nextAllowed");
    row("is_pause_allowed", true, "pauseAllowedChanged", "pauseAllowed");
    row("is_play_allowed", true, "playAllowedChanged", "playAllowed");
    row("is_seek_allowed", true, "seekAllowedChanged", "seekAllowed");
}

void TestPlayer::updateNotifiesEachChangeByItsOwnSignal()
{
    QFETCH(QByteArray, zoneProperty);
    QFETCH(QVariant, value);
    QFETCH(QString, signal);
    QFETCH(QByteArray, property);
    m_player->update();
    m_signals->take();
    QVERIFY(m_zone->setProperty(zoneProperty, value));
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList(signal));
    QCOMPARE(m_player->property(property), value);
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList());
}

void TestPlayer::emptyStateAndPictureAreNotCopied()
{
    m_zone->setState(QStringLiteral("playing"));
    m_zone->setNowPlayingImageKey(QStringLiteral("key"));
    m_player->update();
    m_signals->take();
    m_zone->setState(QString());
    m_zone->setNowPlayingImageKey(QString());
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(m_player->roonState(), QStringLiteral("playing"));
    QCOMPARE(m_player->previousRoonState(), QStringLiteral("init"));
    QCOMPARE(m_player->imageKey(), QStringLiteral("key"));
}

void TestPlayer::emptyTextsAreCopied()
{
    m_zone->setNowPlayingSong(QStringLiteral("Song"));
    m_zone->setNowPlayingArtist(QStringLiteral("Artist"));
    m_zone->setNowPlayingAlbum(QStringLiteral("Album"));
    m_player->update();
    m_signals->take();
    m_zone->setNowPlayingSong(QString());
    m_zone->setNowPlayingArtist(QString());
    m_zone->setNowPlayingAlbum(QString());
    m_player->update();
    QCOMPARE(m_signals->take(), QStringList({ "artistChanged", "songChanged", "albumChanged" }));
    QVERIFY(m_player->song().isEmpty());
}

void TestPlayer::roonStateChangeIsLogged()
{
    m_player->update(); // the zone's own start value
    QCOMPARE(m_player->roonState(), QStringLiteral("unknown"));
    m_log->clear();
    QString during;
    connect(m_player.get(), &Player::roonStateChanged, this, [&] {
        during = m_player->previousRoonState() + " to " + m_player->roonState();
        QCOMPARE(lines(), QStringList(LookingLine)); // the signal comes before the line
    });
    m_zone->setState(QStringLiteral("paused"));
    m_player->update();
    QCOMPARE(during, QStringLiteral("unknown to paused"));
    QCOMPARE(lines(),
        QStringList(QStringLiteral("info: Player::setRoonState() Roon state set to: paused")));
}

void TestPlayer::navigationEvaluatesAfterwards()
{
    QCoreApplication::processEvents();
    m_log->clear();
    m_player->update();
    const QString line = QStringLiteral("debug: NavigationController::updateState()");
    QCOMPARE(m_log->count(line), 0);
    QCoreApplication::processEvents();
    QCOMPARE(m_log->count(line), 1);
}

void TestPlayer::groupIsFoundByAMember()
{
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z1","name":"Kitchen + Bath"}])");
    m_zone->setName(QStringLiteral("Kitchen + Bath"));
    m_player->update();
    QCOMPARE(m_player->zone(), QStringLiteral("Kitchen + Bath"));
}

void TestPlayer::longTextsAreCutWhileScrollingIsOff_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<int>("limit");
    QTest::newRow("song") << QByteArray("song") << 38;
    QTest::newRow("artist") << QByteArray("artist") << 30;
    QTest::newRow("album") << QByteArray("album") << 24;
}

void TestPlayer::longTextsAreCutWhileScrollingIsOff()
{
    QFETCH(QByteArray, property);
    QFETCH(int, limit);
    for (const int size : { 0, 1, limit - 1, limit, limit + 1, limit + 2, 40, 1000 }) {
        const QString text(size, QChar(0xfc)); // accented: the limit counts characters
        const QString cut = size > limit ? text.left(limit) + QStringLiteral("...") : text;
        m_player->setProperty(property, text);
        QCOMPARE(m_player->property(property).toString(), text);
        Settings::instance()->setScrolling(false);
        QCOMPARE(m_player->property(property).toString(), cut);
        Settings::instance()->setScrolling(true);
        QCOMPARE(m_player->property(property).toString(), text); // the whole text is kept
    }
}

void TestPlayer::scrollingSettingNotifiesTheThreeTexts()
{
    const QStringList expected { "songChanged", "albumChanged", "artistChanged" };
    Settings::instance()->setScrolling(false);
    QCOMPARE(m_signals->take(), expected);
    Settings::instance()->setScrolling(false);
    QCOMPARE(m_signals->take(), QStringList());
    Settings::instance()->setScrolling(true);
    QCOMPARE(m_signals->take(), expected);
    for (const bool argument : { false, true }) {
        m_player->scrollingChanged(argument);
        QCOMPARE(m_signals->take(), expected);
    }
    QCOMPARE(lines(), QStringList());
}

void TestPlayer::timeFollowsTheSetting()
{
    const auto isNow = [this](const QString &format) {
        // The second may end between the two readings.
        for (int attempt = 0; attempt < 3; ++attempt) {
            const QString before = QDateTime::currentDateTime().toString(format);
            const QString time = m_player->time();
            if (time == before || time == QDateTime::currentDateTime().toString(format))
                return true;
        }
        return false;
    };
    QVERIFY(isNow(QStringLiteral("H:mm:ss")));
    Settings::instance()->setTimeFormat(false);
    QVERIFY(isNow(QStringLiteral("h:mm:ss a")));
    QVERIFY(m_player->time().contains(
        QRegularExpression(QStringLiteral("^\\d+:\\d\\d:\\d\\d [ap]m$"))));
    m_player->timeFormatChanged(true);
    QVERIFY(isNow(QStringLiteral("H:mm:ss")));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(lines(), QStringList());

    const Player later; // takes the setting over
    QVERIFY(later.time().endsWith(QLatin1Char('m')));
}

void TestPlayer::timesAreMinutesAndSeconds_data()
{
    QTest::addColumn<uint>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0u << "0:00";
    QTest::newRow("9") << 9u << "0:09";
    QTest::newRow("59") << 59u << "0:59";
    QTest::newRow("60") << 60u << "1:00";
    QTest::newRow("61") << 61u << "1:01";
    QTest::newRow("600") << 600u << "10:00";
    QTest::newRow("an hour and more") << 3725u << "62:05";
    QTest::newRow("largest") << 4294967295u << "71582788:15";
}

void TestPlayer::timesAreMinutesAndSeconds()
{
    QFETCH(uint, seconds);
    QFETCH(QString, text);
    m_player->setSeekPosition(seconds);
    QCOMPARE(m_player->seekPositionText(), text);
    m_player->setLength(seconds);
    QCOMPARE(m_player->lengthText(), text);
}

void TestPlayer::imageAddressesAreBuiltOnEachRead_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("key");
    QTest::newRow("usual") << "127.0.0.1:9330"
                           << "abc";
    QTest::newRow("no key") << "127.0.0.1:9330"
                            << "";
    QTest::newRow("no server") << ""
                               << "abc";
    QTest::newRow("odd key") << "127.0.0.1:9330"
                             << "a%1 b/%2?ü";
}

void TestPlayer::imageAddressesAreBuiltOnEachRead()
{
    QFETCH(QString, server);
    QFETCH(QString, key);
    Roon::instance()->setServerUrl(server);
    m_player->setImageKey(key);
    const QString start = QStringLiteral("http://") + server + QStringLiteral("/image/") + key;
    const QString small
        = start + QStringLiteral("?scale=fit&width=402&height=402&format=image/jpeg");
    const QString big = start + QStringLiteral("?scale=fit&width=800&height=480&format=image/jpeg");
    m_log->clear();
    QCOMPARE(m_player->imageUrl(), small);
    QCOMPARE(m_player->property("bigImageUrl").toString(), big);
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("debug: Player::imageUrl() called: ") + small,
            QStringLiteral("debug: Player::bigImageUrl() called: ") + big }));
    QCOMPARE(m_player->bigImageUrl(), big);
    QCOMPARE(lines().size(), 1);
}

void TestPlayer::connectionStateNotifiesOnlyOnAChange()
{
    m_player->connectionStateChanged(true);
    m_player->connectionStateChanged(false);
    m_player->connectionStateChanged(false);
    m_player->connectionStateChanged(true);
    QCOMPARE(
        m_signals->take(), QStringList({ "remoteConnectionChanged", "remoteConnectionChanged" }));
    const QString line = QStringLiteral("debug: Player::connectionStateChanged() ");
    QCOMPARE(
        lines(), QStringList({ line + "true", line + "false", line + "false", line + "true" }));
}

QTEST_GUILESS_MAIN(TestPlayer)
#include "tst_player.moc"
