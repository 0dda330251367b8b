// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/fakepanel.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class TestFakePanel : public QObject {
    Q_OBJECT

private slots:
    void tellsWhatIsWritten();
    void tellsAValueOnce();
    void directoryThatCannotBeMade();

private:
    /** Writes as the display does: opens, which empties the attribute, and writes. */
    static bool write(const QTemporaryDir &directory, const char *attribute, const char *value);
};

bool TestFakePanel::write(const QTemporaryDir &directory, const char *attribute, const char *value)
{
    QFile file(directory.filePath(QStringLiteral("simulated-panel/") + QLatin1String(attribute)));
    return file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly) && file.write(value) > 0;
}

void TestFakePanel::tellsWhatIsWritten()
{
    const QTemporaryDir directory;
    FakePanel panel;
    QString problem;
    QVERIFY(panel.create(directory.path(), &problem));
    QSignalSpy told(&panel, &FakePanel::told);

    QVERIFY(write(directory, "brightness", "150"));
    QTRY_COMPARE(told.count(), 1);
    QCOMPARE(told.takeFirst().first().toString(), QStringLiteral("panel: brightness 150"));
    QVERIFY(write(directory, "bl_power", "1"));
    QTRY_COMPARE(told.count(), 1);
    QCOMPARE(told.takeFirst().first().toString(), QStringLiteral("panel: dark"));
    QVERIFY(write(directory, "bl_power", "0"));
    QTRY_COMPARE(told.count(), 1);
    QCOMPARE(told.takeFirst().first().toString(), QStringLiteral("panel: lit"));
}

void TestFakePanel::tellsAValueOnce()
{
    const QTemporaryDir directory;
    FakePanel panel;
    QString problem;
    QVERIFY(panel.create(directory.path(), &problem));
    QSignalSpy told(&panel, &FakePanel::told);
    QVERIFY(write(directory, "brightness", "31"));
    QTRY_COMPARE(told.count(), 1);
    QVERIFY(write(directory, "brightness", "31"));
    QVERIFY(write(directory, "bl_power", "0"));
    QTRY_COMPARE(told.count(), 2);
    QCOMPARE(told.last().first().toString(), QStringLiteral("panel: lit"));
}

void TestFakePanel::directoryThatCannotBeMade()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    FakePanel panel;
    QString problem;
    QVERIFY(!panel.create(file.fileName(), &problem));
    QVERIFY(problem.startsWith(QStringLiteral("--panel: cannot make ") + file.fileName()));
}

QTEST_GUILESS_MAIN(TestFakePanel)

#include "tst_fakepanel.moc"
