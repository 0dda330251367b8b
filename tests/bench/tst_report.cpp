// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

Q_DECLARE_METATYPE(Report::Goal)

class TestReport : public QObject {
    Q_OBJECT

private slots:
    void aRatioIsComparedWithItsGoal_data();
    void aRatioIsComparedWithItsGoal();
    void aLimitIsComparedWithTheFigure_data();
    void aLimitIsComparedWithTheFigure();
    void aFigureHasNoVerdict();
    void rowsBelongToTheirMeasurement();
    void aFileThatCannotBeWrittenIsToldOf();

private:
    static QJsonArray written(const Report &report);
};

QJsonArray TestReport::written(const Report &report)
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("figures.json")));
    if (!report.write(file.fileName()) || !file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).array();
}

void TestReport::aRatioIsComparedWithItsGoal_data()
{
    QTest::addColumn<double>("ours");
    QTest::addColumn<Report::Goal>("goal");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("verdict");
    QTest::newRow("below") << 110.0 << Report::AtMost << "<= 1.20"
                           << "met";
    QTest::newRow("just") << 120.0 << Report::AtMost << "<= 1.20"
                          << "met";
    QTest::newRow("above") << 121.0 << Report::AtMost << "<= 1.20"
                           << "MISSED";
    QTest::newRow("enough") << 120.0 << Report::AtLeast << ">= 1.20"
                            << "met";
    QTest::newRow("too little") << 119.0 << Report::AtLeast << ">= 1.20"
                                << "MISSED";
}

void TestReport::aRatioIsComparedWithItsGoal()
{
    QFETCH(double, ours);
    QFETCH(Report::Goal, goal);
    Report report;
    report.addRatio(QStringLiteral("start"), QStringLiteral("ms"), ours, 100, goal, 1.2);
    const QJsonObject row = written(report).first().toObject();
    QTEST(row["goal"].toString(), "text");
    QTEST(row["verdict"].toString(), "verdict");
    QCOMPARE(row["ours"].toString(), QString::number(ours) + " ms");
    QCOMPARE(row["reference"].toString(), QString("100 ms"));
    QCOMPARE(row["compared"].toDouble(), ours / 100);
    QCOMPARE(row["limit"].toDouble(), 1.2);
}

void TestReport::aLimitIsComparedWithTheFigure_data()
{
    QTest::addColumn<double>("figure");
    QTest::addColumn<double>("limit");
    QTest::addColumn<QString>("verdict");
    QTest::newRow("nothing where nothing may be") << 0.0 << 0.0 << "met";
    QTest::newRow("something where nothing may be") << 1.0 << 0.0 << "MISSED";
    QTest::newRow("as much as may be") << 24.0 << 24.0 << "met";
}

void TestReport::aLimitIsComparedWithTheFigure()
{
    QFETCH(double, figure);
    QFETCH(double, limit);
    Report report;
    report.addLimited(QStringLiteral("frames"), QString(), figure, limit);
    const QJsonObject row = written(report).first().toObject();
    QTEST(row["verdict"].toString(), "verdict");
    QCOMPARE(row["ours"].toString(), QString::number(figure));
    QCOMPARE(row["reference"].toString(), QString());
}

void TestReport::aFigureHasNoVerdict()
{
    Report report;
    report.addFigure(QStringLiteral("alone"), QStringLiteral("ms"), 3.14159);
    report.addFigure(QStringLiteral("beside"), QStringLiteral("ms"), 30, 20);
    const QJsonArray rows = written(report);
    QCOMPARE(rows[0]["ours"].toString(), QString("3.14 ms"));
    QCOMPARE(rows[0]["ratio"].toString(), QString());
    QCOMPARE(rows[1]["reference"].toString(), QString("20.0 ms"));
    QCOMPARE(rows[1]["ratio"].toString(), QString("1.50"));
    for (const QJsonValue &row : rows) {
        QCOMPARE(row["verdict"].toString(), QString());
        QVERIFY(!row.toObject().contains(QStringLiteral("limit")));
    }
}

void TestReport::rowsBelongToTheirMeasurement()
{
    Report report;
    report.begin(QStringLiteral("startup"));
    report.addFigure(QStringLiteral("a"), QString(), 1);
    report.addLimited(QStringLiteral("b"), QString(), 1, 1);
    report.begin(QStringLiteral("idle"));
    report.addRatio(QStringLiteral("c"), QString(), 1, 1, Report::AtMost, 1);
    const QJsonArray rows = written(report);
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows[0]["measurement"].toString(), QString("startup"));
    QCOMPARE(rows[1]["measurement"].toString(), QString("startup"));
    QCOMPARE(rows[2]["measurement"].toString(), QString("idle"));
}

void TestReport::aFileThatCannotBeWrittenIsToldOf()
{
    QTest::ignoreMessage(QtWarningMsg, "cannot write /nowhere/figures.json");
    QVERIFY(!Report().write(QStringLiteral("/nowhere/figures.json")));
}

QTEST_APPLESS_MAIN(TestReport)
#include "tst_report.moc"
