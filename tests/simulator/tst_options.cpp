// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/options.h"

#include <QTest>

class TestOptions : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void readsEveryOption();
    void tasks_data();
    void tasks();
    void wrongOnesAreNamed_data();
    void wrongOnesAreNamed();
    void helpNamesEveryOption();
};

void TestOptions::defaults()
{
    Options options;
    QString problem;
    QVERIFY(Options::parse({ QStringLiteral("program") }, &options, &problem));
    QCOMPARE(int(options.task), int(Options::Run));
    QCOMPARE(options.scenario, QStringLiteral("playing"));
    QCOMPARE(options.speed, 1.0);
    QCOMPARE(options.brokerPort, quint16(1883));
    QCOMPARE(options.imagePort, quint16(0));
    QCOMPARE(options.webPort, quint16(8080));
    QCOMPARE(options.zone, QStringLiteral("Hugo2X"));
}

void TestOptions::readsEveryOption()
{
    Options options;
    QString problem;
    QVERIFY(Options::parse(
        QStringLiteral("program --scenario radio --speed 0.5 --seed 7 --broker-port 1 "
                       "--image-port 65535 --web-port 0 --zone Küche --panel p")
            .split(QLatin1Char(' ')),
        &options, &problem));
    QCOMPARE(options.scenario, QStringLiteral("radio"));
    QCOMPARE(options.speed, 0.5);
    QCOMPARE(options.seed, 7u);
    QCOMPARE(options.brokerPort, quint16(1));
    QCOMPARE(options.imagePort, quint16(65535));
    QCOMPARE(options.webPort, quint16(0));
    QCOMPARE(options.zone, QStringLiteral("Küche"));
    QCOMPARE(options.panel, QStringLiteral("p"));
}

void TestOptions::tasks_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("task");
    QTest::newRow("list") << QStringLiteral("--list") << int(Options::List);
    QTest::newRow("help") << QStringLiteral("--help") << int(Options::Help);
    QTest::newRow("version") << QStringLiteral("--version") << int(Options::Version);
}

void TestOptions::tasks()
{
    QFETCH(QString, argument);
    QFETCH(int, task);
    Options options;
    QString problem;
    QVERIFY(Options::parse({ QStringLiteral("program"), argument }, &options, &problem));
    QCOMPARE(int(options.task), task);
}

void TestOptions::wrongOnesAreNamed_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("named");
    const auto row = [](const char *arguments, const char *named) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << QString::fromLatin1(named);
    };
    row("--explode", "explode");
    row("radio", "\"radio\"");
    row("--scenario", "scenario");
    row("--speed fast", "\"fast\"");
    row("--speed -1", "\"-1\"");
    row("--speed 1001", "\"1001\"");
    row("--speed nan", "\"nan\"");
    row("--seed -1", "\"-1\"");
    row("--seed 4294967296", "from 0 to 4294967295, found \"4294967296\"");
    row("--seed x", "\"x\"");
    row("--broker-port 0", "\"0\"");
    row("--broker-port 65536", "\"65536\"");
    row("--image-port -1", "\"-1\"");
    row("--web-port http", "\"http\"");
    row("--zone Kitchen", "\"Kitchen\"");
}

void TestOptions::wrongOnesAreNamed()
{
    QFETCH(QString, arguments);
    QFETCH(QString, named);
    Options options;
    QString problem;
    QVERIFY(!Options::parse(
        (QStringLiteral("program ") + arguments).split(QLatin1Char(' ')), &options, &problem));
    QVERIFY2(problem.contains(named), qPrintable(problem));
}

void TestOptions::helpNamesEveryOption()
{
    const QString help = Options::helpText();
    const char *const options[] = { "--list", "--scenario", "--speed", "--seed", "--broker-port",
        "--image-port", "--web-port", "--zone", "--help", "--version", "velunor-simulator/fault",
        "core_lost", "Exit status" };
    for (const char *const option : options)
        QVERIFY2(help.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(TestOptions)
#include "tst_options.moc"
