// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/panel.h"
#include "testkit/process/program.h"
#include "testkit/services/broker.h"
#include "testkit/services/notifysocket.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace {

const LogPattern Ping = Line::debug(QStringLiteral("SystemdWatchdog::WorkerThread::PING"));
const LogPattern PingThread
    = Line::debug(QStringLiteral("SystemdWatchdog::WorkerThread::")).andMore();
const LogPattern LoopEntered = Line::info(QStringLiteral("Entering main event loop..."));

/** What an appliance with a panel of the usual kind logs until its scene is there. */
const QStringList UntilTheScene {
    QStringLiteral("INFO  Enabling DEBUG..."),
    QStringLiteral("INFO  Starting up revision: REVISION, with Qt version: 5.15.19"),
    QStringLiteral("DEBUG SystemdWatchdog::constructor in thread THREAD"),
    QStringLiteral("DEBUG Mqtt::constructor in thread THREAD"),
    QStringLiteral("DEBUG Mqtt::constructor: connecting..."),
    QStringLiteral("DEBUG UnixSignalWatcher::constructor in thread THREAD"),
    QStringLiteral("DEBUG Settings::constructor in thread THREAD"),
    QStringLiteral("DEBUG Settings: reading from: /data/velunor-touch.ini"),
    QStringLiteral("DEBUG VelunorState::constructor in thread THREAD"),
    QStringLiteral("DEBUG Player::constructor in thread THREAD"),
    QStringLiteral("INFO  Player::Player() setting wanted zone to Hugo2X"),
    QStringLiteral("DEBUG Roon::constructor in thread THREAD"),
    QStringLiteral("DEBUG SysFile::constructor in thread THREAD"),
    QStringLiteral("DEBUG SysFile::constructor in thread THREAD"),
    QStringLiteral("DEBUG ScreenController::constructor in thread THREAD"),
    QStringLiteral("INFO  ScreenController::constructor() found sys dir panel0"),
    QStringLiteral("INFO  ScreenController::ScreenController() screenType: UNKNOWN"),
    QStringLiteral("INFO  ScreenController::ScreenController() swapped: false"),
    QStringLiteral("INFO  ScreenController::ScreenController() rotated: false"),
    QStringLiteral("INFO  ScreenController::ScreenController() rotation: 0"),
    QStringLiteral("INFO  ScreenController::ScreenController() width: 800"),
    QStringLiteral("INFO  ScreenController::ScreenController() height: 480"),
    QStringLiteral("INFO  ScreenController::exec_brightness() 150"),
    QStringLiteral("INFO  ScreenController::exec_backlight_on()"),
    QStringLiteral("DEBUG NavigationController::constructor in thread THREAD"),
    QStringLiteral("DEBUG NavigationController::busy() true"),
    QStringLiteral("INFO  screen name       : "),
    QStringLiteral("INFO  screen size       : QSize(800, 600)"),
    QStringLiteral("INFO  screen orientation: LandscapeOrientation"),
    QStringLiteral("DEBUG ImageProvider::constructor in thread THREAD"),
    QStringLiteral("DEBUG ImageProvider::constructor logoImage.isNull(): false"),
    QStringLiteral("INFO  get_player_window() RoonPlayerWindow2"),
};

/** The lines up to the entry of the event loop, without places, thread numbers and the revision. */
QStringList startOf(const Program &program)
{
    static const QRegularExpression thread(QStringLiteral("0x[0-9a-f]+$"));
    static const QRegularExpression revision(QStringLiteral("revision: [0-9a-f]{40},"));
    QStringList lines;
    for (const LogLine &line : program.log()) {
        lines.append(line.withoutPlace()
                         .replace(thread, QStringLiteral("THREAD"))
                         .replace(revision, QStringLiteral("revision: REVISION,")));
        if (LoopEntered.matches(line))
            break;
    }
    return lines;
}

} // namespace

/** From the start of the process to the event loop, and out of it again. */
class TestStartup : public QObject {
    Q_OBJECT

private slots:
    void logsEveryStepInOrder();
    void namesTheCommitItWasBuiltFrom();
    void hidesDebugLinesByDefault();
    void onlyTheWordInSmallLettersEnablesDebug_data();
    void onlyTheWordInSmallLettersEnablesDebug();
    void switchesTheQmlDiskCacheOff();
    void showsNoPointer();
    void reportsReadyAndThenPings();
    void runsWithoutServiceManager();
    void aSignalEndsItCleanly_data();
    void aSignalEndsItCleanly();
    void aSignalBeforeTheEventLoopIsNotLost();
    void severalSignalsEndItOnce();
    void aSceneThatDoesNotLoadEndsIt();
    void anUnknownWidthIsLoggedAndNothingMore();
    void answersAtOnceAndEnds_data();
    void answersAtOnceAndEnds();
    void anAnswerThatCannotBeWrittenIsAFailure();
    void leavesEveryOtherArgumentToQt();
};

void TestStartup::logsEveryStepInOrder()
{
    const Panel panel;
    Program program;
    QVERIFY(program.startAndWait());
    const QStringList lines = startOf(program);
    QCOMPARE(lines.mid(0, UntilTheScene.size()), UntilTheScene);

    // What the ping thread says first may come before or after the last line.
    QStringList afterTheScene = lines.mid(lines.lastIndexOf(
        QRegularExpression(QStringLiteral("^DEBUG SystemdWatchdog::notifyReady\\(\\)$"))));
    afterTheScene.removeAll(QStringLiteral("DEBUG SystemdWatchdog::WorkerThread::run()"));
    afterTheScene.removeAll(QStringLiteral("DEBUG SystemdWatchdog::WorkerThread::PING"));
    QCOMPARE(afterTheScene,
        QStringList({ QStringLiteral("DEBUG SystemdWatchdog::notifyReady()"),
            QStringLiteral("INFO  Entering main event loop...") }));
}

void TestStartup::namesTheCommitItWasBuiltFrom()
{
    const QString checkout = QStringLiteral(TOUCHUI_CHECKOUT);
    QProcess git;
    git.start(QStringLiteral("git"),
        { QStringLiteral("-c"), QStringLiteral("safe.directory=*"), QStringLiteral("-C"), checkout,
            QStringLiteral("rev-parse"), QStringLiteral("HEAD") });
    QVERIFY2(git.waitForFinished(), "git is missing");
    // In an unpacked archive any commit will do; tst_revision tells which.
    QString expected = QStringLiteral("[0-9a-f]{40}");
    if (QFileInfo::exists(checkout + QStringLiteral("/.git")))
        expected = QString::fromLatin1(git.readAllStandardOutput()).trimmed();
    QVERIFY2(!expected.isEmpty(), git.readAllStandardError().constData());

    Program program;
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    QVERIFY(program.startAndWait());
    const QString line = program.log().first().text;
    const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral("Starting up revision: %1, with Qt version: 5\\.15\\.19").arg(expected)));
    QVERIFY2(form.match(line).hasMatch(),
        qPrintable(line + QStringLiteral("\nand the checkout is at ") + expected
            + QStringLiteral(".  Was it built since?")));
}

void TestStartup::hidesDebugLinesByDefault()
{
    const Panel panel;
    Program program;
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    QVERIFY(program.startAndWait());
    QStringList expected = UntilTheScene.filter(QRegularExpression(QStringLiteral("^INFO ")));
    expected.removeOne(QStringLiteral("INFO  Enabling DEBUG..."));
    expected.append(QStringLiteral("INFO  Entering main event loop..."));
    QCOMPARE(startOf(program), expected);
}

void TestStartup::onlyTheWordInSmallLettersEnablesDebug_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("small letters") << QStringLiteral("debug") << true;
    QTest::newRow("capital first letter") << QStringLiteral("Debug") << false;
    QTest::newRow("capitals") << QStringLiteral("DEBUG") << false;
    QTest::newRow("trailing blank") << QStringLiteral("debug ") << false;
    QTest::newRow("number") << QStringLiteral("1") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestStartup::onlyTheWordInSmallLettersEnablesDebug()
{
    QFETCH(QString, value);
    QFETCH(bool, enabled);
    Program program;
    program.setEnvironment(QStringLiteral("TOUCHUI_DEBUG"), value);
    QVERIFY(program.startAndWait());
    const LogLine first = program.log().first();
    QCOMPARE(Line::info(QStringLiteral("Enabling DEBUG...")).matches(first), enabled);
    QCOMPARE(
        Line::info(QStringLiteral("Starting up revision: ")).andMore().matches(first), !enabled);
    QCOMPARE(program.count(LogPattern(QStringLiteral("DEBUG"), QString()).andMore()) > 0, enabled);
}

void TestStartup::switchesTheQmlDiskCacheOff()
{
    Program program;
    program.setEnvironment(QStringLiteral("QML_DISABLE_DISK_CACHE"), QStringLiteral("false"));
    QVERIFY(program.start());
    QCOMPARE(program.probe().environment(QStringLiteral("QML_DISABLE_DISK_CACHE")),
        QJsonValue(QStringLiteral("true")));
}

void TestStartup::showsNoPointer()
{
    Program program;
    QVERIFY(program.start());
    const QJsonObject cursor
        = program.probe().request({ { QStringLiteral("op"), QStringLiteral("cursor") } });
    QCOMPARE(cursor.value(QLatin1String("shape")), QJsonValue(Qt::BlankCursor));
}

void TestStartup::reportsReadyAndThenPings()
{
    NotifySocket serviceManager;
    Program program;
    program.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    QVERIFY(program.startAndWait());
    QTRY_VERIFY_WITH_TIMEOUT(serviceManager.count("WATCHDOG=1") >= 2, PatienceMs);
    QCOMPARE(serviceManager.messages().first().text, QByteArray("READY=1"));
    QCOMPARE(serviceManager.count("READY=1"), 1);
    QCOMPARE(serviceManager.messages().size(), serviceManager.count("WATCHDOG=1") + 1);

    QVERIFY(program.stop());
    const int pings = serviceManager.count("WATCHDOG=1");
    QCOMPARE(serviceManager.messages().size(), pings + 1); // it does not say that it stops
}

void TestStartup::runsWithoutServiceManager()
{
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Ping, program.logSize()));
    QVERIFY(program.stop());
}

void TestStartup::aSignalEndsItCleanly_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    QTest::newRow("SIGINT") << SIGINT << QStringLiteral("Interrupt");
    QTest::newRow("SIGTERM") << SIGTERM << QStringLiteral("Terminated");
}

void TestStartup::aSignalEndsItCleanly()
{
    QFETCH(int, number);
    QFETCH(QString, name);
    Broker broker;
    QVERIFY(broker.start());
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Line::info(QStringLiteral("Player::mqttConnected()"))));

    program.sendSignal(number);
    QVERIFY(program.waitForExit());
    QCOMPARE(program.exitStatus(), 0);
    const int caught = program.position(Line::debug(QStringLiteral("Caught signal: ") + name));
    QVERIFY(caught >= 0);
    QStringList ending;
    for (const LogLine &line : program.log().mid(caught + 1)) {
        if (!PingThread.matches(line)) // which has its own rhythm
            ending.append(line.withoutPlace());
    }
    QCOMPARE(ending,
        QStringList({ QStringLiteral("DEBUG Mqtt::destructor"),
            QStringLiteral("WARN  Mqtt::brokerDisconnected()"),
            QStringLiteral("DEBUG SystemdWatchdog::destructor"),
            QStringLiteral("INFO  Left main event loop with exit code 0") }));
    QVERIFY(broker.waitForLine(QRegularExpression(QStringLiteral("^Received DISCONNECT from "))));
}

void TestStartup::aSignalBeforeTheEventLoopIsNotLost()
{
    Program program;
    QVERIFY(program.start());
    // By the time this line is written the signals are watched, and the event loop is still far.
    QVERIFY(program.waitForLine(Line::debug(QStringLiteral("Settings: reading from: ")).andMore()));
    QVERIFY(program.stop());
    QCOMPARE(program.count(Line::info(QStringLiteral("Left main event loop with exit code 0"))), 1);
}

void TestStartup::severalSignalsEndItOnce()
{
    Program program;
    QVERIFY(program.startAndWait());
    for (int i = 0; i < 5; ++i) {
        program.sendSignal(SIGTERM);
        program.sendSignal(SIGINT);
    }
    QVERIFY(program.waitForExit());
    QCOMPARE(program.exitStatus(), 0);
    QCOMPARE(program.count(Line::info(QStringLiteral("Left main event loop with exit code 0"))), 1);
}

void TestStartup::aSceneThatDoesNotLoadEndsIt()
{
    // A module found before the real one, and unusable, is what a damaged installation looks like.
    const QTemporaryDir imports;
    QVERIFY(QDir(imports.path()).mkpath(QStringLiteral("QtQuick.2")));
    QFile qmldir(imports.filePath(QStringLiteral("QtQuick.2/qmldir")));
    QVERIFY(qmldir.open(QIODevice::WriteOnly));
    qmldir.write("module QtQuick\nplugin damaged\n");
    qmldir.close();

    NotifySocket serviceManager;
    Program program;
    program.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    program.setEnvironment(QStringLiteral("QML2_IMPORT_PATH"), imports.path());
    QVERIFY(program.start());
    QVERIFY(program.waitForExit());
    QCOMPARE(program.exitStatus(), 255); // -1, of which the system keeps the lowest byte
    QVERIFY(serviceManager.messages().isEmpty());
    const int scene = program.position(
        Line::debug(QStringLiteral("ImageProvider::constructor logoImage")).andMore());
    QVERIFY(scene >= 0);
    // From here on only the engine speaks, and it warns.
    QVERIFY(program.logSize() > scene + 1);
    QCOMPARE(program.count(LogPattern(QStringLiteral("WARN"), QString()).andMore(), scene + 1),
        program.logSize() - scene - 1);
}

void TestStartup::anUnknownWidthIsLoggedAndNothingMore()
{
    Program program;
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_WIDTH"), QStringLiteral("1024"));
    QVERIFY(program.startAndWait());
    QCOMPARE(program.count(Line::critical(QStringLiteral("unknown screen dimensions!"))), 1);
    QVERIFY(program.waitForLine(Ping, program.logSize()));
    QVERIFY(program.stop());
}

void TestStartup::answersAtOnceAndEnds_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("answer"); // its beginning

    const QString version = QStringLiteral("velunor-touchui 0.");
    const QString usage = QStringLiteral("Usage: velunor-touchui ");
    QTest::newRow("version") << QStringList { QStringLiteral("--version") } << version;
    QTest::newRow("help") << QStringList { QStringLiteral("--help") } << usage;
    QTest::newRow("after an argument of Qt's") << QStringList { QStringLiteral("-platform"),
        QStringLiteral("nonsense"), QStringLiteral("--version") }
                                               << version;
    QTest::newRow("the first one counts")
        << QStringList { QStringLiteral("--help"), QStringLiteral("--version") } << usage;
}

void TestStartup::answersAtOnceAndEnds()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, answer);

    // Nothing that a display needs; whatever is constructed would crash, or say so in the log.
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nonsense"));
    environment.insert(QStringLiteral("TOUCHUI_DEBUG"), QStringLiteral("debug"));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(TOUCHUI_PROGRAM), arguments);
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(QString::fromLocal8Bit(program.readAllStandardError()), QString());
    const QString said = QString::fromLocal8Bit(program.readAllStandardOutput());
    QVERIFY2(said.startsWith(answer) && said.endsWith(QLatin1Char('\n')), qPrintable(said));
}

void TestStartup::anAnswerThatCannotBeWrittenIsAFailure()
{
    QProcess program;
    program.setStandardOutputFile(QStringLiteral("/dev/full"));
    program.start(QStringLiteral(TOUCHUI_PROGRAM), { QStringLiteral("--version") });
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 1);
}

void TestStartup::leavesEveryOtherArgumentToQt()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    // "-version" and "help" are no answers; the platform that Qt is told does not exist.
    program.start(QStringLiteral(TOUCHUI_PROGRAM),
        { QStringLiteral("-version"), QStringLiteral("help"), QStringLiteral("-platform"),
            QStringLiteral("nonsense") });
    QVERIFY(program.waitForFinished());
    const QString said = QString::fromLocal8Bit(program.readAll());
    QVERIFY2(said.contains(QLatin1String("Could not find the Qt platform plugin \"nonsense\"")),
        qPrintable(said));
}

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
