// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "metatable.h"
#include "roon.h"

#include <QHostInfo>
#include <QSignalSpy>
#include <QTest>

class TestRoon : public QObject {
    Q_OBJECT

private slots:
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void metaObjectIsTheInterface();
    void constructorLogsItsLine();
    void startsEmpty();
    void detectionNotifiesOnEveryWrite();
    void textsAreStoredSilently_data();
    void textsAreStoredSilently();
    void hostNameIsTheMachines();
    void instanceIsOneObject();

private:
    QScopedPointer<LogCapture> m_log;
};

void TestRoon::metaObjectIsTheInterface()
{
    const QMetaObject &meta = Roon::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta),
        QStringList({ "bool coreDetected read write coreDetectionChanged()",
            "QString serverName read write", "QString id read write",
            "QString serverUrl read write", "QString version read write",
            "QString ipAddress read constant", "QString localHostName read constant" }));
    QCOMPARE(methodTable(meta), QStringList({ "public signal coreDetectionChanged()" }));
    QCOMPARE(enumeratorTable(meta), QStringList());
}

void TestRoon::constructorLogsItsLine()
{
    const Roon roon;
    QCOMPARE(m_log->take(), QStringList({ constructorLine(QStringLiteral("Roon")) }));
}

void TestRoon::startsEmpty()
{
    const Roon roon;
    QCOMPARE(roon.coreDetected(), false);
    QCOMPARE(roon.serverName(), QString());
    QCOMPARE(roon.id(), QString());
    QCOMPARE(roon.serverUrl(), QString());
    QCOMPARE(roon.version(), QString());
    QVERIFY(!roon.parent());
}

void TestRoon::detectionNotifiesOnEveryWrite()
{
    Roon roon;
    QSignalSpy changed(&roon, &Roon::coreDetectionChanged);
    QVERIFY(roon.setProperty("coreDetected", false));
    QCOMPARE(changed.count(), 1);
    QVERIFY(roon.setProperty("coreDetected", false));
    QCOMPARE(changed.count(), 2);
    QVERIFY(roon.setProperty("coreDetected", true));
    QCOMPARE(changed.count(), 3);
    QCOMPARE(roon.coreDetected(), true);
}

void TestRoon::textsAreStoredSilently_data()
{
    QTest::addColumn<QByteArray>("property");
    for (const char *name : { "serverName", "id", "serverUrl", "version" })
        QTest::newRow(name) << QByteArray(name);
}

void TestRoon::textsAreStoredSilently()
{
    QFETCH(QByteArray, property);
    Roon roon;
    QSignalSpy changed(&roon, &Roon::coreDetectionChanged);
    m_log->clear();
    for (const QString &text : { QString(), QStringLiteral("Küche"), QStringLiteral("Küche"),
             QStringLiteral("other"), QString() }) {
        QVERIFY(roon.setProperty(property, text));
        QCOMPARE(roon.property(property).toString(), text);
    }
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_log->take(), QStringList());
}

void TestRoon::hostNameIsTheMachines()
{
    QCOMPARE(Roon().localHostName(), QHostInfo::localHostName());
    QCOMPARE(Roon().property("localHostName").toString(), QHostInfo::localHostName());
}

void TestRoon::instanceIsOneObject()
{
    QVERIFY(Roon::instance());
    QCOMPARE(Roon::instance(), Roon::instance());
    QVERIFY(!Roon::instance()->parent());
}

QTEST_GUILESS_MAIN(TestRoon)
#include "tst_roon.moc"
