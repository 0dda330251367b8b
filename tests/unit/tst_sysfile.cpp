// SPDX-License-Identifier: GPL-3.0-or-later
#include "sysfile.h"
#include "logcapture.h"
#include "metatable.h"
#include "textfile.h"
#include "writecounter.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <unistd.h>

class TestSysFile : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metaObjectIsTheInterface();
    void constructorsLogTheirLine();
    void writesTheNumberAlone_data();
    void writesTheNumberAlone();
    void eachWriteTruncatesAndCloses();
    void noDescriptorStaysOpen();
    void withoutANameEachWriteWarns();
    void missingAttributeIsNotMade();
    void directoryIsNotWritten();
    void missingPermissionWarns();
    void canBeUsedAgainAfterAFailure();

private:
    QString path() const { return m_directory->filePath(QStringLiteral("brightness")); }
    void make(const QByteArray &text) const { writeTextFile(path(), text); }
    QByteArray text() const { return readTextFile(path()); }

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<QTemporaryDir> m_directory;
};

void TestSysFile::init()
{
    m_log.reset(new LogCapture);
    m_directory.reset(new QTemporaryDir);
    QVERIFY(m_directory->isValid());
}

void TestSysFile::cleanup()
{
    m_directory.reset();
    m_log.reset();
}

void TestSysFile::metaObjectIsTheInterface()
{
    const QMetaObject &meta = SysFile::staticMetaObject;
    QCOMPARE(meta.superClass(), &QFile::staticMetaObject);
    QCOMPARE(propertyTable(meta), QStringList());
    QCOMPARE(methodTable(meta), QStringList());
    QCOMPARE(sizeof(SysFile), sizeof(QFile));
}

void TestSysFile::constructorsLogTheirLine()
{
    const QString line = constructorLine(QStringLiteral("SysFile"));
    const SysFile unnamed;
    QCOMPARE(m_log->take(), QStringList({ line }));
    QCOMPARE(unnamed.fileName(), QString());
    const SysFile named(path());
    QCOMPARE(m_log->take(), QStringList({ line }));
    QCOMPARE(named.fileName(), path());
    QVERIFY(!named.isOpen());
}

void TestSysFile::writesTheNumberAlone_data()
{
    QTest::addColumn<uint>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("zero") << 0u << QByteArray("0");
    QTest::newRow("one digit") << 7u << QByteArray("7");
    QTest::newRow("three digits") << 254u << QByteArray("254");
    QTest::newRow("no grouping") << 1234567u << QByteArray("1234567");
    QTest::newRow("largest") << 4294967295u << QByteArray("4294967295");
}

void TestSysFile::writesTheNumberAlone()
{
    QFETCH(uint, value);
    make("a longer text from before");
    SysFile file;
    file.setFileName(path());
    m_log->clear();
    file.write(value);
    QTEST(text(), "text");
    QCOMPARE(m_log->take(), QStringList());
    QVERIFY(!file.isOpen());
}

void TestSysFile::eachWriteTruncatesAndCloses()
{
    make(QByteArray());
    WriteCounter writes(path());
    SysFile file(path());
    QCOMPARE(writes.take(), 0);
    file.write(254);
    QCOMPARE(writes.take(), 1);
    file.write(254);
    QCOMPARE(writes.take(), 1);
    QCOMPARE(text(), QByteArray("254"));
    file.write(3);
    QCOMPARE(text(), QByteArray("3"));
}

void TestSysFile::noDescriptorStaysOpen()
{
    make(QByteArray());
    SysFile file(path());
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    const int before = descriptors.entryList(QDir::AllEntries | QDir::System).size();
    for (uint i = 0; i < 10; ++i)
        file.write(i);
    QCOMPARE(descriptors.entryList(QDir::AllEntries | QDir::System).size(), before);
}

void TestSysFile::withoutANameEachWriteWarns()
{
    SysFile file;
    m_log->clear();
    file.write(1);
    file.write(1);
    QCOMPARE(m_log->take(),
        QStringList({ "warning: SysFile::write() failed to open file: ",
            "warning: SysFile::write() failed to open file: " }));
}

void TestSysFile::missingAttributeIsNotMade()
{
    SysFile file(path());
    m_log->clear();
    file.write(1);
    QCOMPARE(
        m_log->take(), QStringList({ "warning: SysFile::write() failed to open file: " + path() }));
    QVERIFY(!QFile::exists(path()));
}

void TestSysFile::directoryIsNotWritten()
{
    SysFile file(m_directory->path());
    m_log->clear();
    file.write(1);
    QCOMPARE(m_log->take(),
        QStringList({ "warning: SysFile::write() failed to open file: " + m_directory->path() }));
}

void TestSysFile::missingPermissionWarns()
{
    make("254");
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner));
    SysFile file(path());
    m_log->clear();
    // Permissions do not stop root.
    constexpr uid_t Nobody = 65534;
    const bool isRoot = ::geteuid() == 0;
    if (isRoot)
        QCOMPARE(::seteuid(Nobody), 0);
    file.write(1);
    if (isRoot)
        QCOMPARE(::seteuid(0), 0);
    QCOMPARE(
        m_log->take(), QStringList({ "warning: SysFile::write() failed to open file: " + path() }));
    QCOMPARE(text(), QByteArray("254"));
}

void TestSysFile::canBeUsedAgainAfterAFailure()
{
    SysFile file(path());
    m_log->clear();
    file.write(1);
    QCOMPARE(m_log->take().size(), 1);
    make(QByteArray());
    file.write(2);
    QCOMPARE(text(), QByteArray("2"));
    QCOMPARE(m_log->take(), QStringList());
}

QTEST_GUILESS_MAIN(TestSysFile)
#include "tst_sysfile.moc"
