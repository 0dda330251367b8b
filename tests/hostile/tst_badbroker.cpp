// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "oursalone.h"
#include "ordeal.h"
#include "simulator/services/topics.h"

using namespace PageNames;

namespace {

constexpr int Subscriptions = 7;
/** In bytes after the head: what four digits of seven bits hold. */
constexpr int LargestPacket = 268435455;
constexpr int Chunk = 1 << 20;

QByteArray message(const QString &topic, const QByteArray &payload)
{
    return FakeBroker::message(topic.toUtf8(), payload);
}

/**
 * What makes the program show its player, a packet each. A scenario's opening needs a broker that
 * keeps messages; this one sends what it is told to.
 */
QList<QByteArray> opening()
{
    return { message(Topics::core("coreDetected"), "true"),
        message(Topics::availableZones(), R"([{"id":"z1","name":"Kitchen"}])"),
        message(Topics::zone("z1", "name"), "Kitchen"),
        message(Topics::zone("z1", "state"), "playing"),
        message(Topics::zone("z1", "is_play_allowed"), "true") };
}

QByteArray song(const QByteArray &title)
{
    return message(Topics::zone("z1", "nowPlaying/song"), title);
}

} // namespace

/** A broker that goes, stands still, refuses, says too much or stops in the middle of a word. */
class TestBadBroker : public Ordeal {
    Q_OBJECT

private slots:
    void goes_data();
    void goes();
    void standsStill();
    void standsStillAtTheEnd();
    void neverAnswers();
    void refuses_data();
    void refuses();
    void speaksInPieces();
    void stopsInTheMiddle_data();
    void stopsInTheMiddle();
    void floods();
    void floodsAtTheEnd();
    void sendsAHugePacket_data();
    void sendsAHugePacket();

private:
    bool startPlayerAt(FakeBroker &broker);
    bool showsSong(const QString &title)
    {
        return waitUntil([&] { return house().songOnView() == title; });
    }
};

void TestBadBroker::goes_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("stopped") << false;
    QTest::newRow("killed") << true;
}

void TestBadBroker::goes()
{
    QFETCH(bool, killed);
    QVERIFY(startPlayer());
    QVERIFY(killed ? house().broker.kill() : house().broker.stop());
    QVERIFY(house().waitForPage(Failure));
    QVERIFY(comesThrough(Failure, UsualBound));
}

void TestBadBroker::standsStill()
{
    QVERIFY(startPlayer());
    house().broker.freeze();
    QVERIFY(answersTouches(Player));
    for (int i = 0; i < 20; ++i)
        QVERIFY(probe().tap("playPause"));
    house().broker.thaw();
    // What was said meanwhile arrives, and what is said to us is heard.
    QTRY_COMPARE_WITH_TIMEOUT(house().commands().size(), 20, PatienceMs);
    house().publishZone("nowPlaying/song", "after");
    QVERIFY(showsSong("after"));
    QVERIFY(comesThrough(Player, UsualBound));
}

void TestBadBroker::standsStillAtTheEnd()
{
    QVERIFY(startPlayer());
    house().broker.freeze();
    QVERIFY(probe().tap("playPause")); // which is never confirmed
    QVERIFY(endsInTime());
}

void TestBadBroker::neverAnswers()
{
    FakeBroker broker(1883);
    broker.setAnswer({});
    QVERIFY(startProgram(Failure));
    QTRY_COMPARE_WITH_TIMEOUT(broker.count(FakeBroker::Connect), 1, PatienceMs);
    QVERIFY(comesThrough(Failure, UsualBound));
}

void TestBadBroker::refuses_data()
{
    QTest::addColumn<int>("code");
    for (const int code : { 1, 2, 3, 4, 5, 6, 127, 128, 255 })
        QTest::addRow("%d", code) << code;
}

void TestBadBroker::refuses()
{
    QFETCH(int, code);
    FakeBroker broker(1883);
    broker.setAnswer(QByteArray::fromHex("200200") + char(code));
    QVERIFY(startProgram(Failure));
    QVERIFY(program().waitForLine(Line::critical("Mqtt::error() ").andMore()));
    QTRY_VERIFY_WITH_TIMEOUT(broker.isDeserted(), PatienceMs);
    QVERIFY(comesThrough(Failure, UsualBound));
    QCOMPARE(broker.connections(), 1);
}

void TestBadBroker::speaksInPieces()
{
    FakeBroker broker(1883);
    QVERIFY(startPlayerAt(broker));
    const QByteArray packet = song("whole");
    for (int cut = 1; cut < packet.size(); ++cut) {
        const QByteArray mark = QByteArray::number(cut);
        broker.send(packet.left(cut));
        QVERIFY(!probe().picture().isNull()); // the first piece has been read by now
        broker.send(packet.mid(cut) + song(mark));
        QVERIFY(showsSong(mark));
    }
    QCOMPARE(program().count(Line::debug("Mqtt::updateZone() setting property nowPlaying_song to "
                                         "value: whole")),
        packet.size() - 1);
    QVERIFY(comesThrough(Player, UsualBound));
}

void TestBadBroker::stopsInTheMiddle_data()
{
    QTest::addColumn<QByteArray>("answer"); // to the request to connect
    QTest::addColumn<QByteArray>("last");   // what comes after it, and then the end
    const QByteArray acceptance = FakeBroker::acceptance();
    for (int size = 0; size < acceptance.size(); ++size)
        QTest::addRow("acceptance, %d bytes", size) << acceptance.left(size) << QByteArray();
    const QByteArray small = FakeBroker::message("t", "x");
    for (int size = 1; size < small.size(); ++size)
        QTest::addRow("message, %d bytes", size) << acceptance << small.left(size);
    const QByteArray subscribed = QByteArray::fromHex("9003000100");
    for (int size = 1; size < subscribed.size(); ++size)
        QTest::addRow("answer to a subscription, %d bytes", size)
            << acceptance << subscribed.left(size);
}

void TestBadBroker::stopsInTheMiddle()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, last);
    FakeBroker broker(1883);
    broker.setAnswer(answer + last);
    broker.setClosing(true);
    QVERIFY(startProgram(Failure));
    QVERIFY(program().waitForLine(Line::critical("Mqtt::error() ").andMore()));
    QVERIFY(comesThrough(Failure, UsualBound));
}

void TestBadBroker::floods()
{
    FakeBroker broker(1883);
    program().unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(startPlayerAt(broker));
    QByteArray flood;
    for (int i = 0; i < 1000; ++i)
        flood += song("flood " + QByteArray::number(i));
    broker.pour(flood, 1 << 20);
    for (int round = 0; round < 3; ++round)
        QVERIFY(answersTouches(Player));
    QVERIFY(broker.isPouring());
    broker.pour({}, 0);
    broker.send(song("dry"));
    // What is under way by then is all followed: megabytes of it, on a busy machine for long.
    QVERIFY(waitUntil([&] { return house().songOnView() == "dry"; }, 10 * PatienceMs));
    QVERIFY(comesThrough(Player, { 16, 8 }));
}

void TestBadBroker::floodsAtTheEnd()
{
    FakeBroker broker(1883);
    program().unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(startPlayerAt(broker));
    broker.pour(song("flood").repeated(1000), 1 << 20);
    QVERIFY(answersTouches(Player));
    QVERIFY(endsInTime());
    QVERIFY(broker.isPouring());
}

void TestBadBroker::sendsAHugePacket_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<bool>("whole");
    const QByteArray topic = Topics::zone("z1", "nowPlaying/song").toUtf8();
    const QByteArray huge = FakeBroker::messageHead(topic, LargestPacket - 2 - topic.size());
    QTest::newRow("announced") << huge << false;
    QTest::newRow("sent") << huge << true;
}

void TestBadBroker::sendsAHugePacket()
{
    OURS_ALONE("a limit to what a message may take");
    QFETCH(QByteArray, head);
    QFETCH(bool, whole);
    FakeBroker broker(1883);
    QVERIFY(startPlayerAt(broker));
    broker.send(song("before") + head);
    QVERIFY(showsSong("before"));
    if (whole) {
        const int size = LargestPacket + 5 - head.size();
        broker.pour(QByteArray(Chunk, 'x'), size / Chunk);
        QVERIFY(answersTouches(Player));
        QTRY_VERIFY_WITH_TIMEOUT(!broker.isPouring(), PatienceMs);
        broker.send(QByteArray(size % Chunk, 'x') + song("after"));
        QVERIFY(showsSong("after"));
    }
    QVERIFY(comesThrough(Player, { 16, 8 }));
}

bool TestBadBroker::startPlayerAt(FakeBroker &broker)
{
    if (!program().startAndWait()
        || !waitUntil([&] { return broker.count(FakeBroker::Subscribe) == Subscriptions; }))
        return false;
    for (const QByteArray &packet : opening())
        broker.send(packet);
    if (!house().skipWelcome() || !house().waitForPage(Player))
        return false;
    begin();
    return true;
}

QTEST_GUILESS_MAIN(TestBadBroker)
#include "tst_badbroker.moc"
