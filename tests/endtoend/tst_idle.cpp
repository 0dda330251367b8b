// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/waiting.h"

#include <QTest>

/** Where nothing moves nothing is drawn: the appliance's processor belongs to the music. */
class TestIdle : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void aPausedZoneDrawsNothing();
    void aTextThatFitsDrawsNothing();
    void messagesWithoutNewsDrawNothing();
    void theClockDrawsOnceAMinute();
    void theScreenSaverDrawsNothing();
    void theConnectionFailureDrawsNothing();

private:
    /**
     * Frames drawn between now, when all is quiet, and the second ping from now: about five
     * seconds.
     */
    int framesInFiveSeconds();
    /**
     * Waits until what was begun has been drawn: a whole time between two pings without a frame.
     */
    bool comesToRest();
    bool waitForPing();

    Appliance m_appliance;
};

void TestIdle::initTestCase()
{
    QVERIFY(m_appliance.start());
    m_appliance.publishZone("nowPlaying/song", "Song");
    m_appliance.publishZone("nowPlaying/length", "100");
    m_appliance.publishZone("nowPlaying/seekPosition", "50");
    QVERIFY(m_appliance.handled());
}

void TestIdle::aPausedZoneDrawsNothing()
{
    QVERIFY(comesToRest());
    QCOMPARE(framesInFiveSeconds(), 0);
}

void TestIdle::aTextThatFitsDrawsNothing()
{
    // Long enough to scroll, then short enough to stand.
    m_appliance.publishZone("nowPlaying/song", QByteArray(200, 'x'));
    QVERIFY(m_appliance.handled());
    m_appliance.program.probe().frames();
    QVERIFY(waitUntil([this] { return m_appliance.program.probe().frames() > 0; }));
    m_appliance.publishZone("nowPlaying/song", "Song");
    QVERIFY(m_appliance.handled());
    QVERIFY(comesToRest());
    QCOMPARE(framesInFiveSeconds(), 0);
}

void TestIdle::messagesWithoutNewsDrawNothing()
{
    QVERIFY(comesToRest());
    m_appliance.program.probe().frames();
    for (int i = 0; i < 100; ++i) {
        m_appliance.publishZone("nowPlaying/song", "Song");
        m_appliance.publishZone("nowPlaying/seekPosition", "50");
        m_appliance.publishCore("coreDetected", "true");
    }
    QVERIFY(m_appliance.handled());
    QVERIFY(waitForPing());
    QCOMPARE(m_appliance.program.probe().frames(), 0);
}

void TestIdle::theClockDrawsOnceAMinute()
{
    m_appliance.sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance.waitForPage("Clock"));
    QVERIFY(comesToRest());
    QVERIFY(framesInFiveSeconds() <= 1); // the minute may end just now
}

void TestIdle::theScreenSaverDrawsNothing()
{
    m_appliance.sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance.waitForPage("ScreenSaver"));
    QVERIFY(comesToRest());
    QCOMPARE(framesInFiveSeconds(), 0);
}

void TestIdle::theConnectionFailureDrawsNothing()
{
    m_appliance.publishCore("coreDetected", "false");
    m_appliance.sendCommand(R"({"command":"toggle_standby"})");
    QVERIFY(m_appliance.waitForPage("RoonConnectionFailure"));
    QVERIFY(comesToRest());
    QCOMPARE(framesInFiveSeconds(), 0);
}

int TestIdle::framesInFiveSeconds()
{
    Probe &probe = m_appliance.program.probe();
    probe.frames();
    if (!waitForPing() || !waitForPing())
        return -1;
    return probe.frames();
}

bool TestIdle::comesToRest()
{
    Probe &probe = m_appliance.program.probe();
    probe.frames();
    for (int pings = 0; pings < 5; ++pings) {
        if (!waitForPing())
            return false;
        if (probe.frames() == 0)
            return true;
    }
    return false;
}

bool TestIdle::waitForPing()
{
    // A message in between keeps the run of equal lines short: a long one would be cut.
    return m_appliance.handled()
        && m_appliance.program.waitForLine(
            Line::debug("SystemdWatchdog::WorkerThread::PING"), m_appliance.program.logSize());
}

QTEST_GUILESS_MAIN(TestIdle)
#include "tst_idle.moc"
