// SPDX-License-Identifier: GPL-3.0-or-later
#include "systemdwatchdog.h"

#include "logcapture.h"
#include "messagehandler.h"
#include "metatable.h"
#include "testkit/services/notifysocket.h"

#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <atomic>
#include <fcntl.h>
#include <memory>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace {

const QByteArray Ready = QByteArrayLiteral("READY=1");
const QByteArray Alive = QByteArrayLiteral("WATCHDOG=1");

/** The names of this process's threads. */
QStringList threadNames()
{
    QStringList names;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + QStringLiteral("/comm")));
        if (file.open(QIODevice::ReadOnly))
            names.append(QString::fromLocal8Bit(file.readAll().trimmed()));
    }
    return names;
}

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

} // namespace

class TestSystemdWatchdog : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metaObjectIsTheInterface();
    void constructorStartsNothing();
    void readyComesFirstThenTheKeepAlive();
    void keepsAliveEvery2800Milliseconds();
    void keepsAliveWhileTheMainThreadIsBusy();
    void worksWithoutServiceManager();
    void notifySendsLatin1AndLeavesTheEnvironment();
    void stopSendsNothing();
    void stopsBeforeTheStart();
    void stopsAtAnyMoment();
    void stopsWhileEveryoneLogs();
    void loggingCannotBeTerminated();
    void sendingCanBeTerminated();

private:
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<NotifySocket> m_socket;
};

void TestSystemdWatchdog::init()
{
    m_log.reset(new LogCapture);
    m_socket.reset(new NotifySocket);
    qputenv("NOTIFY_SOCKET", QFile::encodeName(m_socket->path()));
}

void TestSystemdWatchdog::cleanup()
{
    qunsetenv("NOTIFY_SOCKET");
    m_socket.reset();
    m_log.reset();
}

void TestSystemdWatchdog::metaObjectIsTheInterface()
{
    const QMetaObject &meta = SystemdWatchdog::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta), QStringList());
    QCOMPARE(methodTable(meta), QStringList({ "public slot notifyReady()" }));
    QCOMPARE(&SystemdWatchdog::WorkerThread::staticMetaObject, &QThread::staticMetaObject);
}

void TestSystemdWatchdog::constructorStartsNothing()
{
    {
        const SystemdWatchdog watchdog;
        QVERIFY(!watchdog.parent());
        QCOMPARE(
            m_log->take(), QStringList({ constructorLine(QStringLiteral("SystemdWatchdog")) }));
        QTRY_VERIFY(!threadNames().contains(QStringLiteral("watchdog")));
    }
    QCOMPARE(m_log->take(), QStringList({ "debug: SystemdWatchdog::destructor" }));
    SystemdWatchdog::notify(QStringLiteral("end")); // whatever came before lies in front of it
    QTRY_COMPARE(m_socket->count("end"), 1);
    QCOMPARE(m_socket->messages().size(), 1);
}

void TestSystemdWatchdog::readyComesFirstThenTheKeepAlive()
{
    {
        SystemdWatchdog watchdog;
        m_log->clear();
        QVERIFY(QMetaObject::invokeMethod(&watchdog, "notifyReady", Qt::DirectConnection));
        QTRY_COMPARE(m_socket->messages().size(), 2);
        QCOMPARE(m_socket->messages().at(0).text, Ready);
        QCOMPARE(m_socket->messages().at(1).text, Alive);
        QVERIFY(threadNames().contains(QStringLiteral("watchdog")));
        QCOMPARE(m_log->take(),
            QStringList({ "debug: SystemdWatchdog::notifyReady()",
                "debug: SystemdWatchdog::WorkerThread::run()",
                "debug: SystemdWatchdog::WorkerThread::PING" }));
    }
    QCOMPARE(m_log->take(), QStringList({ "debug: SystemdWatchdog::destructor" }));
    QTRY_VERIFY(!threadNames().contains(QStringLiteral("watchdog")));
}

void TestSystemdWatchdog::keepsAliveEvery2800Milliseconds()
{
    // Only the lower bound: it holds however slow the machine is.
    QElapsedTimer time;
    time.start();
    SystemdWatchdog watchdog;
    watchdog.notifyReady();
    QTRY_COMPARE_WITH_TIMEOUT(m_socket->count(Alive), 2, 20000);
    QVERIFY(time.elapsed() >= 2800);
    QTRY_COMPARE_WITH_TIMEOUT(m_socket->count(Alive), 3, 20000);
    QVERIFY(time.elapsed() >= 2 * 2800);
    QCOMPARE(m_socket->count(Ready), 1);
    QCOMPARE(m_log->count(QStringLiteral("debug: SystemdWatchdog::WorkerThread::PING")), 3);
    QCOMPARE(m_log->count(QStringLiteral("debug: SystemdWatchdog::WorkerThread::run()")), 1);
}

void TestSystemdWatchdog::keepsAliveWhileTheMainThreadIsBusy()
{
    SystemdWatchdog watchdog;
    watchdog.notifyReady();
    // No event loop here.
    while (m_log->count(QStringLiteral("debug: SystemdWatchdog::WorkerThread::PING")) < 2)
        std::this_thread::yield();
    QTRY_COMPARE(m_socket->count(Alive), 2);
}

void TestSystemdWatchdog::worksWithoutServiceManager()
{
    qunsetenv("NOTIFY_SOCKET");
    {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        QTRY_VERIFY(m_log->contains(QStringLiteral("debug: SystemdWatchdog::WorkerThread::PING")));
    }
    qputenv("NOTIFY_SOCKET", QByteArrayLiteral("/nowhere/at/all"));
    SystemdWatchdog watchdog;
    m_log->clear();
    watchdog.notifyReady();
    QTRY_VERIFY(m_log->contains(QStringLiteral("debug: SystemdWatchdog::WorkerThread::PING")));
    QCOMPARE(m_socket->messages().size(), 0);
}

void TestSystemdWatchdog::notifySendsLatin1AndLeavesTheEnvironment()
{
    SystemdWatchdog::notify(QStringLiteral("STATUS=Küche €"));
    SystemdWatchdog::notify(QStringLiteral("STATUS=second"));
    QTRY_COMPARE(m_socket->messages().size(), 2);
    QCOMPARE(m_socket->messages().at(0).text,
        QByteArray("STATUS=K\xfc"
                   "che ?"));
    QCOMPARE(qgetenv("NOTIFY_SOCKET"), QFile::encodeName(m_socket->path()));
}

void TestSystemdWatchdog::stopSendsNothing()
{
    {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        QTRY_COMPARE(m_socket->count(Alive), 1);
    }
    SystemdWatchdog::notify(QStringLiteral("end"));
    QTRY_COMPARE(m_socket->count("end"), 1);
    QCOMPARE(m_socket->messages().size(), 3);
}

void TestSystemdWatchdog::stopsBeforeTheStart()
{
    for (int i = 0; i < 100; ++i)
        delete new SystemdWatchdog;
    QCOMPARE(m_log->count(QStringLiteral("debug: SystemdWatchdog::destructor")), 100);
}

void TestSystemdWatchdog::stopsAtAnyMoment()
{
    const int before = openDescriptors();
    for (int i = 0; i < 1000; ++i) {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        ::usleep(static_cast<useconds_t>(i % 50) * 10); // somewhere in the thread's first steps
        QCoreApplication::processEvents();              // the socket must not run full
    }
    QTRY_VERIFY(!threadNames().contains(QStringLiteral("watchdog")));
    // One that is cut short while it sends leaves its socket to the end of the process, which is
    // near. Few are.
    QVERIFY2(openDescriptors() - before < 100, QByteArray::number(openDescriptors() - before));
    QCOMPARE(m_log->count(QStringLiteral("debug: SystemdWatchdog::destructor")), 1000);
}

void TestSystemdWatchdog::stopsWhileEveryoneLogs()
{
    // The program's own handler, which has a lock: a thread that dies with it would stop everyone.
    const int silent = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    const int saved = ::dup(STDERR_FILENO);
    QVERIFY(::dup2(silent, STDERR_FILENO) >= 0);
    setDebugLogging(true);
    const QtMessageHandler former = qInstallMessageHandler(messageHandler);

    std::atomic<bool> stop { false };
    std::thread noise([&] {
        for (int i = 0; !stop; ++i)
            qDebug() << "noise" << i;
    });
    for (int i = 0; i < 500; ++i) {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        ::usleep(static_cast<useconds_t>(i % 50) * 10);
        QCoreApplication::processEvents();
    }
    stop = true;
    noise.join();

    qInstallMessageHandler(former);
    setDebugLogging(false);
    ::dup2(saved, STDERR_FILENO);
    ::close(saved);
    ::close(silent);
    QTRY_VERIFY(!threadNames().contains(QStringLiteral("watchdog")));
}

void TestSystemdWatchdog::loggingCannotBeTerminated()
{
    // Asked where it would hurt: inside the log handler, which the thread enters with its own lines
    // only.  The second ping comes after a sleep, in which termination was allowed.
    static std::atomic<int> pings { 0 };
    static std::atomic<int> exposed { 0 };
    pings = exposed = 0;
    const QtMessageHandler former
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
              if (!text.startsWith(QStringLiteral("SystemdWatchdog::WorkerThread::")))
                  return;
              int state = PTHREAD_CANCEL_ENABLE;
              ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
              ::pthread_setcancelstate(state, nullptr);
              if (state != PTHREAD_CANCEL_DISABLE)
                  ++exposed;
              if (text.endsWith(QStringLiteral("PING")))
                  ++pings;
          });
    {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        QTRY_VERIFY_WITH_TIMEOUT(pings >= 2, 20000);
    }
    qInstallMessageHandler(former);
    QCOMPARE(exposed.load(), 0);
}

/** Otherwise the end would wait for a service manager that has stopped reading. */
void TestSystemdWatchdog::sendingCanBeTerminated()
{
    QElapsedTimer time;
    {
        SystemdWatchdog watchdog;
        watchdog.notifyReady();
        QTRY_COMPARE(m_socket->count(Alive), 1);
        m_socket->fill();
        // The second one waits for a place.
        QTRY_COMPARE_WITH_TIMEOUT(
            m_log->count(QStringLiteral("debug: SystemdWatchdog::WorkerThread::PING")), 2, 20000);
        time.start();
    }
    QVERIFY2(time.elapsed() < 2000, QByteArray::number(time.elapsed()));
    QTRY_VERIFY(!threadNames().contains(QStringLiteral("watchdog")));
}

QTEST_GUILESS_MAIN(TestSystemdWatchdog)
#include "tst_systemdwatchdog.moc"
