// SPDX-License-Identifier: GPL-3.0-or-later
#include "sigwatch.h"
#include "logcapture.h"
#include "metatable.h"
#include "sigwatch_p.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

/** One line of /proc about a thread of this process: the value behind @p key in its "status". */
QByteArray threadStatus(pid_t thread, const QByteArray &key)
{
    QFile file(QStringLiteral("/proc/self/task/%1/status").arg(thread));
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).trimmed();
    }
    return QByteArray();
}

bool isAsleep(pid_t thread)
{
    return threadStatus(thread, "State").startsWith('S');
}

bool hasPendingSignal(pid_t thread)
{
    return threadStatus(thread, "SigPnd").toULongLong(nullptr, 16) != 0;
}

} // namespace

class TestSigwatch : public QObject {
    Q_OBJECT

private slots:
    void withoutSocketsSignalsKeepTheirDefaultEffect();
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void metaObjectIsTheInterface();
    void constructorLogsItsLine();
    void reportsASignal_data();
    void reportsASignal();
    void askingTwiceInstallsNothing();
    void signalThatCannotBeCaughtIsNotAdded();
    void handlerRestartsAndBlocksNothing();
    void twoInARowAreTwo();
    void orderIsKept();
    void unwatchedSignalIsNotReported();
    void anotherThreadsSignalIsReportedHere();
    void blockedSystemCallGoesOn();
    void interruptedCodeKeepsItsErrno();
    void twoWatchersShareTheSignals();
    void aFloodNeverBlocksTheHandler();
    void destroyedWatcherLeavesTheHandler();

private:
    std::unique_ptr<LogCapture> m_log;
};

// Runs first: the socket pair is made once for the process.
void TestSigwatch::withoutSocketsSignalsKeepTheirDefaultEffect()
{
    rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    rlimit none = limit;
    none.rlim_cur = 0;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
    UnixSignalWatcher watcher;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    QCOMPARE(m_log->take(),
        QStringList({ "debug: UnixSignalWatcher: socketpair: Too many open files",
            constructorLine(QStringLiteral("UnixSignalWatcher")) }));

    watcher.watchForSignal(SIGUSR1);
    QCOMPARE(m_log->take(), QStringList());
    const pid_t child = ::fork();
    if (child == 0) {
        ::raise(SIGUSR1);
        ::_exit(0);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGUSR1);

    // The next watcher makes the pair; the first one goes on without.
    UnixSignalWatcher next;
    QSignalSpy caught(&next, &UnixSignalWatcher::unixSignal);
    next.watchForSignal(SIGUSR1);
    QCOMPARE(::raise(SIGUSR1), 0);
    QTRY_COMPARE(caught.count(), 1);
    m_log->clear();
}

void TestSigwatch::metaObjectIsTheInterface()
{
    const QMetaObject &meta = UnixSignalWatcher::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta), QStringList());
    QCOMPARE(methodTable(meta),
        QStringList({ "public signal unixSignal(int)", "private slot _q_onNotify(int)" }));
    QCOMPARE(UnixSignalWatcherPrivate::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(methodTable(UnixSignalWatcherPrivate::staticMetaObject), QStringList());
}

void TestSigwatch::constructorLogsItsLine()
{
    const UnixSignalWatcher watcher;
    QVERIFY(!watcher.parent());
    QCOMPARE(m_log->take(), QStringList({ constructorLine(QStringLiteral("UnixSignalWatcher")) }));
}

void TestSigwatch::reportsASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("description");
    QTest::newRow("SIGINT") << SIGINT << "Interrupt";
    QTest::newRow("SIGTERM") << SIGTERM << "Terminated";
    QTest::newRow("SIGHUP") << SIGHUP << "Hangup";
}

void TestSigwatch::reportsASignal()
{
    QFETCH(int, number);
    QFETCH(QString, description);
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(number);
    m_log->clear();
    QCOMPARE(::raise(number), 0);
    QCOMPARE(caught.count(), 0); // not before the event loop runs
    QCOMPARE(m_log->take(), QStringList());
    QTRY_COMPARE(caught.count(), 1);
    QCOMPARE(caught.first(), QVariantList({ number }));
    QCOMPARE(m_log->take(), QStringList({ "debug: Caught signal: " + description }));
}

void TestSigwatch::askingTwiceInstallsNothing()
{
    UnixSignalWatcher watcher;
    watcher.watchForSignal(SIGINT);
    m_log->clear();
    struct sigaction former = {};
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    QCOMPARE(::sigaction(SIGINT, &ignore, &former), 0);
    watcher.watchForSignal(SIGINT);
    QCOMPARE(m_log->take(), QStringList({ "debug: Already watching for signal 2" }));
    struct sigaction now = {};
    QCOMPARE(::sigaction(SIGINT, &former, &now), 0);
    QVERIFY(now.sa_handler == SIG_IGN);

    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    QCOMPARE(::raise(SIGINT), 0);
    QTRY_COMPARE(caught.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(caught.count(), 1);
}

void TestSigwatch::signalThatCannotBeCaughtIsNotAdded()
{
    UnixSignalWatcher watcher;
    m_log->clear();
    for (const int number : { SIGKILL, SIGKILL, 0, -1, 1000 }) {
        watcher.watchForSignal(number);
        QCOMPARE(m_log->take(),
            QStringList({ "debug: UnixSignalWatcher: sigaction: Invalid argument" }));
    }
}

void TestSigwatch::handlerRestartsAndBlocksNothing()
{
    UnixSignalWatcher watcher;
    watcher.watchForSignal(SIGTERM);
    struct sigaction action = {};
    QCOMPARE(::sigaction(SIGTERM, nullptr, &action), 0);
    QCOMPARE(action.sa_flags & (SA_RESTART | SA_SIGINFO | SA_NODEFER | SA_RESETHAND | SA_ONSTACK),
        SA_RESTART);
    for (int number = 1; number < NSIG; ++number)
        QCOMPARE(::sigismember(&action.sa_mask, number) == 1, false);
}

void TestSigwatch::twoInARowAreTwo()
{
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(SIGINT);
    QCOMPARE(::raise(SIGINT), 0);
    QCOMPARE(::raise(SIGINT), 0);
    QTRY_COMPARE(caught.count(), 2);
    QCOMPARE(caught.at(0), QVariantList({ 2 }));
    QCOMPARE(caught.at(1), QVariantList({ 2 }));
    QCoreApplication::processEvents();
    QCOMPARE(caught.count(), 2);
}

void TestSigwatch::orderIsKept()
{
    UnixSignalWatcher watcher;
    const QList<int> raised { SIGUSR2, SIGTERM, SIGUSR1, SIGUSR1, SIGINT, SIGUSR2 };
    for (const int number : { SIGINT, SIGTERM, SIGUSR1, SIGUSR2 })
        watcher.watchForSignal(number);
    QList<int> reported;
    connect(&watcher, &UnixSignalWatcher::unixSignal, this,
        [&](int number) { reported.append(number); });
    for (const int number : raised)
        QCOMPARE(::raise(number), 0);
    QTRY_COMPARE(reported.size(), raised.size());
    QCOMPARE(reported, raised);
}

void TestSigwatch::unwatchedSignalIsNotReported()
{
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(SIGINT);
    QVERIFY(::signal(SIGWINCH, SIG_IGN) != SIG_ERR);
    QCOMPARE(::raise(SIGWINCH), 0);
    QCOMPARE(::raise(SIGINT), 0);
    QTRY_COMPARE(caught.count(), 1);
    QCOMPARE(caught.first(), QVariantList({ SIGINT }));
}

void TestSigwatch::anotherThreadsSignalIsReportedHere()
{
    UnixSignalWatcher watcher;
    watcher.watchForSignal(SIGTERM);
    QThread *reportedIn = nullptr;
    connect(
        &watcher, &UnixSignalWatcher::unixSignal, [&] { reportedIn = QThread::currentThread(); });
    std::thread([] { ::raise(SIGTERM); }).join();
    QTRY_VERIFY(reportedIn);
    QCOMPARE(reportedIn, QThread::currentThread());
}

void TestSigwatch::blockedSystemCallGoesOn()
{
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(SIGINT);
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    const pthread_t blockedThread = ::pthread_self();
    const pid_t blocked = static_cast<pid_t>(::syscall(SYS_gettid));
    std::atomic<bool> reading { false };

    std::thread interrupter([&] {
        while (!reading || !isAsleep(blocked))
            std::this_thread::yield();
        ::pthread_kill(blockedThread, SIGINT);
        while (hasPendingSignal(blocked) || !isAsleep(blocked))
            std::this_thread::yield();
        const ssize_t written = ::write(ends[1], "x", 1);
        static_cast<void>(written);
    });
    char byte = 0;
    reading = true;
    const ssize_t got = ::read(ends[0], &byte, 1);
    const int error = errno;
    interrupter.join();
    ::close(ends[0]);
    ::close(ends[1]);
    QVERIFY2(got == 1, std::strerror(error));
    QCOMPARE(byte, 'x');
    QTRY_COMPARE(caught.count(), 1);
}

void TestSigwatch::interruptedCodeKeepsItsErrno()
{
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(SIGINT);
    errno = E2BIG;
    ::raise(SIGINT);
    QCOMPARE(errno, E2BIG);
    QTRY_COMPARE(caught.count(), 1);
}

void TestSigwatch::twoWatchersShareTheSignals()
{
    UnixSignalWatcher first;
    UnixSignalWatcher second;
    QSignalSpy caughtByFirst(&first, &UnixSignalWatcher::unixSignal);
    QSignalSpy caughtBySecond(&second, &UnixSignalWatcher::unixSignal);
    first.watchForSignal(SIGINT);
    second.watchForSignal(SIGINT);
    QCOMPARE(::raise(SIGINT), 0);
    QTRY_COMPARE(caughtByFirst.count() + caughtBySecond.count(), 1);
    // Whoever comes second finds nothing, and must not wait for it.
    QCoreApplication::processEvents();
    QCOMPARE(caughtByFirst.count() + caughtBySecond.count(), 1);
}

// The handler runs in the thread that would have to make room: waiting there would be for ever.
void TestSigwatch::aFloodNeverBlocksTheHandler()
{
    UnixSignalWatcher watcher;
    QSignalSpy caught(&watcher, &UnixSignalWatcher::unixSignal);
    watcher.watchForSignal(SIGUSR1);
    for (int i = 0; i < 20000; ++i)
        QCOMPARE(::raise(SIGUSR1), 0);
    QTRY_VERIFY(caught.count() > 0);
    int drained = 0;
    do {
        drained = caught.count();
        QCoreApplication::processEvents();
    } while (caught.count() > drained);

    watcher.watchForSignal(SIGTERM);
    QCOMPARE(::raise(SIGTERM), 0);
    QTRY_COMPARE(caught.count(), drained + 1);
    QCOMPARE(caught.last(), QVariantList({ SIGTERM }));
}

void TestSigwatch::destroyedWatcherLeavesTheHandler()
{
    auto watcher = std::make_unique<UnixSignalWatcher>();
    watcher->watchForSignal(SIGUSR1);
    watcher.reset();
    m_log->clear();
    struct sigaction action = {};
    QCOMPARE(::sigaction(SIGUSR1, nullptr, &action), 0);
    QVERIFY(action.sa_handler != SIG_DFL);
    QCOMPARE(::raise(SIGUSR1), 0); // does not kill
    QCoreApplication::processEvents();
    QCOMPARE(m_log->take(), QStringList()); // and nobody reads it
}

QTEST_GUILESS_MAIN(TestSigwatch)
#include "tst_sigwatch.moc"
