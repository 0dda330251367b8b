// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/display.h"
#include "testkit/machine/panel.h"
#include "testkit/machine/windows.h"
#include "testkit/process/filecontents.h"
#include "testkit/process/program.h"
#include "testkit/process/terminal.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>

namespace {

/** Processes by number, with their command lines; dead ones that nobody has buried are none. */
QMap<pid_t, QString> processes()
{
    QMap<pid_t, QString> found;
    const QStringList numbers = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &number : numbers) {
        const QString directory = QStringLiteral("/proc/") + number;
        const QByteArray command = fileContents(directory + QStringLiteral("/cmdline"));
        if (number.toInt() > 0 && !command.isEmpty())
            found.insert(number.toInt(), QString::fromLocal8Bit(command).replace(QChar(0), ' '));
    }
    return found;
}

/** The process of that program; 0 when there is none. */
pid_t processOf(const QString &program)
{
    const QMap<pid_t, QString> all = processes();
    for (auto it = all.constBegin(); it != all.constEnd(); ++it) {
        if (it.value().section(' ', 0, 0).endsWith(program))
            return it.key();
    }
    return 0;
}

/** All that a demo could leave behind, one line each: processes, files, mounts, ports, sockets. */
QStringList traces()
{
    QStringList found;
    const QMap<pid_t, QString> all = processes();
    for (auto it = all.constBegin(); it != all.constEnd(); ++it)
        found.append(QStringLiteral("process %1: %2").arg(it.key()).arg(it.value()));
    for (const char *const place :
        { "/tmp", "/tmp/.X11-unix", "/data", "/sys/class/backlight", "/dev/shm" }) {
        const QString directory = QString::fromLatin1(place);
        const QStringList names = QDir(directory).entryList(
            QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &name : names)
            found.append(directory + '/' + name);
    }
    const QRegularExpression listening(QStringLiteral("^ *\\d+: (\\S+) \\S+ 0A"));
    for (const char *const table : { "/proc/net/tcp", "/proc/net/tcp6" }) {
        const QList<QByteArray> lines = fileContents(table).split('\n');
        for (const QByteArray &line : lines) {
            const QRegularExpressionMatch match = listening.match(QString::fromLatin1(line));
            if (match.hasMatch())
                found.append(QStringLiteral("port ") + match.captured(1));
        }
    }
    const QList<QByteArray> mounts = fileContents("/proc/self/mountinfo").split('\n');
    for (const QByteArray &mount : mounts)
        found.append(QString::fromLocal8Bit(mount));
    return found;
}

/** Starts to print each message as "QOS RETAIN TOPIC", as soon as there is a broker. */
bool startReader(QProcess *reader)
{
    return waitUntil([reader] {
        if (reader->state() == QProcess::NotRunning)
            reader->start("mosquitto_sub",
                { "-V", "mqttv5", "--retain-as-published", "-q", "2", "-t", "Velunor/#", "-F",
                    "%q %r %t" });
        return reader->bytesAvailable() > 0;
    });
}

/** What docs/mqtt-api.yaml does not describe so, among messages printed like that. */
QStringList undocumented(const QByteArray &printed)
{
    QStringList found;
    for (const QByteArray &message : printed.split('\n')) {
        const QString topic = QString::fromUtf8(message.mid(4));
        const QString objection = topic.isEmpty()
            ? QString()
            : MqttReference::instance().objection(
                topic, message.left(1).toInt(), message.at(2) == '1');
        if (!objection.isEmpty())
            found.append(topic + ' ' + objection);
    }
    return found;
}

} // namespace

using End = std::function<void(Terminal &)>;
Q_DECLARE_METATYPE(End)

/** scripts/demo as a person starts it, in a terminal and beside an X server. */
class TestDemo : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void showsThePlayerAndTakesTouches();
    void leavesNothingBehind_data();
    void leavesNothingBehind();
    void isGoneEvenBeforeItIsUp();
    void keepsOutOfTheWayOfTakenPorts();
    void isShownOverVncWithoutADisplay();
    void isShownOverVncOnAWaylandDesk();
    void worksForRootWithoutUserNamespaces();
    void restartsItsBroker();
    void passesTypedLinesOn();
    void leavesTheMachinesPanelAsItWas();
    void playsAFileOfTheCallersDirectory();
    void endsWithItsStatus_data();
    void endsWithItsStatus();

private:
    bool start(Terminal &terminal, const QStringList &arguments = {});
    bool showsPlayPause();
    /** Touches the icon once it is on view. */
    bool touchPlayPause();
    /** What was not there before the first demo. */
    QString leftBehind() const;

    Display m_display;
    QTemporaryDir m_caches { TOUCHUI_BUILD "/demo-XXXXXX" };
    QProcessEnvironment m_environment;
    QString m_directory = QDir::rootPath();
    QStringList m_before;
};

void TestDemo::initTestCase()
{
    QVERIFY(m_display.start());
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert("DISPLAY", m_display.name());
    m_environment.insert("XDG_CACHE_HOME", m_caches.path());
    m_environment.remove("WAYLAND_DISPLAY");
    m_environment.remove("XAUTHORITY");
    m_environment.remove("QT_QPA_PLATFORM");
    Program::allowDriver(m_environment);
    m_before = traces();
}

/** However a test has ended its demo. */
void TestDemo::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(leftBehind(), QString(), PatienceMs);
}

bool TestDemo::start(Terminal &terminal, const QStringList &arguments)
{
    return terminal.run(
        QStringList { TOUCHUI_CHECKOUT "/scripts/demo", "--build", TOUCHUI_BUILD } + arguments,
        m_directory, m_environment);
}

/**
 * Whether the icon is on view: the page may still be under construction when its cover has come.
 */
bool TestDemo::showsPlayPause()
{
    QProcess grab;
    grab.start("import", { "-silent", "-window", "root", "-crop", "60x60+575+315", "png:-" });
    if (!grab.waitForFinished())
        return false;
    const QImage seen = QImage::fromData(grab.readAllStandardOutput());
    int bright = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x)
            bright += qGray(seen.pixel(x, y)) > 200 ? 1 : 0;
    }
    return bright > 100 && bright < 3000; // an icon, not a white page, which has 3600
}

bool TestDemo::touchPlayPause()
{
    return waitUntil([this] { return showsPlayPause(); })
        && QProcess::execute("xdotool", { "mousemove", "605", "345", "click", "1" }) == 0;
}

QString TestDemo::leftBehind() const
{
    QStringList left;
    for (const QString &trace : traces()) {
        if (!m_before.contains(trace))
            left.append(trace);
    }
    left += QDir(m_caches.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    return left.join('\n');
}

void TestDemo::showsThePlayerAndTakesTouches()
{
    qputenv("DISPLAY", m_display.name().toUtf8());
    Terminal terminal;
    QVERIFY(start(terminal));
    QProcess reader;
    QVERIFY(startReader(&reader));
    QVERIFY(terminal.waitFor("panel: brightness 150\n"));
    QVERIFY(terminal.waitFor("panel: lit\n"));
    QVERIFY(terminal.waitFor("playing: Hugo2X: Harbour Before Six /"));
    // The cover is the last thing to come on the player page.
    QVERIFY(terminal.waitFor("return fetched mage\n"));
    QVERIFY(touchPlayPause());
    QVERIFY(terminal.waitFor("command: play/pause in Hugo2X\n"));

    QByteArray published;
    QVERIFY(waitUntil([&] {
        published += reader.readAll();
        return published.contains("command\n");
    }));
    QVERIFY(published.contains("/Display/zone\n"));
    QCOMPARE(undocumented(published), QStringList());
    reader.kill();
    QVERIFY(reader.waitForFinished());
}

void TestDemo::leavesNothingBehind_data()
{
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("status");
    const auto killing = [](const char *program) -> End {
        return [program](Terminal &) { ::kill(processOf(program), SIGKILL); };
    };
    const auto sending = [](int number) -> End {
        return [number](Terminal &terminal) { ::kill(terminal.processId(), number); };
    };
    QTest::newRow("Ctrl-C") << End([](Terminal &terminal) { terminal.type("\x03"); }) << 130;
    QTest::newRow("terminal closed") << End([](Terminal &terminal) { terminal.close(); }) << 129;
    QTest::newRow("window closed")
        << End([this](Terminal &) { closeWindows(m_display.name()); }) << 0;
    QTest::newRow("SIGTERM") << sending(SIGTERM) << 143;
    QTest::newRow("SIGKILL") << sending(SIGKILL) << -SIGKILL;
    QTest::newRow("program crashes") << killing("velunor-touchui") << 128 + SIGKILL;
    QTest::newRow("broker dies") << killing("mosquitto") << 1;
    QTest::newRow("simulator dies") << killing("velunor-simulator") << 1;
    QTest::newRow("quit") << End([](Terminal &terminal) { terminal.type("quit\n"); }) << 1;
}

void TestDemo::leavesNothingBehind()
{
    QFETCH(End, end);
    QFETCH(int, status);
    Terminal terminal;
    QVERIFY(start(terminal));
    QVERIFY(terminal.waitFor("Entering main event loop..."));
    QVERIFY(!leftBehind().isEmpty());
    end(terminal);
    QVERIFY(terminal.waitForExit());
    QCOMPARE(terminal.exitStatus(), status);
}

void TestDemo::isGoneEvenBeforeItIsUp()
{
    for (int number : { SIGKILL, SIGTERM }) {
        for (const char *const latest : { "unshare", "mosquitto", "velunor-simulator" }) {
            Terminal terminal;
            QVERIFY(start(terminal));
            QTRY_VERIFY_WITH_TIMEOUT(processOf(latest) > 0, PatienceMs);
            ::kill(terminal.processId(), number);
            QVERIFY(terminal.waitForExit());
            QTRY_COMPARE_WITH_TIMEOUT(leftBehind(), QString(), PatienceMs);
        }
    }
}

void TestDemo::keepsOutOfTheWayOfTakenPorts()
{
    QTcpServer broker;
    QTcpServer webService;
    QVERIFY(broker.listen(QHostAddress::LocalHost, 1883));
    QVERIFY(webService.listen(QHostAddress::LocalHost, 8080));
    Terminal terminal;
    QVERIFY(start(terminal));
    const QByteArray me = " is taken (\"tst_demo\",pid=" + QByteArray::number(::getpid())
        + "): the demo gets a network of its own, where it is free\n";
    QVERIFY(terminal.waitFor("demo: port 1883" + me));
    QVERIFY(terminal.waitFor("demo: port 8080" + me));
    QVERIFY(terminal.waitFor("web: serving at 127.0.0.1:8080\n"));
    QVERIFY(terminal.waitFor("return fetched mage\n"));
    QVERIFY(!broker.hasPendingConnections());
    QVERIFY(!webService.hasPendingConnections());
}

void TestDemo::isShownOverVncWithoutADisplay()
{
    m_environment.remove("DISPLAY");
    Terminal terminal;
    QVERIFY(start(terminal, { "--size", "1280x800" }));
    m_environment.insert("DISPLAY", m_display.name());
    QVERIFY(terminal.waitFor("demo: no display here; look at vnc://localhost:59"));
    QVERIFY(terminal.waitFor("Entering main event loop..."));
    const QRegularExpression address("vnc://localhost:(\\d+)");
    QTcpSocket viewer;
    viewer.connectToHost(QHostAddress::LocalHost,
        address.match(QString::fromLatin1(terminal.printed())).captured(1).toUShort());
    QTRY_VERIFY_WITH_TIMEOUT(viewer.bytesAvailable() >= 12, PatienceMs);
    QVERIFY(viewer.readAll().startsWith("RFB 003."));
    viewer.abort();
    // The address is soon out of sight.
    terminal.type("\n");
    QTRY_COMPARE_WITH_TIMEOUT(
        terminal.printed().count("demo: no display here; look at vnc://"), 2, PatienceMs);
    terminal.type("\x03");
    QVERIFY(terminal.waitForExit());
}

void TestDemo::isShownOverVncOnAWaylandDesk()
{
    m_environment.remove("DISPLAY");
    m_environment.insert("WAYLAND_DISPLAY", "wayland-0");
    // The address is still told when it has gone through the door to another network.
    QTcpServer webService;
    QVERIFY(webService.listen(QHostAddress::LocalHost, 8080));
    Terminal terminal;
    QVERIFY(start(terminal));
    m_environment.insert("DISPLAY", m_display.name());
    m_environment.remove("WAYLAND_DISPLAY");
    QVERIFY(terminal.waitFor("demo: no display here; look at vnc://localhost:59"));
    QVERIFY(terminal.waitFor("return fetched mage\n"));
}

void TestDemo::worksForRootWithoutUserNamespaces()
{
    // Each user namespace, such as the one that this test runs in, has a limit of its own.
    QFile limit(QStringLiteral("/proc/sys/user/max_user_namespaces"));
    QVERIFY(limit.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    const QByteArray before = limit.readAll();
    limit.seek(0);
    QCOMPARE(limit.write("0\n"), 2);
    Terminal terminal;
    const bool shown = start(terminal) && terminal.waitFor("Entering main event loop...");
    limit.seek(0);
    QCOMPARE(limit.write(before), before.size());
    QVERIFY(shown);
}

void TestDemo::restartsItsBroker()
{
    Terminal terminal;
    QVERIFY(start(terminal));
    QVERIFY(terminal.waitFor("Mqtt::connectedToBroker()"));
    const pid_t first = processOf("mosquitto");
    terminal.type("broker\n");
    QVERIFY(terminal.waitFor("broker: connection lost, waiting for it to come back\n"));
    QVERIFY(terminal.waitFor("demo: the broker is back;"));
    QVERIFY(processOf("mosquitto") != first);
    QTRY_COMPARE_WITH_TIMEOUT(terminal.printed().count("broker: connected\n"), 2, PatienceMs);
}

void TestDemo::passesTypedLinesOn()
{
    Terminal terminal;
    QVERIFY(start(terminal, { "--scenario", "grouped" }));
    QVERIFY(terminal.waitFor("Mqtt::connectedToBroker()"));
    terminal.type("rename zone=\"Living Room\" name=Salon\n");
    QVERIFY(terminal.waitFor("action: rename"));
    QVERIFY(terminal.waitFor("demo: a line typed here goes to the simulated appliance"));
}

void TestDemo::leavesTheMachinesPanelAsItWas()
{
    const Panel panel(QStringLiteral("own"));
    const QString directory = QStringLiteral("/sys/class/backlight/own/");
    const QMap<QString, QByteArray> before { { "brightness", "77\n" }, { "bl_power", "4\n" } };
    for (auto it = before.constBegin(); it != before.constEnd(); ++it) {
        QFile attribute(directory + it.key());
        QVERIFY(attribute.open(QIODevice::WriteOnly));
        attribute.write(it.value());
    }
    for (int number : { SIGKILL, SIGINT }) {
        Terminal terminal;
        QVERIFY(start(terminal));
        QTRY_COMPARE_WITH_TIMEOUT(panel.brightness(), QByteArray("150"), PatienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(panel.power(), QByteArray("0"), PatienceMs);
        ::kill(terminal.processId(), number);
        QVERIFY(terminal.waitForExit());
        QTRY_COMPARE_WITH_TIMEOUT(
            fileContents(directory + "brightness"), before["brightness"], PatienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(
            fileContents(directory + "bl_power"), before["bl_power"], PatienceMs);
    }
}

void TestDemo::playsAFileOfTheCallersDirectory()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath("mine.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"([ { "after_ms": 0, "action": "play", "album": "Velvet Elevator" } ])");
    file.close();
    m_directory = directory.path();
    Terminal terminal;
    const bool started = start(terminal, { "--scenario", "mine.json" });
    m_directory = QDir::rootPath();
    QVERIFY(started);
    QVERIFY(terminal.waitFor("playing: Hugo2X: Going Up? /"));
}

void TestDemo::endsWithItsStatus_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("text");
    const auto row
        = [](const char *name, const QStringList &arguments, int status, const char *text) {
              QTest::newRow(name) << arguments << status << QByteArray(text);
          };
    row("help", { "--help" }, 0, "Usage: scripts/demo");
    row("list", { "--list" }, 0, "paused-to-clock ");
    row("unknown option", { "--bogus" }, 2, "demo: there is no option --bogus\n");
    row("value missing", { "--scenario" }, 2, "demo: --scenario needs a value\n");
    row("value empty", { "--scenario", "" }, 2, "demo: --scenario needs a value\n");
    row("unknown size", { "--size", "640x480" }, 2, "demo: there is no panel of 640x480\n");
    row("wrong build", { "--build", "/nowhere" }, 2, "demo: the programs are not in /nowhere\n");
    row("unknown scenario", { "--scenario", "nonsense" }, 2, "expected a file or one of");
}

void TestDemo::endsWithItsStatus()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, text);
    Terminal terminal;
    QVERIFY(start(terminal, arguments));
    QVERIFY(terminal.waitForExit());
    QCOMPARE(terminal.exitStatus(), status);
    QVERIFY2(terminal.printed().contains(text), terminal.printed().constData());
}

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
