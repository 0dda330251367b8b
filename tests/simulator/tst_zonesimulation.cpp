// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/zonesimulation.h"

#include "simulator/house/library.h"

#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <limits>

/** Three tracks of 10, 20 and 30 seconds. */
class TestZoneSimulation : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { delete m_zone; }

    void beginsStoppedWithNothing();
    void playsPausesAndStops();
    void advancesOnlyWhilePlaying();
    void tracksEnd();
    void longTimeEndsSeveralTracks();
    void stopsAfterTheLastTrack();
    void loopBeginsAnew();
    void loopOneRepeatsTheTrack();
    void autoRadioGoesOnWithOtherMusic();
    void nextGoesOnWithOtherMusicToo();
    void nextEndsAtTheLastTrack();
    void previousBeginsAnewFirst();
    void seeksWithinTheTrack();
    void shuffleKeepsTheTrackAndPlaysEachOnce();
    void radioCannotSeekSkipOrPause();
    void unknownLoopModeIsRefused();
    void volumeIsClampedToTheHardLimits_data();
    void volumeIsClampedToTheHardLimits();
    void decibelsKeepHalfSteps();
    void fixedVolumeIsRefused();
    void reportsOnlyWhatChanged();
    void followersAreNamedAndListed();
    void sameSeedSameOrder();

private:
    QByteArray value(const char *key) const;

    QRandomGenerator m_random;
    Album m_album;
    Album m_station;
    ZoneSimulation *m_zone = nullptr;
};

void TestZoneSimulation::init()
{
    m_random.seed(1);
    m_album.name = QStringLiteral("Album");
    m_album.artist = QStringLiteral("Artist");
    m_album.tracks = { { QStringLiteral("One"), 10 }, { QStringLiteral("Two"), 20 },
        { QStringLiteral("Three"), 30 } };
    m_station.name = QStringLiteral("Station");
    m_station.tracks = { { QStringLiteral("News"), 10 }, { QStringLiteral("Music"), 10 } };
    m_station.radio = true;
    ZoneDescription description;
    description.id = QStringLiteral("zone-1");
    description.name = QStringLiteral("Room");
    description.volume.hardLimitMin = 10;
    description.volume.hardLimitMax = 60;
    m_zone = new ZoneSimulation(description, &m_random);
    m_zone->setQueue({ &m_album });
}

QByteArray TestZoneSimulation::value(const char *key) const
{
    const QVector<ZoneSimulation::Property> properties = m_zone->properties();
    for (const ZoneSimulation::Property &property : properties) {
        if (property.key == key)
            return property.value;
    }
    return "(missing)";
}

void TestZoneSimulation::beginsStoppedWithNothing()
{
    m_zone->setQueue({});
    QCOMPARE(value("state"), QByteArray("stopped"));
    QCOMPARE(value("nowPlaying/song"), QByteArray());
    QCOMPARE(value("is_play_allowed"), QByteArray("false"));
    QCOMPARE(value("queue_items_remaining"), QByteArray("0"));
    QVERIFY(!m_zone->playPause());
    QVERIFY(!m_zone->next());
    QVERIFY(!m_zone->previous());
    QVERIFY(!m_zone->seek(1));
    QCOMPARE(value("state"), QByteArray("stopped"));
}

void TestZoneSimulation::playsPausesAndStops()
{
    QVERIFY(m_zone->playPause());
    QCOMPARE(value("state"), QByteArray("playing"));
    QCOMPARE(value("is_pause_allowed"), QByteArray("true"));
    QCOMPARE(value("is_play_allowed"), QByteArray("false"));
    QVERIFY(m_zone->playPause());
    QCOMPARE(value("state"), QByteArray("paused"));
    QCOMPARE(value("is_play_allowed"), QByteArray("true"));
    QCOMPARE(value("is_pause_allowed"), QByteArray("false"));
    m_zone->play();
    m_zone->advance(4000);
    m_zone->stop();
    QCOMPARE(value("state"), QByteArray("stopped"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
}

void TestZoneSimulation::advancesOnlyWhilePlaying()
{
    m_zone->advance(3000);
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
    m_zone->play();
    m_zone->advance(3500);
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("3"));
    QCOMPARE(value("queue_time_remaining"), QByteArray("57"));
    m_zone->pause();
    m_zone->advance(3000);
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("3"));
}

void TestZoneSimulation::tracksEnd()
{
    m_zone->play();
    m_zone->advance(9999);
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
    QSignalSpy started(m_zone, &ZoneSimulation::trackStarted);
    m_zone->advance(1);
    QCOMPARE(m_zone->song(), QStringLiteral("Two"));
    QCOMPARE(value("nowPlaying/length"), QByteArray("20"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
    QCOMPARE(value("queue_items_remaining"), QByteArray("2"));
    QCOMPARE(started.count(), 1);
}

void TestZoneSimulation::longTimeEndsSeveralTracks()
{
    m_zone->play();
    m_zone->advance(31500);
    QCOMPARE(m_zone->song(), QStringLiteral("Three"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("1"));
}

void TestZoneSimulation::stopsAfterTheLastTrack()
{
    m_zone->play();
    m_zone->advance(1000000);
    QCOMPARE(value("state"), QByteArray("stopped"));
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
}

void TestZoneSimulation::loopBeginsAnew()
{
    QVERIFY(m_zone->setLoop(QStringLiteral("loop")));
    m_zone->play();
    m_zone->advance(62000);
    QCOMPARE(value("state"), QByteArray("playing"));
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("2"));
}

void TestZoneSimulation::loopOneRepeatsTheTrack()
{
    QVERIFY(m_zone->setLoop(QStringLiteral("loop_one")));
    m_zone->play();
    m_zone->advance(12000);
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("2"));
    QVERIFY(m_zone->next()); // a listener still gets on
    QCOMPARE(m_zone->song(), QStringLiteral("Two"));
}

void TestZoneSimulation::autoRadioGoesOnWithOtherMusic()
{
    m_zone->setAutoRadio(true);
    m_zone->play();
    QSignalSpy changed(m_zone, &ZoneSimulation::playingChanged);
    m_zone->advance(60000);
    QCOMPARE(value("state"), QByteArray("playing"));
    QVERIFY(value("nowPlaying/album") != "Album");
    QCOMPARE(changed.count(), 0);
}

void TestZoneSimulation::nextGoesOnWithOtherMusicToo()
{
    m_zone->setQueue({ &m_album }, 2);
    QCOMPARE(value("is_next_allowed"), QByteArray("false"));
    m_zone->setAutoRadio(true);
    QCOMPARE(value("is_next_allowed"), QByteArray("true"));
    QVERIFY(m_zone->next());
    QVERIFY(value("nowPlaying/album") != "Album");
    QCOMPARE(value("state"), QByteArray("stopped"));
}

void TestZoneSimulation::nextEndsAtTheLastTrack()
{
    QVERIFY(m_zone->next());
    QVERIFY(m_zone->next());
    QCOMPARE(m_zone->song(), QStringLiteral("Three"));
    QCOMPARE(value("is_next_allowed"), QByteArray("false"));
    QVERIFY(!m_zone->next());
    QCOMPARE(m_zone->song(), QStringLiteral("Three"));
    m_zone->setLoop(QStringLiteral("loop"));
    QVERIFY(m_zone->next());
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
}

void TestZoneSimulation::previousBeginsAnewFirst()
{
    m_zone->next();
    m_zone->play();
    m_zone->advance(8000);
    QVERIFY(m_zone->previous());
    QCOMPARE(m_zone->song(), QStringLiteral("Two"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
    QVERIFY(m_zone->previous());
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
    QVERIFY(m_zone->previous());
    QCOMPARE(m_zone->song(), QStringLiteral("One"));
}

void TestZoneSimulation::seeksWithinTheTrack()
{
    QVERIFY(m_zone->seek(7));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("7"));
    QVERIFY(m_zone->seek(-5));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("0"));
    QVERIFY(m_zone->seek(1000));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("9"));
}

void TestZoneSimulation::shuffleKeepsTheTrackAndPlaysEachOnce()
{
    QVector<const Album *> everything;
    int count = 0;
    for (const Album &album : Library::albums()) {
        if (!album.radio) {
            everything.append(&album);
            count += album.tracks.size();
        }
    }
    m_zone->setQueue(everything, 5);
    const QString first = m_zone->song();
    m_zone->setShuffle(true);
    QCOMPARE(m_zone->song(), first);
    QSet<QString> heard { m_zone->song() };
    while (m_zone->next())
        heard.insert(m_zone->song());
    QCOMPARE(heard.size(), count - 5);
    m_zone->setShuffle(false);
    QVERIFY(value("settings/shuffle") == "false");
}

void TestZoneSimulation::radioCannotSeekSkipOrPause()
{
    m_zone->setQueue({ &m_station });
    QVERIFY(m_zone->play());
    m_zone->advance(3000);
    QVERIFY(!m_zone->seek(1));
    QVERIFY(!m_zone->next());
    QVERIFY(!m_zone->previous());
    QCOMPARE(value("nowPlaying/length"), QByteArray("0"));
    QCOMPARE(value("nowPlaying/seekPosition"), QByteArray("3"));
    QCOMPARE(value("queue_items_remaining"), QByteArray("0"));
    QCOMPARE(value("is_seek_allowed"), QByteArray("false"));
    QCOMPARE(value("is_next_allowed"), QByteArray("false"));
    QCOMPARE(value("is_previous_allowed"), QByteArray("false"));
    m_zone->advance(20000);
    QCOMPARE(value("state"), QByteArray("playing"));
    QVERIFY(m_zone->playPause());
    QCOMPARE(value("state"), QByteArray("stopped"));
}

void TestZoneSimulation::unknownLoopModeIsRefused()
{
    QVERIFY(!m_zone->setLoop(QStringLiteral("backwards")));
    QVERIFY(!m_zone->setLoop(QString()));
    QCOMPARE(value("settings/loop"), QByteArray("disabled"));
}

void TestZoneSimulation::volumeIsClampedToTheHardLimits_data()
{
    QTest::addColumn<double>("wanted");
    QTest::addColumn<QByteArray>("published");
    QTest::newRow("within") << 42.0 << QByteArray("42");
    QTest::newRow("lower limit") << 10.0 << QByteArray("10");
    QTest::newRow("below") << -1000.0 << QByteArray("10");
    QTest::newRow("upper limit") << 60.0 << QByteArray("60");
    QTest::newRow("above") << 60.6 << QByteArray("60");
    QTest::newRow("far above") << 1e300 << QByteArray("60");
    QTest::newRow("between two steps") << 33.3 << QByteArray("33");
}

void TestZoneSimulation::volumeIsClampedToTheHardLimits()
{
    QFETCH(double, wanted);
    QFETCH(QByteArray, published);
    QVERIFY(m_zone->setVolume(wanted));
    QCOMPARE(value("volume/value"), published);
    m_zone->setVolume(30);
    QVERIFY(m_zone->changeVolume(wanted - 30));
    QCOMPARE(value("volume/value"), published);
}

void TestZoneSimulation::decibelsKeepHalfSteps()
{
    ZoneSimulation zone(Library::zones().at(2), &m_random);
    QVERIFY(zone.setVolume(-30));
    QVERIFY(zone.changeVolume(0.5));
    QCOMPARE(zone.volume(), -29.5);
    QVERIFY(zone.changeVolume(-0.5));
    QCOMPARE(zone.volume(), -30.0);
    QVERIFY(zone.setVolume(0));
    QCOMPARE(zone.volume(), -5.0);
}

void TestZoneSimulation::fixedVolumeIsRefused()
{
    ZoneSimulation zone(Library::zones().at(3), &m_random);
    QSignalSpy changed(&zone, &ZoneSimulation::propertyChanged);
    QVERIFY(!zone.setVolume(10));
    QVERIFY(!zone.changeVolume(1));
    QVERIFY(!zone.setMuted(true));
    QCOMPARE(changed.count(), 0);
    QVERIFY(!m_zone->setVolume(std::numeric_limits<double>::quiet_NaN()));
}

void TestZoneSimulation::reportsOnlyWhatChanged()
{
    m_zone->play();
    QSignalSpy changed(m_zone, &ZoneSimulation::propertyChanged);
    m_zone->advance(1000);
    QCOMPARE(changed.count(), 2); // position and time left in the queue
    m_zone->advance(500);
    m_zone->play();
    m_zone->setVolume(m_zone->volume());
    QCOMPARE(changed.count(), 2);
    m_zone->republish();
    QCOMPARE(changed.count(), 2 + m_zone->properties().size());
}

void TestZoneSimulation::followersAreNamedAndListed()
{
    m_zone->setFollowers({ QStringLiteral("Hall"), QStringLiteral("Bath") });
    QCOMPARE(m_zone->name(), QStringLiteral("Room + Hall + Bath"));
    QCOMPARE(value("outputs").count("display_name"), 3);
    QCOMPARE(m_zone->ownName(), QStringLiteral("Room"));
    m_zone->setFollowers({});
    QCOMPARE(value("name"), QByteArray("Room"));
}

void TestZoneSimulation::sameSeedSameOrder()
{
    const auto order = [](quint32 seed) {
        QRandomGenerator random(seed);
        ZoneSimulation zone(Library::zones().first(), &random);
        zone.setShuffle(true);
        zone.setQueue({ &Library::albums().at(0), &Library::albums().at(1) });
        QStringList songs;
        do
            songs.append(zone.song());
        while (zone.next());
        return songs;
    };
    QCOMPARE(order(7), order(7));
    QVERIFY(order(7) != order(8));
}

QTEST_GUILESS_MAIN(TestZoneSimulation)
#include "tst_zonesimulation.moc"
