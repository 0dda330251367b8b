// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"
#include "simulator/services/topics.h"

#include <QElapsedTimer>

using namespace PageNames;

namespace {

constexpr int Zones = 10000;

QByteArray idOf(int number)
{
    return "z" + QByteArray::number(number);
}

QByteArray nameOf(int number)
{
    return "Zone " + QByteArray::number(number).rightJustified(5, '0');
}

/** A list of that many zones, of which the first, "z1", has a name of its own. */
QByteArray zoneList(int count, const QByteArray &first)
{
    QByteArray list = R"([{"id":"z1","name":")" + first + R"("})";
    for (int i = 2; i <= count; ++i)
        list += R"(,{"id":")" + idOf(i) + R"(","name":")" + nameOf(i) + R"("})";
    return list + ']';
}

} // namespace

/** A core with ten thousand zones. */
class TestManyZones : public Ordeal {
    Q_OBJECT

private slots:
    void allSpeak_data();
    void allSpeak();
    void theChooserHoldsThem();
    void theListChangesAllTheTime();

private:
    /** Waits until the player has this on view, and prints how long it took. */
    bool showsSong(const QByteArray &song);
};

void TestManyZones::allSpeak_data()
{
    QTest::addColumn<QByteArray>("first"); // the name under which the wanted zone is listed
    QTest::addColumn<QByteArray>("outputs");
    QTest::newRow("the wanted zone by itself") << QByteArray("Kitchen") << QByteArray("[]");
    QTest::newRow("it leads a group") << QByteArray("Kitchen + Bath") << QByteArray("[]");
    QTest::newRow("it follows in a group") << QByteArray(
        "Bath + Kitchen") << QByteArray(R"([{"display_name":"Bath"},{"display_name":"Kitchen"}])");
}

void TestManyZones::allSpeak()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, outputs);
    program().unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(startPlayer());
    house().publishZone("outputs", outputs);
    house().publishZone("name", first);
    house().publishZones(zoneList(Zones, first));
    house().publishZone("nowPlaying/song", "listed");
    QVERIFY(showsSong("listed"));

    for (int i = 2; i <= Zones; ++i)
        house().services.publish(
            Topics::zone(QString::fromLatin1(idOf(i)), "nowPlaying/song"), nameOf(i), true);
    house().publishZone("nowPlaying/song", "spoken");
    QVERIFY(house().services.flush()); // so that what is slow from here on is not this test
    QVERIFY(answersTouches(Player));
    QVERIFY(showsSong("spoken"));
    QVERIFY(comesThrough(Player, { 64, 48 }));
}

void TestManyZones::theChooserHoldsThem()
{
    program().unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(startPlayer());
    house().publishZones(zoneList(Zones, "Kitchen"));
    house().publishZone("nowPlaying/song", "listed");
    QVERIFY(showsSong("listed"));
    QElapsedTimer time;
    time.start();
    QVERIFY(probe().tap("zoneNameText"));
    QVERIFY(waitUntil(
        [&] { return probe().shows(Probe::Target::text("Kitchen").inside("zoneList")); }));
    qInfo("the chooser opened after %lld ms", static_cast<long long>(time.elapsed()));
    QVERIFY(time.elapsed() <= TouchLimitMs);
    QCOMPARE(probe().property("zoneListHeader", "text"),
        QJsonValue(QString("Available Zones (%1)").arg(Zones)));

    // A finger scrolls it.
    const QPointF middle = probe().centre("zoneList");
    QVERIFY(probe().press(middle));
    for (int step = 1; step <= 6; ++step)
        QVERIFY(probe().move(middle - QPointF(0, 20 * step)));
    QVERIFY(probe().release(middle - QPointF(0, 120)));
    QTRY_VERIFY_WITH_TIMEOUT(probe().property("zoneList", "contentY").toDouble() > 0, PatienceMs);
    QVERIFY(probe().objectProperty("zoneDialog", "opened").toBool());
    // To the very end, where the last one is chosen.
    const double contentHeight = probe().property("zoneList", "contentHeight").toDouble();
    const double height = probe().property("zoneList", "height").toDouble();
    QVERIFY(probe().setObjectProperty("zoneList", "contentY", contentHeight - height));
    const Probe::Target last
        = Probe::Target::text(QString::fromLatin1(nameOf(Zones))).inside("zoneList");
    QTRY_VERIFY_WITH_TIMEOUT(probe().shows(last), PatienceMs);
    QVERIFY(!probe().picture().isNull());
    QVERIFY(probe().tap(last));
    QVERIFY(house().services.waitFor(Topics::display() + "zone", nameOf(Zones)));
    QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("zoneList"), PatienceMs);
    // It has not spoken yet.
    QVERIFY(house().waitForPage(NotFound));
    QVERIFY(comesThrough(NotFound, { 64, 48 }));
}

void TestManyZones::theListChangesAllTheTime()
{
    program().unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(startPlayer());
    for (int round = 0; round < 10; ++round) {
        house().publishZones(zoneList(round % 2 ? 1 : Zones, "Kitchen"));
        house().publishZone("nowPlaying/song", QByteArray::number(round));
    }
    QVERIFY(house().services.flush());
    QVERIFY(answersTouches(Player));
    QVERIFY(showsSong("9"));
    QVERIFY(comesThrough(Player, { 64, 32 }));
}

bool TestManyZones::showsSong(const QByteArray &song)
{
    QElapsedTimer time;
    time.start();
    const bool shown = waitUntil([&] { return house().songOnView() == QString::fromLatin1(song); });
    qInfo("\"%s\" was on view after %lld ms", song.constData(),
        static_cast<long long>(time.elapsed()));
    return shown;
}

QTEST_GUILESS_MAIN(TestManyZones)
#include "tst_manyzones.moc"
