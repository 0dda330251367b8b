// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/statistics.h"

#include <QtTest>

class TestStatistics : public QObject {
    Q_OBJECT

private slots:
    void quantileLeavesItsPartBelow_data();
    void quantileLeavesItsPartBelow();
    void medianIsOneOfTheSamples();
};

void TestStatistics::quantileLeavesItsPartBelow_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("part");
    QTest::addColumn<double>("expected");
    QTest::newRow("one sample") << 1 << 0.99 << 1.0;
    QTest::newRow("none of it") << 5 << 0.0 << 1.0;
    QTest::newRow("all of it") << 5 << 1.0 << 5.0;
    QTest::newRow("half of an odd number") << 5 << 0.5 << 3.0;
    QTest::newRow("half of an even number") << 4 << 0.5 << 2.0;
    QTest::newRow("one in a hundred above") << 100 << 0.99 << 99.0;
    QTest::newRow("too few for one in a hundred") << 99 << 0.99 << 99.0;
}

void TestStatistics::quantileLeavesItsPartBelow()
{
    QFETCH(int, samples);
    QFETCH(double, part);
    QVector<double> numbers;
    for (int i = samples; i > 0; --i) // not sorted
        numbers.append(i);
    QTEST(quantile(numbers, part), "expected");
}

void TestStatistics::medianIsOneOfTheSamples()
{
    QCOMPARE(median({ 9, -1, 4 }), 4.0);
    QCOMPARE(median({ 7, 7, 1, 7 }), 7.0);
}

QTEST_APPLESS_MAIN(TestStatistics)
#include "tst_statistics.moc"
