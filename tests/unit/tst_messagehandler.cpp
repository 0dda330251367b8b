// SPDX-License-Identifier: GPL-3.0-or-later
#include "messagehandler.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryFile>
#include <QTest>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

/** Sends standard error to a file as long as it lives. */
class StandardError {
public:
    StandardError()
        : m_saved(::dup(STDERR_FILENO))
    {
        if (!m_file.open() || ::dup2(m_file.handle(), STDERR_FILENO) < 0)
            qFatal("cannot redirect standard error");
    }
    ~StandardError()
    {
        ::dup2(m_saved, STDERR_FILENO);
        ::close(m_saved);
    }

    QByteArray text()
    {
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    Q_DISABLE_COPY(StandardError)
    QTemporaryFile m_file;
    int m_saved;
};

void send(QtMsgType type, const QString &text, const char *file = "src/player.cpp", int line = 7)
{
    messageHandler(type, QMessageLogContext(file, line, "void f()", "default"), text);
}

/** Ends whatever run the test before has left. */
void breakRun()
{
    static int number = 0;
    send(static_cast<QtMsgType>(5), QStringLiteral("separator %1").arg(++number));
}

} // namespace

class TestMessageHandler : public QObject {
    Q_OBJECT

private slots:
    void debugIsHiddenAtStart();
    void init();
    void cleanup();

    void formatsByType_data();
    void formatsByType();
    void fileNameIsTheLastComponent_data();
    void fileNameIsTheLastComponent();
    void textIsPrintedAsItIs_data();
    void textIsPrintedAsItIs();
    void realMessagesCarryTheirPlace();

    void aRunIsCutAfterFive_data();
    void aRunIsCutAfterFive();
    void aRunBeginsAgainAfterAnotherLine();
    void repeatIsPrintedWithThePrefixOfTheSixth();
    void samePlaceCounts();
    void hiddenDebugLineBreaksARun();
    void hiddenRunIsNotReported();
    void unknownTypeTakesPartInTheBookkeeping();
    void switchingDebugOffWorksAtOnce();

    void linesOfSeveralThreadsStayWhole();
    void theFirstMessageIsNoRepeat();
    void fatalMessageIsPrintedBeforeTheEnd();

private:
    QScopedPointer<StandardError> m_stderr;
};

// Runs first: no test has touched the flag yet.
void TestMessageHandler::debugIsHiddenAtStart()
{
    QVERIFY(!debugLogging());
    send(QtDebugMsg, QStringLiteral("hidden"));
    QCOMPARE(m_stderr->text(), QByteArray());
}

void TestMessageHandler::init()
{
    m_stderr.reset(new StandardError);
    breakRun();
}

void TestMessageHandler::cleanup()
{
    m_stderr.reset();
    setDebugLogging(false);
}

void TestMessageHandler::formatsByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("debug");
    QTest::addColumn<QByteArray>("printed");
    QTest::newRow("debug, hidden") << int(QtDebugMsg) << false << QByteArray();
    QTest::newRow("debug") << int(QtDebugMsg) << true << QByteArray("DEBUG [player.cpp(7)] text\n");
    for (const bool debug : { false, true }) {
        const char *const flag = debug ? ", debug on" : "";
        QTest::addRow("info%s", flag)
            << int(QtInfoMsg) << debug << QByteArray("INFO  [player.cpp(7)] text\n");
        QTest::addRow("warning%s", flag)
            << int(QtWarningMsg) << debug << QByteArray("WARN  [player.cpp(7)] text\n");
        QTest::addRow("critical%s", flag)
            << int(QtCriticalMsg) << debug << QByteArray("ERROR [player.cpp(7)] text\n");
        QTest::addRow("fatal%s", flag)
            << int(QtFatalMsg) << debug << QByteArray("FATAL [player.cpp(7)] text\n");
        QTest::addRow("other%s", flag) << 5 << debug << QByteArray();
    }
}

void TestMessageHandler::formatsByType()
{
    QFETCH(int, type);
    QFETCH(bool, debug);
    setDebugLogging(debug);
    QCOMPARE(debugLogging(), debug);
    send(static_cast<QtMsgType>(type), QStringLiteral("text"));
    QTEST(m_stderr->text(), "printed");
}

void TestMessageHandler::fileNameIsTheLastComponent_data()
{
    QTest::addColumn<QByteArray>("path"); // null for a missing one
    QTest::addColumn<int>("line");
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("absolute") << QByteArray("/a/b/mqtt.cpp") << 12 << QByteArray("[mqtt.cpp(12)]");
    QTest::newRow("relative") << QByteArray("../mqtt.cpp") << 12 << QByteArray("[mqtt.cpp(12)]");
    QTest::newRow("bare") << QByteArray("mqtt.cpp") << 12 << QByteArray("[mqtt.cpp(12)]");
    QTest::newRow("resource") << QByteArray("qrc:/qml/main.qml") << 3
                              << QByteArray("[main.qml(3)]");
    QTest::newRow("missing") << QByteArray() << 0 << QByteArray("[(0)]");
    QTest::newRow("missing, with a line") << QByteArray() << 9 << QByteArray("[(9)]");
    QTest::newRow("empty") << QByteArray("") << 1 << QByteArray("[(1)]");
    QTest::newRow("directory") << QByteArray("a/b/") << 1 << QByteArray("[(1)]");
    QTest::newRow("placeholder") << QByteArray("%3%2.cpp") << 1 << QByteArray("[%3%2.cpp(1)]");
    QTest::newRow("negative line") << QByteArray("a.cpp") << -1 << QByteArray("[a.cpp(-1)]");
}

void TestMessageHandler::fileNameIsTheLastComponent()
{
    QFETCH(QByteArray, path);
    QFETCH(int, line);
    QFETCH(QByteArray, place);
    send(QtInfoMsg, QStringLiteral("text"), path.isNull() ? nullptr : path.constData(), line);
    QCOMPARE(m_stderr->text(), "INFO  " + place + " text\n");
}

void TestMessageHandler::textIsPrintedAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("printed");
    QTest::newRow("empty") << "" << QByteArray();
    QTest::newRow("Latin-1") << QStringLiteral("Küche")
                             << QByteArray("K\xfc"
                                           "che");
    QTest::newRow("outside Latin-1") << QStringLiteral("5 € für Ω") << QByteArray("5 ? f\xfcr ?");
    QTest::newRow("printf conversions") << "100%n %s" << QByteArray("100%n %s");
    QTest::newRow("placeholders") << "%1 %2 %3" << QByteArray("%1 %2 %3");
    QTest::newRow("two lines") << "a\nb" << QByteArray("a\nb");
    QTest::newRow("long") << QString(100000, QLatin1Char('x')) << QByteArray(100000, 'x');
}

void TestMessageHandler::textIsPrintedAsItIs()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, printed);
    send(QtWarningMsg, text);
    QCOMPARE(m_stderr->text(), "WARN  [player.cpp(7)] " + printed + '\n');
}

void TestMessageHandler::realMessagesCarryTheirPlace()
{
    const QtMessageHandler former = qInstallMessageHandler(messageHandler);
    const int line = __LINE__ + 1;
    qCritical("here");
    qInstallMessageHandler(former);
    QCOMPARE(m_stderr->text(),
        "ERROR [tst_messagehandler.cpp(" + QByteArray::number(line) + ")] here\n");
}

void TestMessageHandler::aRunIsCutAfterFive_data()
{
    QTest::addColumn<int>("times");
    for (const int times : { 1, 4, 5, 6, 7, 8, 12, 1000 })
        QTest::addRow("%d", times) << times;
}

void TestMessageHandler::aRunIsCutAfterFive()
{
    QFETCH(int, times);
    QByteArray expected;
    for (int i = 0; i < times; ++i)
        send(QtWarningMsg, QStringLiteral("text"));
    expected += QByteArray("WARN  [player.cpp(7)] text\n").repeated(qMin(times, 5));
    if (times > 5)
        expected += "WARN  last message repeated 5 times\n";
    QCOMPARE(m_stderr->text(), expected);
}

void TestMessageHandler::aRunBeginsAgainAfterAnotherLine()
{
    for (int i = 0; i < 8; ++i)
        send(QtWarningMsg, QStringLiteral("text"));
    send(QtInfoMsg, QStringLiteral("other"));
    for (int i = 0; i < 7; ++i)
        send(QtWarningMsg, QStringLiteral("text"));
    const QByteArray run = QByteArray("WARN  [player.cpp(7)] text\n").repeated(5)
        + "WARN  last message repeated 5 times\n";
    QCOMPARE(m_stderr->text(), run + "INFO  [player.cpp(7)] other\n" + run);
}

void TestMessageHandler::repeatIsPrintedWithThePrefixOfTheSixth()
{
    for (int i = 0; i < 5; ++i)
        send(QtInfoMsg, QStringLiteral("text"));
    send(QtCriticalMsg, QStringLiteral("text"));
    send(QtInfoMsg, QStringLiteral("text"));
    QCOMPARE(m_stderr->text(),
        QByteArray("INFO  [player.cpp(7)] text\n").repeated(5)
            + "ERROR last message repeated 5 times\n");
}

void TestMessageHandler::samePlaceCounts()
{
    for (int i = 0; i < 8; ++i) {
        send(QtInfoMsg, QStringLiteral("text"), "a.cpp", 1);
        send(QtInfoMsg, QStringLiteral("text"), "b.cpp", 1);
        send(QtInfoMsg, QStringLiteral("text"), "b.cpp", 2);
    }
    QCOMPARE(m_stderr->text().count('\n'), 24);
    QVERIFY(!m_stderr->text().contains("repeated"));
}

void TestMessageHandler::hiddenDebugLineBreaksARun()
{
    for (int i = 0; i < 8; ++i) {
        send(QtWarningMsg, QStringLiteral("text"));
        send(QtDebugMsg, QStringLiteral("hidden"));
    }
    QCOMPARE(m_stderr->text(), QByteArray("WARN  [player.cpp(7)] text\n").repeated(8));
}

void TestMessageHandler::hiddenRunIsNotReported()
{
    for (int i = 0; i < 8; ++i)
        send(QtDebugMsg, QStringLiteral("hidden"));
    QCOMPARE(m_stderr->text(), QByteArray());
}

void TestMessageHandler::unknownTypeTakesPartInTheBookkeeping()
{
    send(QtInfoMsg, QStringLiteral("text"));
    send(static_cast<QtMsgType>(5), QStringLiteral("other"));
    for (int i = 0; i < 5; ++i)
        send(QtInfoMsg, QStringLiteral("text"));
    QCOMPARE(m_stderr->text(), QByteArray("INFO  [player.cpp(7)] text\n").repeated(6));
}

void TestMessageHandler::switchingDebugOffWorksAtOnce()
{
    setDebugLogging(true);
    send(QtDebugMsg, QStringLiteral("one"));
    setDebugLogging(false);
    send(QtDebugMsg, QStringLiteral("two"));
    QCOMPARE(m_stderr->text(), QByteArray("DEBUG [player.cpp(7)] one\n"));
}

void TestMessageHandler::linesOfSeveralThreadsStayWhole()
{
    constexpr int Threads = 4;
    constexpr int Lines = 2000;
    std::atomic<int> ready { 0 };
    std::vector<std::thread> threads;
    threads.reserve(Threads);
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([t, &ready] {
            for (++ready; ready < Threads;) // all at once, or each is done before the next begins
                std::this_thread::yield();
            for (int i = 0; i < Lines; ++i) {
                send(QtInfoMsg, QStringLiteral("%1 %2 end").arg(t).arg(i));
                // Nothing is written for these, so that the threads meet in the bookkeeping.
                for (int hidden = 0; hidden < 300; ++hidden)
                    send(QtDebugMsg, QString::number(hidden));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    QList<int> next { 0, 0, 0, 0 };
    QList<QByteArray> lines = m_stderr->text().split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    QCOMPARE(lines.size(), Threads * Lines);
    for (const QByteArray &line : qAsConst(lines)) {
        const int thread = line.mid(22, 1).toInt();
        QCOMPARE(line,
            "INFO  [player.cpp(7)] " + QByteArray::number(thread) + ' '
                + QByteArray::number(next[thread]) + " end");
        ++next[thread];
    }
}

// Scene errors may come without file and line, so no such message may stand for "none yet".
void TestMessageHandler::theFirstMessageIsNoRepeat()
{
    for (const char *const line : { "0", "-1" }) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
            { QStringLiteral("--repeat"), QString::fromLatin1(line) });
        QVERIFY(child.waitForFinished());
        const QByteArray printed = QByteArray("WARN  [(") + line + ")] \n";
        QCOMPARE(child.readAllStandardError(),
            printed.repeated(5) + "WARN  last message repeated 5 times\n");
    }
}

void TestMessageHandler::fatalMessageIsPrintedBeforeTheEnd()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--die") });
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QCOMPARE(child.exitCode(), SIGABRT);
    QCOMPARE(child.readAllStandardError(), QByteArray("FATAL [main.cpp(1)] the end\n"));
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--die"))) {
        qInstallMessageHandler(messageHandler);
        QMessageLogger("src/main.cpp", 1, nullptr).fatal("the end");
    }
    const int repeat = application.arguments().indexOf(QStringLiteral("--repeat"));
    if (repeat >= 0) {
        const int line = application.arguments().value(repeat + 1).toInt();
        for (int copy = 0; copy < 6; ++copy)
            send(QtWarningMsg, QString(), nullptr, line);
        return 0;
    }
    TestMessageHandler test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_messagehandler.moc"
