// SPDX-License-Identifier: GPL-3.0-or-later
#include "roon.h"

#include "propertyclasstest.h"

#include <QCoreApplication>
#include <QHostInfo>
#include <QNetworkInterface>
#include <QProcess>
#include <QTest>

#include <cstdio>

class TestRoon : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<Roon>(); }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override
    {
        return { "public signal coreDetectionChanged()" };
    }

private slots:
    void instanceIsOneObject() { checkInstance<Roon>(); }
    void aNewServerAddressIsToldOutsideTheMetaObject();
    void hostNameIsTheMachines();
    void addressIsReadFromTheMachine();
    void addressOfTheFirstUsableInterface_data();
    void addressOfTheFirstUsableInterface();
    void addressIsLookedUpOnEveryRead();

private:
    QStringList onAMachineWith(const QByteArray &commands, const QString &later = QString());
};

/**
 * What this program prints in its mode "--address" on a machine of its own, whose network is set up
 * by shell commands. The machine has nothing but a loopback interface that is down. "pair A B"
 * makes the interfaces A and B, joined by a cable; "plug A B" switches both on, which makes them
 * running.
 */
QStringList TestRoon::onAMachineWith(const QByteArray &commands, const QString &later)
{
    const QByteArray script = "set -e\nPATH=$PATH:/usr/sbin:/sbin\n"
                              "pair() { ip link add name $1 type veth peer name $2; }\n"
                              "plug() { ip link set $1 up; ip link set $2 up;"
                              " until ip -br link show $1 | grep -q ' UP '; do :; done }\n"
        + commands + "\nexec \"$0\" --address \"$1\"\n";
    QProcess child;
    child.start(QStringLiteral("unshare"), // root of the sandbox, so it may
        { QStringLiteral("--net"), QStringLiteral("sh"), QStringLiteral("-c"),
            QString::fromLatin1(script), QCoreApplication::applicationFilePath(), later });
    if (!child.waitForFinished() || child.exitStatus() != QProcess::NormalExit
        || child.exitCode() != 0)
        return { QStringLiteral("failed: ") + child.errorString(),
            QString::fromLocal8Bit(child.readAllStandardError()) };
    return QString::fromUtf8(child.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QList<PropertyRow> TestRoon::rows() const
{
    return {
        PropertyRow("bool coreDetected read write coreDetectionChanged()", false).onEveryWrite(),
        { "QString serverName read write", QString() },
        { "QString id read write", QString() },
        { "QString serverUrl read write", QString() },
        { "QString version read write", QString() },
        { "QString ipAddress read constant" },
        { "QString localHostName read constant" },
    };
}

void TestRoon::aNewServerAddressIsToldOutsideTheMetaObject()
{
    Roon roon;
    QStringList told;
    connect(roon.serverUrlNotifier(), &ChangeNotifier::changed, this,
        [&] { told.append(roon.serverUrl()); });
    const QString first = QStringLiteral("10.0.0.1:9330");
    const QString second = QStringLiteral("10.0.0.2:9330");
    for (const QString &address : { QString(), first, first, second, QString() })
        roon.setServerUrl(address);
    roon.setProperty("serverUrl", first);
    roon.setServerName(QStringLiteral("Core"));
    QCOMPARE(told, QStringList({ first, second, QString(), first }));
}

void TestRoon::hostNameIsTheMachines()
{
    QCOMPARE(Roon().localHostName(), QHostInfo::localHostName());
    QCOMPARE(Roon().property("localHostName").toString(), QHostInfo::localHostName());
}

void TestRoon::addressIsReadFromTheMachine()
{
    const Roon roon;
    m_log->clear();
    const QString address = roon.property("ipAddress").toString();
    const QStringList lines = m_log->take();
    if (lines.isEmpty()) { // no interface but loopback
        QCOMPARE(address, QString());
        return;
    }
    const QString found = QStringLiteral("info: Roon::ipAddress() found interface: ");
    QVERIFY(lines.first().startsWith(found));
    const QNetworkInterface interface = QNetworkInterface::interfaceFromName(
        lines.first().mid(found.size()));
    QVERIFY(interface.isValid());
    QStringList addresses;
    for (const QNetworkAddressEntry &entry : interface.addressEntries()) {
        if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol)
            addresses.append(entry.ip().toString());
    }
    QCOMPARE(address, addresses.value(0));
    QCOMPARE(lines.mid(1),
        addresses.isEmpty() ? QStringList()
                            : QStringList({ "info: Roon::ipAddress() " + address }));
}

void TestRoon::addressOfTheFirstUsableInterface_data()
{
    QTest::addColumn<QByteArray>("commands");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("address");
    QTest::newRow("nothing is up") << QByteArray() << ""
                                   << "";
    QTest::newRow("loopback only") << QByteArray("ip link set lo up") << ""
                                   << "";
    QTest::newRow("loopback with a public address")
        << QByteArray("ip link set lo up; ip addr add 192.0.2.1/24 dev lo") << ""
        << "";
    QTest::newRow("one interface")
        << QByteArray("ip link set lo up; pair p1 p0; plug p0 p1; ip addr add 192.0.2.1/24 dev p0")
        << "p0"
        << "192.0.2.1";
    QTest::newRow("two interfaces")
        << QByteArray("pair p1 p0; plug p0 p1;"
                      "ip addr add 192.0.2.2/24 dev p1; ip addr add 192.0.2.1/24 dev p0")
        << "p0"
        << "192.0.2.1";
    QTest::newRow("down") << QByteArray("pair p1 p0; pair q1 q0;"
                                        "ip addr add 192.0.2.1/24 dev p0;"
                                        "plug q0 q1;"
                                        "ip addr add 192.0.2.3/24 dev q0")
                          << "q0"
                          << "192.0.2.3";
    QTest::newRow("up but not running")
        << QByteArray("pair p1 p0; pair q1 q0; ip link set p0 up; ip addr add 192.0.2.1/24 dev p0;"
                      "plug q0 q1; ip addr add 192.0.2.3/24 dev q0")
        << "q0"
        << "192.0.2.3";
    QTest::newRow("only one, not running")
        << QByteArray("pair p1 p0; ip link set p0 up; ip addr add 192.0.2.1/24 dev p0") << ""
        << "";
    QTest::newRow("IPv6 only") << QByteArray(
        "pair p1 p0; plug p0 p1; ip addr add 2001:db8::1/64 dev p0;"
        "ip addr add 192.0.2.2/24 dev p1")
                               << "p0"
                               << "";
    QTest::newRow("no address at all")
        << QByteArray("pair p1 p0; ip link set p0 addrgenmode none; plug p0 p1;"
                      "ip addr add 192.0.2.2/24 dev p1")
        << "p0"
        << "";
    QTest::newRow("IPv6 and IPv4")
        << QByteArray("pair p1 p0; plug p0 p1;"
                      "ip addr add 2001:db8::1/64 dev p0; ip addr add 192.0.2.1/24 dev p0")
        << "p0"
        << "192.0.2.1";
    QTest::newRow("two addresses")
        << QByteArray("pair p1 p0; plug p0 p1;"
                      "ip addr add 192.0.2.9/24 dev p0; ip addr add 192.0.2.1/24 dev p0")
        << "p0"
        << "192.0.2.9";
    QTest::newRow("any name will do") << QByteArray("pair p1 docker0; plug docker0 p1;"
                                                    "ip addr add 192.0.2.7/24 dev docker0")
                                      << "docker0"
                                      << "192.0.2.7";
}

void TestRoon::addressOfTheFirstUsableInterface()
{
    QFETCH(QByteArray, commands);
    QFETCH(QString, interface);
    QFETCH(QString, address);
    QStringList expected;
    if (!interface.isEmpty())
        expected.append("info: Roon::ipAddress() found interface: " + interface);
    if (!address.isEmpty())
        expected.append("info: Roon::ipAddress() " + address);
    expected.append("result: " + address);
    QCOMPARE(onAMachineWith(commands), expected);
}

void TestRoon::addressIsLookedUpOnEveryRead()
{
    QCOMPARE(
        onAMachineWith("pair p1 p0; plug p0 p1", QStringLiteral("ip addr add 192.0.2.1/24 dev p0")),
        QStringList({ "info: Roon::ipAddress() found interface: p0",
            "result: ", "info: Roon::ipAddress() found interface: p0",
            "info: Roon::ipAddress() 192.0.2.1", "result: 192.0.2.1" }));
}

namespace {

/**
 * Reads the address, once more after the shell command @p later if there is one, and prints what
 * came.
 */
int printAddress(const QString &later)
{
    LogCapture log;
    const Roon roon;
    log.clear();
    for (int reads = later.isEmpty() ? 1 : 2; reads > 0; --reads) {
        const QString address = roon.ipAddress();
        for (const QString &line : log.take())
            std::printf("%s\n", qUtf8Printable(line));
        std::printf("result: %s\n", qUtf8Printable(address));
        if (reads == 2
            && QProcess::execute(QStringLiteral("sh"), { QStringLiteral("-c"), later }) != 0)
            return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--address"))
        return printAddress(arguments.value(2));
    TestRoon test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_roon.moc"
