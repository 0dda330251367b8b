// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace PageNames;

namespace {

const QByteArray Toggle = R"({"command":"toggle_standby"})";

/**
 * The clock looks at the time once a second.  A busy machine takes longer to tell; a clock that
 * only looked once a minute would still be late.
 */
constexpr int TicksMs = 15000;

/** Replaces the machine's time zone, as timedatectl does, for everybody in the sandbox. */
bool setZone(const QString &zone)
{
    // The zone's own file, to which the name is a link on most machines.
    const QString used = QFileInfo("/etc/localtime").canonicalFilePath();
    return QProcess::execute("mount", { "--bind", "/usr/share/zoneinfo/" + zone, used }) == 0;
}

} // namespace

/**
 * The clock tells the right minute within a second or so, whatever happens to the machine's own
 * clock.
 */
class TestClock : public QObject {
    Q_OBJECT

private slots:
    void followsTheMachinesClock_data();
    void followsTheMachinesClock();
    void followsTheTimeZone();
    void theScreenSaverKeepsItsDelay();

private:
    bool startAt(Appliance &appliance, const QByteArray &moment, const char *zone);
    bool setClock(const QByteArray &moment);
    bool tells(Appliance &appliance, const QString &time, const QString &day);

    QTemporaryDir m_directory;
};

/** @p moment is in UTC; the clock runs on from there. */
bool TestClock::setClock(const QByteArray &moment)
{
    const QByteArray text = '@'
        + QByteArray::number(QDateTime::fromString(moment + 'Z', Qt::ISODate).toSecsSinceEpoch())
        + '\n';
    // In one step, so that nobody reads half of it.
    QFile next(m_directory.filePath("next"));
    const bool written = next.open(QIODevice::WriteOnly) && next.write(text) == text.size();
    next.close();
    return written
        && std::rename(qPrintable(next.fileName()), qPrintable(m_directory.filePath("now"))) == 0;
}

bool TestClock::startAt(Appliance &appliance, const QByteArray &moment, const char *zone)
{
    Program &program = appliance.program;
    if (zone)
        program.setEnvironment("TZ", zone);
    else
        program.unsetEnvironment("TZ");
    program.setEnvironment("LD_PRELOAD", TOUCHUI_FAKETIME);
    program.setEnvironment("FAKETIME_TIMESTAMP_FILE", m_directory.filePath("now"));
    program.setEnvironment("FAKETIME_FMT", "%s");
    program.setEnvironment("FAKETIME_NO_CACHE", "1");
    program.setEnvironment("FAKETIME_DONT_FAKE_MONOTONIC", "1");
    if (!setClock(moment) || !appliance.start())
        return false;
    appliance.sendCommand(Toggle);
    return appliance.waitForPage(Clock);
}

bool TestClock::tells(Appliance &appliance, const QString &time, const QString &day)
{
    Probe &probe = appliance.program.probe();
    return waitUntil(
        [&] {
            return probe.property("time", "text") == QJsonValue(time)
                && probe.property("day", "text") == QJsonValue(day);
        },
        TicksMs);
}

void TestClock::followsTheMachinesClock_data()
{
    struct Moment {
        QByteArray utc; ///< empty: what comes of the moment before by itself
        QString time;
        QString day;
    };
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("timeBefore");
    QTest::addColumn<QString>("dayBefore");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("timeAfter");
    QTest::addColumn<QString>("dayAfter");
    const auto row = [](const char *name, const Moment &before, const Moment &after) {
        QTest::newRow(name) << before.utc << before.time << before.day << after.utc << after.time
                            << after.day;
    };
    const QByteArray passes;
    row("a minute passes", { "2026-06-01T08:59:50", "10:59", "01" }, { passes, "11:00", "01" });
    row("a day passes", { "2026-02-28T22:59:50", "23:59", "28" }, { passes, "0:00", "01" });
    row("summer time begins", { "2026-03-29T00:59:50", "1:59", "29" }, { passes, "3:00", "29" });
    row("summer time ends", { "2026-10-25T00:59:50", "2:59", "25" }, { passes, "2:00", "25" });
    row("set back by a year", { "2026-06-02T10:34:00", "12:34", "02" },
        { "2025-06-03T10:35:00", "12:35", "03" });
    row("the network's time at boot", { "1970-01-02T02:00:00", "3:00", "02" },
        { "2026-06-04T15:45:00", "17:45", "04" });
    row("a minute back", { "2026-06-05T06:01:00", "8:01", "05" },
        { "2026-06-05T06:00:00", "8:00", "05" });
    row("beyond 2038", { "2038-01-19T02:14:00", "3:14", "19" },
        { "2038-01-20T03:15:00", "4:15", "20" });
}

void TestClock::followsTheMachinesClock()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, timeBefore);
    QFETCH(QString, dayBefore);
    QFETCH(QByteArray, after);
    QFETCH(QString, timeAfter);
    QFETCH(QString, dayAfter);
    Appliance appliance;
    QVERIFY(startAt(appliance, before, "Europe/Berlin"));
    QVERIFY(setClock(before));
    QVERIFY(tells(appliance, timeBefore, dayBefore));
    if (!after.isEmpty())
        QVERIFY(setClock(after));
    QVERIFY(tells(appliance, timeAfter, dayAfter));
    QVERIFY(appliance.program.stop());
}

void TestClock::followsTheTimeZone()
{
    QVERIFY(setZone("Etc/UTC"));
    Appliance appliance;
    QVERIFY(startAt(appliance, "2026-06-01T12:00:00", nullptr));
    QVERIFY(tells(appliance, "12:00", "01"));
    QVERIFY(setZone("Asia/Kolkata"));
    QVERIFY(tells(appliance, "17:30", "01"));
    QVERIFY(appliance.program.stop());
}

/** A delay is counted in time that passes, not by the clock on the wall. */
void TestClock::theScreenSaverKeepsItsDelay()
{
    Appliance appliance;
    Program &program = appliance.program;
    QVERIFY(startAt(appliance, "2026-06-01T12:00:00", "UTC"));
    appliance.sendCommand(Toggle);
    appliance.sendCommand(Toggle);
    QVERIFY(appliance.waitForPage(Player));
    appliance.publishSetting("touchscreen_screensaver_time", "1");
    appliance.publishZone("state", "playing");
    appliance.publishZone("state", "paused");
    QVERIFY(appliance.handled());
    QVERIFY(setClock("2027-06-01T12:00:00"));
    QTest::qWait(2000); // a delay that went by the clock would have ended
    QVERIFY(program.probe().shows(Player));
    QVERIFY(setClock("2020-06-01T12:00:00"));
    const Probe::Target timer(QJsonObject { { "type", "QTimer" },
        { "where", QJsonObject { { "interval", 60000 }, { "active", true } } } });
    QCOMPARE(program.probe().alive(timer), 1);
    QVERIFY(program.probe().setObjectProperty(timer, "interval", 100));
    QVERIFY(appliance.waitForPage(Clock));
    QVERIFY(program.stop());
}

QTEST_GUILESS_MAIN(TestClock)
#include "tst_clock.moc"
