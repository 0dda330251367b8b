// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/switchtimes.h"

#include <QtTest>

class TestSwitchTimes : public QObject {
    Q_OBJECT

private slots:
    void namesKeepTheirOrder();
    void eachFigureHasItsOwnMedian();
};

void TestSwitchTimes::namesKeepTheirOrder()
{
    SwitchTimes times;
    for (const char *name : { "there", "back", "there", "again" })
        times.add(QString::fromLatin1(name), { 1, 1 });
    QCOMPARE(times.names(), QStringList({ "there", "back", "again" }));
}

void TestSwitchTimes::eachFigureHasItsOwnMedian()
{
    SwitchTimes times;
    times.add("there", { 10, 3 });
    times.add("there", { 30, 1 });
    times.add("back", { 99, 99 });
    times.add("there", { 20, 2 });
    times.add("there", { 11, 9 });
    times.add("there", { 12, 8 });
    QCOMPARE(times.median("there").untilComplete, 12.0);
    QCOMPARE(times.median("there").neitherShown, 3.0);
}

QTEST_APPLESS_MAIN(TestSwitchTimes)
#include "tst_switchtimes.moc"
