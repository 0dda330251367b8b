// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/framerecords.h"

#include <QtTest>

class TestFrameRecords : public QObject {
    Q_OBJECT

private slots:
    void readsTimeAndPicture();
    void aLineMayComeInPieces();
    void completeIsTheFirstThatStays_data();
    void completeIsTheFirstThatStays();
    void theOldPictureIsLeftOnce_data();
    void theOldPictureIsLeftOnce();
    void clearingKeepsWhatHasBegun();
};

namespace {

qint64 nanoseconds(const Frame &frame)
{
    return std::chrono::nanoseconds(frame.time.time_since_epoch()).count();
}

/** A frame each nanosecond, from the first one on, each with the picture of that letter. */
FrameRecords drawn(const QByteArray &letters)
{
    FrameRecords frames;
    for (int i = 0; i < letters.size(); ++i)
        frames.append(
            QByteArray::number(i + 1) + ' ' + QByteArray::number(letters.at(i), 16) + '\n');
    return frames;
}

} // namespace

void TestFrameRecords::readsTimeAndPicture()
{
    FrameRecords frames;
    QVERIFY(frames.isEmpty());
    frames.append("12000000034 00000000000000ff\n12000000035 ffffffffffffffff\n");
    QCOMPARE(frames.count(), 2);
    QCOMPARE(nanoseconds(frames.complete()), Q_INT64_C(12000000035));
    QCOMPARE(frames.last().picture, Q_UINT64_C(0xffffffffffffffff));
    QCOMPARE(frames.firstOtherThan(Q_UINT64_C(0xffffffffffffffff)).picture, Q_UINT64_C(255));
}

void TestFrameRecords::aLineMayComeInPieces()
{
    const QByteArray text = "7 0a\n8 0b\n";
    for (int cut = 0; cut <= text.size(); ++cut) {
        FrameRecords frames;
        frames.append(text.left(cut));
        frames.append(text.mid(cut));
        QCOMPARE(frames.count(), 2);
        QCOMPARE(nanoseconds(frames.last()), Q_INT64_C(8));
        QCOMPARE(frames.last().picture, Q_UINT64_C(11));
    }
}

void TestFrameRecords::completeIsTheFirstThatStays_data()
{
    QTest::addColumn<QByteArray>("pictures");
    QTest::addColumn<int>("complete");
    QTest::newRow("a single frame") << QByteArray("a") << 1;
    QTest::newRow("nothing but the same") << QByteArray("aaa") << 1;
    QTest::newRow("what comes last") << QByteArray("abc") << 3;
    QTest::newRow("drawn again and again") << QByteArray("abccc") << 3;
    QTest::newRow("there already, and gone again") << QByteArray("cabc") << 4;
}

void TestFrameRecords::completeIsTheFirstThatStays()
{
    QFETCH(QByteArray, pictures);
    QTEST(int(nanoseconds(drawn(pictures).complete())), "complete");
}

void TestFrameRecords::theOldPictureIsLeftOnce_data()
{
    QTest::addColumn<QByteArray>("pictures");
    QTest::addColumn<int>("left");
    QTest::newRow("at once") << QByteArray("bc") << 1;
    QTest::newRow("drawn once more") << QByteArray("abc") << 2;
    QTest::newRow("comes back") << QByteArray("bac") << 1;
    QTest::newRow("never left") << QByteArray("aaa") << 3;
}

void TestFrameRecords::theOldPictureIsLeftOnce()
{
    QFETCH(QByteArray, pictures);
    QTEST(int(nanoseconds(drawn(pictures).firstOtherThan('a'))), "left");
}

void TestFrameRecords::clearingKeepsWhatHasBegun()
{
    FrameRecords frames;
    frames.append("1 0a\n2 0");
    frames.clear();
    QVERIFY(frames.isEmpty());
    frames.append("b\n");
    QCOMPARE(frames.count(), 1);
    QCOMPARE(frames.last().picture, Q_UINT64_C(11));
}

QTEST_APPLESS_MAIN(TestFrameRecords)
#include "tst_framerecords.moc"
