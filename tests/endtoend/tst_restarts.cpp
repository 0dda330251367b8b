// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/waiting.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>
#include <cstdio>

/*
 * The program is started and told to end, again and again, most often while it still starts.  CTest
 * tries twenty times. A thousand times, from the source directory, with the longest end told, and
 * none above two seconds:
 *
 *     testkit/sandbox --keep $PWD $PWD/build/dev/tests/endtoend/tst_restarts --starts 1000 --limit
 * 2000
 */

namespace {

int starts = 0;
quint32 seed = 0;
int limitMs = 0;

constexpr int WhileStartingMs = 1200;
constexpr int WhileRunningMs = 7000; // the welcome page has gone by then

} // namespace

class TestRestarts : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void everyEndIsClean();

private:
    Appliance m_services; // of which only the services run all the time
};

void TestRestarts::initTestCase()
{
    QVERIFY(m_services.startServices());
    m_services.publishZone("state", "playing");
    QVERIFY(m_services.services.flush());
}

void TestRestarts::everyEndIsClean()
{
    QRandomGenerator random(seed);
    qint64 longestMs = 0;
    int early = 0;
    for (int i = 0; i < starts; ++i) {
        const int number = random.bounded(2) ? SIGTERM : SIGINT;
        const int delayMs = random.bounded(random.bounded(4) ? WhileStartingMs : WhileRunningMs);
        const QByteArray what = "start " + QByteArray::number(i) + ", signal "
            + QByteArray::number(number) + " after " + QByteArray::number(delayMs) + " ms: ";
        Program program;
        program.setEnvironment("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
        QVERIFY(program.start());
        QTest::qWait(delayMs);
        QVERIFY2(program.isRunning(), what + "it has ended by itself");
        QElapsedTimer timer;
        timer.start();
        program.sendSignal(number);
        QVERIFY2(program.waitForExit(), what + "it does not end");
        longestMs = qMax(longestMs, timer.elapsed());
        // Before the program has its own way to end, there is nothing to be put in order.
        const bool watches = program.position(Line::debug("UnixSignalWatcher::constructor")) >= 0;
        if (program.exitStatus() == -number && !watches)
            ++early;
        else
            QVERIFY2(program.exitStatus() == 0,
                what + "status " + QByteArray::number(program.exitStatus()));
        QVERIFY2(
            limitMs == 0 || longestMs <= limitMs, what + QByteArray::number(longestMs) + " ms");
    }
    std::printf("%d clean ends, %d of them before the program could catch signals; the longest "
                "took %lld ms\n",
        starts, early, longestMs);
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    qputenv("QTEST_FUNCTION_TIMEOUT", "14400000");
    QCommandLineParser parser;
    parser.addOptions({ { "starts", "How often to start the program.", "number", "20" },
        { "seed", "Chooses moments and signals.", "seed", "1" },
        { "limit", "The longest that an end may take; without it, any.", "ms", "0" } });
    parser.addHelpOption();
    parser.process(application);
    starts = parser.value("starts").toInt();
    seed = parser.value("seed").toUInt();
    limitMs = parser.value("limit").toInt();
    TestRestarts test;
    return QTest::qExec(&test, { QCoreApplication::arguments().first() });
}

#include "tst_restarts.moc"
