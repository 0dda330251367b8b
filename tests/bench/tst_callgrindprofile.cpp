// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/callgrindprofile.h"

#include <QtTest>

class TestCallgrindProfile : public QObject {
    Q_OBJECT

private slots:
    void readsNameAndTotal();
    void whatIsNoProfileCountsNothing_data();
    void whatIsNoProfileCountsNothing();
};

void TestCallgrindProfile::readsNameAndTotal()
{
    const CallgrindProfile profile = CallgrindProfile::parsed(
        "# callgrind format\nversion: 1\npid: 7\ncmd:  touchui_message_cost 10 1\n\n"
        "desc: Timerange: Basic block 0 - 9\ndesc: Trigger: Client Request: messages 10\n\n"
        "positions: line\nevents: Ir\nsummary: 123\n\nfn=(1) totals\n1 4\n\ntotals: 5000000000\n");
    QCOMPARE(profile.name, QByteArray("messages 10"));
    QCOMPARE(profile.instructions, Q_INT64_C(5000000000));
}

void TestCallgrindProfile::whatIsNoProfileCountsNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut before the total") << QByteArray("events: Ir\nsummary: 123\n");
    QTest::newRow("ended, not dumped")
        << QByteArray("desc: Trigger: Program termination\ntotals: 0\n");
}

void TestCallgrindProfile::whatIsNoProfileCountsNothing()
{
    QFETCH(QByteArray, text);
    const CallgrindProfile profile = CallgrindProfile::parsed(text);
    QCOMPARE(profile.name, QByteArray());
    QCOMPARE(profile.instructions, Q_INT64_C(0));
}

QTEST_APPLESS_MAIN(TestCallgrindProfile)
#include "tst_callgrindprofile.moc"
