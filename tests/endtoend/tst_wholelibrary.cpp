// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/library.h"
#include "simulator/services/coverart.h"
#include "simulator/services/topics.h"
#include "testkit/machine/panel.h"
#include "testkit/meandifference.h"
#include "testkit/process/program.h"
#include "testkit/process/simulatorprogram.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

namespace {

constexpr int TracksToCompare = 300;

/** The simulated zone, as the simulator publishes it. */
const QString Zone = Library::zones().first().id;

/** Mean difference of the two pictures' colours, 0 to 255, without regard to detail. */
double difference(const QImage &a, const QImage &b)
{
    const auto coarse = [](const QImage &picture) {
        return picture.scaled(12, 12, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    return meanDifference(coarse(a), coarse(b));
}

} // namespace

/**
 * The simulated appliance with the real program: all music there is, track after track, some of
 * them played to their end and some left by a touch.
 */
class TestWholeLibrary : public QObject {
    Q_OBJECT

private slots:
    void everyTrackIsShownAsItPlays();

private:
    /** What the simulator has last said about the zone. */
    QString told(const char *key) const;
    /** Touches and waits until the simulator has answered with this value. */
    bool touchUntil(const char *item, const char *key, const QString &value);
    /** Touches and waits until another track is on. */
    bool touchForAnotherTrack(const char *item);
    /** Touches "previous", and waits until the simulator has obeyed. */
    bool touchPrevious();
    /** Lets the paused track play to its end, and pauses the next. */
    bool playToTheEnd();
    /** Waits until the page shows what the simulator has told; false, with what differs. */
    bool pageShowsTheTruth();
    bool coverIsThatOfTheAlbum();
    QString shown(const char *item);

    Broker m_broker;
    BrokerClient m_listener;
    SimulatorProgram m_simulator;
    Program m_program;
    QMap<QByteArray, QImage> m_covers;
};

QString TestWholeLibrary::told(const char *key) const
{
    const QList<QByteArray> payloads = m_listener.payloads(Topics::zone(Zone, key));
    return payloads.isEmpty() ? QString() : QString::fromUtf8(payloads.last());
}

QString TestWholeLibrary::shown(const char *item)
{
    return m_program.probe().property(item, "text").toString();
}

bool TestWholeLibrary::touchUntil(const char *item, const char *key, const QString &value)
{
    if (!m_program.probe().tap(item))
        return false;
    if (waitUntil([&] { return told(key) == value; }))
        return true;
    qWarning("after a touch on %s, %s is %s instead of %s", item, key, qUtf8Printable(told(key)),
        qUtf8Printable(value));
    return false;
}

bool TestWholeLibrary::touchForAnotherTrack(const char *item)
{
    const QString before = told("nowPlaying/song");
    if (!m_program.probe().tap(item))
        return false;
    if (waitUntil([&] { return told("nowPlaying/song") != before; }))
        return true;
    qWarning("after a touch on %s, %s still plays", item, qUtf8Printable(before));
    return false;
}

bool TestWholeLibrary::touchPrevious()
{
    const QString topic = Topics::command();
    const int before = m_listener.payloads(topic).size();
    if (!m_program.probe().tap("previous")
        || !waitUntil([&] { return m_listener.payloads(topic).size() > before; }))
        return false;
    // The first track of all stays where it is and nothing is told, so something is moved that is.
    m_listener.publish(Topics::fault(), "seek seconds=5");
    return waitUntil([&] { return told("nowPlaying/seekPosition") == QLatin1String("5"); });
}

bool TestWholeLibrary::playToTheEnd()
{
    const QString before = told("nowPlaying/song");
    const int end = told("nowPlaying/length").toInt() - 1;
    if (end > 0) {
        m_listener.publish(Topics::fault(), "seek seconds=" + QByteArray::number(end));
        if (!waitUntil([&] { return told("nowPlaying/seekPosition").toInt() == end; })) {
            qWarning("%s, %s, stands at %s instead of %d of %s", qUtf8Printable(before),
                qUtf8Printable(told("state")), qUtf8Printable(told("nowPlaying/seekPosition")), end,
                qUtf8Printable(told("nowPlaying/length")));
            return false;
        }
    }
    if (!touchUntil("playPause", "state", QStringLiteral("playing")))
        return false;
    if (!waitUntil([&] { return told("nowPlaying/song") != before; })) {
        qWarning("%s does not end", qUtf8Printable(before));
        return false;
    }
    return touchUntil("playPause", "state", QStringLiteral("paused"));
}

bool TestWholeLibrary::pageShowsTheTruth()
{
    const auto seconds = [](const QString &text) {
        return QStringLiteral("%1:%2")
            .arg(text.toInt() / 60)
            .arg(text.toInt() % 60, 2, 10, QLatin1Char('0'));
    };
    QString differing;
    const auto agrees = [&] {
        const QList<QPair<const char *, QString>> expected { { "songTitle",
                                                                 told("nowPlaying/song") },
            { "artist", told("nowPlaying/artist") }, { "album", told("nowPlaying/album") },
            { "zoneNameText", told("name") }, { "length", seconds(told("nowPlaying/length")) },
            { "seekPosition", seconds(told("nowPlaying/seekPosition")) } };
        for (const auto &each : expected) {
            const QString found = shown(each.first);
            if (found != each.second) {
                differing = QStringLiteral("%1 is \"%2\" instead of \"%3\"")
                                .arg(QLatin1String(each.first), found, each.second);
                return false;
            }
        }
        const QString source = m_program.probe().property("coverPicture", "source").toString();
        if (source == QStringLiteral("image://velunor/") + told("nowPlaying/imageKey"))
            return true;
        differing = QStringLiteral("the cover is ") + source;
        return false;
    };
    if (waitUntil(agrees))
        return true;
    qWarning("%s", qUtf8Printable(differing));
    return false;
}

bool TestWholeLibrary::coverIsThatOfTheAlbum()
{
    const QByteArray key = told("nowPlaying/imageKey").toUtf8();
    if (!m_covers.contains(key))
        m_covers.insert(key, CoverArt::draw(key, QSize(402, 402)));
    double found = 0;
    const bool same = waitUntil([&] {
        const QRectF area = m_program.probe().area("coverPicture");
        const QImage cover = m_program.probe().picture().copy(area.toAlignedRect());
        found = difference(cover, m_covers.value(key));
        return found < 6;
    });
    if (!same)
        qWarning("the cover of %s differs by %f", key.constData(), found);
    return same;
}

void TestWholeLibrary::everyTrackIsShownAsItPlays()
{
    const Panel panel;
    QVERIFY(m_listener.startBroker(&m_broker));
    // Fast enough that a track ends soon, slow enough that the next can be paused before its end.
    QVERIFY(m_simulator.startAndWait({ "--scenario", "playing", "--speed", "12" }));
    QVERIFY(m_program.startAndWait());
    QVERIFY(m_program.waitForPage("RoonPlayerWindow2"));
    QVERIFY(touchUntil("playPause", "state", QStringLiteral("paused")));
    QVERIFY(touchUntil("loop", "settings/loop", QStringLiteral("loop")));

    QSet<QString> everySong;
    for (const Album &album : Library::albums()) {
        for (const Track &track : album.tracks) {
            if (!album.radio)
                everySong.insert(track.song);
        }
    }
    QSet<QString> seenSongs;
    QString lastCover;
    QRandomGenerator random(1);
    for (int i = 0; i < TracksToCompare; ++i) {
        QVERIFY2(pageShowsTheTruth(), qPrintable(told("nowPlaying/song")));
        seenSongs.insert(told("nowPlaying/song"));
        const QString cover = told("nowPlaying/imageKey");
        if (cover != QLatin1String("NO_IMAGE") && cover != lastCover)
            QVERIFY2(coverIsThatOfTheAlbum(), qPrintable(told("nowPlaying/album")));
        lastCover = cover;
        // In order until everything was on; then as chance will have it.
        if (seenSongs.size() == everySong.size() && told("settings/shuffle") == "false")
            QVERIFY(touchUntil("shuffle", "settings/shuffle", QStringLiteral("true")));
        const bool wholeLibraryHeard = seenSongs.size() == everySong.size();
        const int choice = random.bounded(wholeLibraryHeard ? 8 : 6);
        if (choice == 7 && told("nowPlaying/seekPosition").toInt() <= 3) {
            QVERIFY(touchPrevious());
        } else if (choice == 6) {
            const bool on = told("settings/autoRadio") == "true";
            QVERIFY(touchUntil("radio", "settings/autoRadio",
                on ? QStringLiteral("false") : QStringLiteral("true")));
        } else if (choice % 2 == 0)
            QVERIFY(touchForAnotherTrack("next"));
        else
            QVERIFY(playToTheEnd());
    }
    QCOMPARE(seenSongs, everySong);
    QVERIFY(m_program.stop());
    QVERIFY(m_simulator.stop());
    QVERIFY(m_simulator.waitForLine(QStringLiteral("command: next in Hugo2X")));
}

QTEST_GUILESS_MAIN(TestWholeLibrary)
#include "tst_wholelibrary.moc"
