// SPDX-License-Identifier: GPL-3.0-or-later
#include "faketools.h"
#include "testkit/process/process.h"
#include "testkit/process/program.h"
#include "testkit/services/broker.h"
#include "testkit/waiting.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <csignal>
#include <memory>

namespace {

const QString Script = QStringLiteral(TOUCHUI_CHECKOUT "/packaging/reconnect");
constexpr quint16 BrokerPort = 1883;
const QByteArray Loss = "CRITICAL [mqtt.cpp(1)] Mqtt::error() TransportInvalid";
/** A broker may be set to refuse a client without a name. */
const QByteArray Knock = QByteArray::fromHex("101d00044d51545404020000")
    + QByteArray::fromHex("0011") + "velunor-reconnect";

/**
 * A front end of which the service manager knows only what the test says; a restart connects it.
 */
const QByteArray Systemctl = R"sh(
case "$*" in
"show --property=SubState --property=UID velunor-touchui.service")
    echo "UID=$(id -u)"
    echo "SubState=$(cat "$here/state")"
    echo asked >>"$here/asked" ;; # the test may change the state from here on
"try-restart velunor-touchui.service")
    cut -d ' ' -f 1 /proc/uptime >>"$here/restarts"
    [ ! -e "$here/connects" ] || {
        mosquitto_sub -t none </dev/null >/dev/null 2>&1 & echo $! >>"$here/started"
        until grep -q " 0100007F:075B 01 " /proc/net/tcp; do /bin/sleep 0.05; done
    } ;;
"reset-failed velunor-touchui.service") echo forgiven >>"$here/forgiven" ;;
*) echo "$*" >>"$here/unexpected" ;;
esac)sh";

/**
 * Follows a file instead of a journal, and lets through what the true one would. Like the true one
 * it may be slow to begin.
 */
const QByteArray Journalctl = R"(
since=0 lines=+1
for argument; do
    case $argument in
    --grep=*) pattern=${argument#--grep=} ;;
    --since=@*) since=${argument#--since=@} ;;
    --lines=*) lines=${argument#--lines=} ;;
    esac
done
echo "$pattern" >"$here/pattern"
while [ -e "$here/slow" ]; do sleep 0.1; done
tail --lines="$lines" --follow "$here/journal" --pid=$PPID |
    while read -r time text; do [ "$time" -lt "$since" ] || echo "$text"; done |
    grep --line-buffered --perl-regexp "$pattern")";

} // namespace

/** When the script starts the front end again, and when it lets it be. */
class TestReconnect : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aBrokerThatIsThereStartsAnUnconnectedFrontEndAgain();
    void aConnectedFrontEndIsLetBe();
    void aLossStartsItAgain();
    void aLossWhileTheJournalIsBeingOpenedStartsItAgain();
    void otherLinesOfTheLogDoNotWakeIt();
    void aFrozenBrokerIsWaitedForWithoutAWake();
    void aBrokerThatComesLaterIsFoundWithinTenSeconds();
    void aBrokerThatLetsNobodyInCountsAsAway();
    void aStoppedFrontEndStaysStopped();
    void aStartingFrontEndIsGivenItsTime();
    void oneThatIsAboutToStartIsLetBe();
    void restartsInVainBecomeRare();
    void eachStartOfTheBrokerIsAFreshChance();
    void theLossIsWhatTheProgramSays();

private:
    bool startScript();
    /** A line of the front end in the journal. */
    void say(const QByteArray &line, qint64 time = QDateTime::currentSecsSinceEpoch())
    {
        m_tools->append(QStringLiteral("journal"), QByteArray::number(time) + ' ' + line + '\n');
    }
    /** Connects as the front end does, and lets the script know its process. */
    void connectFrontEnd()
    {
        m_frontEnd.connectToHost(QStringLiteral("127.0.0.1"), BrokerPort);
        QVERIFY(m_frontEnd.waitForConnected());
    }
    int restarts() const { return m_tools->lines(QStringLiteral("restarts")).size(); }
    /** Whether it sleeps in a read from the journal, whose descriptor is none of a child's. */
    bool readsTheJournal() const
    {
        QFile call(QStringLiteral("/proc/%1/syscall").arg(m_script->processId()));
        const QList<QByteArray> numbers
            = call.open(QIODevice::ReadOnly) ? call.readAll().split(' ') : QList<QByteArray>();
        return numbers.value(1).toInt(nullptr, 16) >= 10;
    }
    /** Seconds between two restarts. */
    double pauseBefore(int restart) const
    {
        const QStringList times = m_tools->lines(QStringLiteral("restarts"));
        return times.at(restart).toDouble() - times.at(restart - 1).toDouble();
    }
    int questions() const { return m_tools->lines(QStringLiteral("asked")).size(); }

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<Process> m_script;
    std::unique_ptr<Broker> m_broker;
    QTcpSocket m_frontEnd;
};

void TestReconnect::init()
{
    m_tools = std::make_unique<FakeTools>();
    m_tools->add(QStringLiteral("systemctl"), Systemctl);
    m_tools->add(QStringLiteral("journalctl"), Journalctl);
    m_tools->write(QStringLiteral("state"), "running\n");
    m_tools->write(QStringLiteral("connects"), {});
    m_tools->write(QStringLiteral("journal"), {});
    say(Loss, 1000); // of another day, which nobody is to answer
    m_script = std::make_unique<Process>();
    m_broker = std::make_unique<Broker>();
}

void TestReconnect::cleanup()
{
    m_script.reset();
    // What a restart has started would connect to the next broker as well.
    for (const QString &pid : m_tools->lines(QStringLiteral("started")))
        kill(pid.toInt(), SIGKILL);
    QCOMPARE(m_tools->lines(QStringLiteral("unexpected")), QStringList());
    m_frontEnd.abort();
    m_broker.reset();
}

bool TestReconnect::startScript()
{
    QProcessEnvironment environment = m_tools->environment();
    environment.insert(QStringLiteral("RUNTIME_DIRECTORY"), m_tools->path(QString()));
    return m_script->start(Script, {}, environment)
        && waitUntil([this] { return !m_tools->read(QStringLiteral("pattern")).isEmpty(); });
}

void TestReconnect::aBrokerThatIsThereStartsAnUnconnectedFrontEndAgain()
{
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
    // It looks once more, is content, and sees the next loss.
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 2, PatienceMs);
    QCOMPARE(restarts(), 1);
    // systemd is not to count it among the program's failures.
    QCOMPARE(m_tools->lines(QStringLiteral("forgiven")).size(), 1);
}

void TestReconnect::aConnectedFrontEndIsLetBe()
{
    QVERIFY(m_broker->start());
    connectFrontEnd();
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 1, PatienceMs);
    // A second look begins only after the first has ended.
    say(Loss);
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 2, PatienceMs);
    say(Loss);
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 3, PatienceMs);
    QCOMPARE(restarts(), 0);
}

void TestReconnect::aLossStartsItAgain()
{
    QVERIFY(m_broker->start());
    connectFrontEnd();
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 1, PatienceMs);
    m_frontEnd.abort();
    say(Loss);
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
}

void TestReconnect::aLossWhileTheJournalIsBeingOpenedStartsItAgain()
{
    m_tools->write(QStringLiteral("slow"), {});
    QVERIFY(m_broker->start());
    connectFrontEnd();
    QVERIFY(startScript());
    // The first look has found the connection.
    QTRY_VERIFY_WITH_TIMEOUT(readsTheJournal(), PatienceMs);
    QCOMPARE(questions(), 1);
    m_frontEnd.abort();
    say(Loss);
    QFile::remove(m_tools->path(QStringLiteral("slow")));
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
}

void TestReconnect::otherLinesOfTheLogDoNotWakeIt()
{
    QVERIFY(m_broker->start());
    connectFrontEnd();
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 1, PatienceMs);
    say("INFO  [mqtt.cpp(1)] Mqtt::connectedToBroker()");
    say("DEBUG [x.cpp(1)] Mqtt::errors");
    m_frontEnd.abort();
    say(Loss);
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 3, PatienceMs); // and after it
}

void TestReconnect::aFrozenBrokerIsWaitedForWithoutAWake()
{
    QTcpServer frozen; // what listens accepts connections even when its process does not run
    QVERIFY(frozen.listen(QHostAddress::LocalHost, BrokerPort));
    QVERIFY(startScript());
    QTRY_VERIFY_WITH_TIMEOUT(frozen.hasPendingConnections(), PatienceMs);
    std::unique_ptr<QTcpSocket> client(frozen.nextPendingConnection());
    QTRY_COMPARE_WITH_TIMEOUT(client->bytesAvailable(), Knock.size(), PatienceMs);
    QCOMPARE(client->peek(Knock.size()), Knock);
    QCOMPARE(questions(), 0);
    // All the time it sleeps in one read: there is nobody who could wake.
    QVERIFY(!frozen.waitForNewConnection(11000));
    QCOMPARE(client->state(), QAbstractSocket::ConnectedState);
    client->write(QByteArray::fromHex("20020000"));
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
}

void TestReconnect::aBrokerThatComesLaterIsFoundWithinTenSeconds()
{
    m_tools->add(QStringLiteral("sleep"), "echo \"$1\" >>\"$here/slept\"; exec /bin/sleep \"$1\"");
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(m_tools->lines(QStringLiteral("slept")).size(), 1, PatienceMs);
    QCOMPARE(questions(), 0);
    QVERIFY(m_broker->start());
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
    QCOMPARE(m_tools->lines(QStringLiteral("slept")), QStringList { QStringLiteral("10") });
}

void TestReconnect::aBrokerThatLetsNobodyInCountsAsAway()
{
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost, BrokerPort));
    QVERIFY(startScript());
    for (const char *answer : { "20020005", "20020000" }) {
        QTRY_VERIFY_WITH_TIMEOUT(closed.hasPendingConnections(), PatienceMs);
        std::unique_ptr<QTcpSocket> client(closed.nextPendingConnection());
        QTRY_COMPARE_WITH_TIMEOUT(client->bytesAvailable(), Knock.size(), PatienceMs);
        QCOMPARE(questions(), 0);
        client->write(QByteArray::fromHex(answer));
        QTRY_COMPARE_WITH_TIMEOUT(client->state(), QAbstractSocket::UnconnectedState, PatienceMs);
    }
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
}

void TestReconnect::aStoppedFrontEndStaysStopped()
{
    m_tools->write(QStringLiteral("state"), "dead\n");
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    for (int look = 1; look <= 3; ++look) {
        QTRY_COMPARE_WITH_TIMEOUT(questions(), look, PatienceMs);
        say(Loss);
    }
    QCOMPARE(restarts(), 0);
}

void TestReconnect::aStartingFrontEndIsGivenItsTime()
{
    m_tools->write(QStringLiteral("state"), "start\n");
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    QTRY_VERIFY_WITH_TIMEOUT(questions() >= 3, PatienceMs);
    QCOMPARE(restarts(), 0);
    m_tools->write(QStringLiteral("state"), "running\n");
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
}

void TestReconnect::oneThatIsAboutToStartIsLetBe()
{
    // Its next process makes a connection of its own, and says so if that fails.
    m_tools->add(QStringLiteral("sleep"), "echo \"$1\" >>\"$here/slept\"; exec /bin/sleep \"$1\"");
    m_tools->write(QStringLiteral("state"), "auto-restart\n");
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 1, PatienceMs);
    m_tools->write(QStringLiteral("state"), "running\n");
    say(Loss);
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 1, PatienceMs);
    QCOMPARE(m_tools->read(QStringLiteral("slept")), QByteArray());
    // One look in vain; one before its restart and one after it.
    QTRY_COMPARE_WITH_TIMEOUT(questions(), 3, PatienceMs);
}

void TestReconnect::restartsInVainBecomeRare()
{
    QFile::remove(m_tools->path(QStringLiteral("connects")));
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 4, 2 * PatienceMs);
    QVERIFY(pauseBefore(1) >= 0.9);
    QVERIFY(pauseBefore(2) > 1.5);
    QVERIFY(pauseBefore(3) > pauseBefore(2) + 1);
}

void TestReconnect::eachStartOfTheBrokerIsAFreshChance()
{
    QFile::remove(m_tools->path(QStringLiteral("connects")));
    QVERIFY(m_broker->start());
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 4, 2 * PatienceMs);
    m_script->sendSignal(SIGTERM);
    QVERIFY(m_script->waitForExit());
    QVERIFY(startScript());
    QTRY_COMPARE_WITH_TIMEOUT(restarts(), 5, PatienceMs);
    // Not as long as the one that was under way, and yet not at once.
    QVERIFY(pauseBefore(4) < pauseBefore(3));
    QVERIFY(pauseBefore(4) >= 0.9);
}

void TestReconnect::theLossIsWhatTheProgramSays()
{
    QVERIFY(startScript());
    const QRegularExpression pattern(
        QString::fromLocal8Bit(m_tools->read(QStringLiteral("pattern")).trimmed()));
    Program program;
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    const auto losses = [&] {
        int found = 0;
        for (const LogLine &line : program.log())
            found += pattern.match(line.withoutPlace()).hasMatch() ? 1 : 0;
        return found;
    };
    // Without a broker, and when it goes; not when it is there.
    QVERIFY(program.startAndWait());
    QTRY_VERIFY_WITH_TIMEOUT(losses() > 0, PatienceMs);
    QVERIFY(program.stop());
    QVERIFY(m_broker->start());
    QVERIFY(program.startAndWait());
    QVERIFY(m_broker->waitForLine(QRegularExpression(QStringLiteral("SUBACK"))));
    QCOMPARE(losses(), 0);
    QVERIFY(m_broker->stop());
    QTRY_VERIFY_WITH_TIMEOUT(losses() > 0, PatienceMs);
}

QTEST_GUILESS_MAIN(TestReconnect)
#include "tst_reconnect.moc"
