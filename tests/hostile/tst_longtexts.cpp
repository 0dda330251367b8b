// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"

#include <QElapsedTimer>

#include <functional>

using namespace PageNames;

namespace {

const QByteArray Long(1 << 20, 'W');

using Say = std::function<void(Appliance &)>;

} // namespace

Q_DECLARE_METATYPE(Say)

/** Texts of a megabyte, wherever a text may come from. */
class TestLongTexts : public Ordeal {
    Q_OBJECT

private slots:
    void doNoHarm_data();
    void doNoHarm();

private:
    bool shows(const QString &line, const QString &text)
    {
        return waitUntil(
            [&] { return probe().property(Probe::Target("label").inside(line), "text") == text; });
    }
};

void TestLongTexts::doNoHarm_data()
{
    QTest::addColumn<Say>("say");
    QTest::addColumn<QString>("page"); // on which the program is then
    const auto row = [](const char *name, const QString &page, const Say &say) {
        QTest::newRow(name) << say << page;
    };
    const auto zone = [&](const char *name, const char *key) {
        row(name, Player, [key](Appliance &house) { house.publishZone(key, Long); });
    };
    zone("song", "nowPlaying/song");
    zone("artist", "nowPlaying/artist");
    zone("album", "nowPlaying/album");
    zone("state", "state");
    zone("image key", "nowPlaying/imageKey");
    zone("number", "nowPlaying/length");
    zone("outputs", "outputs");
    zone("unknown key", "nonsense");
    row("song, not scrolling", Player, [](Appliance &house) {
        house.publishSetting("touchscreen_scrolling", "false");
        house.publishZone("nowPlaying/song", Long);
    });
    row("song of lines", Player, [](Appliance &house) {
        house.publishZone("nowPlaying/song", QByteArray("W\n").repeated(Long.size() / 2));
    });
    row("zone name", Player, [](Appliance &house) {
        house.publishZones(
            R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":")" + Long + R"("}])");
        house.publishZone("name", Long);
        house.publishZone("name", "Kitchen");
    });
    row("name of the only zone", NotFound, [](Appliance &house) {
        house.publishZones(R"([{"id":"z2","name":")" + Long + R"("}])");
        house.publishCore("coreDetected", "true");
    });
    row("clock colour", Player,
        [](Appliance &house) { house.publishSetting("touchscreen_clockcolor", Long); });
    row("custom clock colour", Player, [](Appliance &house) {
        house.publishSetting("touchscreen_clockcolor", "custom");
        house.publishSetting("touchscreen_custom_clockcolor", Long);
    });
    row("command", Player,
        [](Appliance &house) { house.sendCommand(R"({"command":")" + Long + R"("})"); });
    row("deep command", Player,
        [](Appliance &house) { house.sendCommand(QByteArray(Long.size(), '[')); });
    row("the core's address", Player, [](Appliance &house) {
        house.publishCore("serverUrl", Long);
        house.publishZone("nowPlaying/imageKey", "cover");
    });
}

void TestLongTexts::doNoHarm()
{
    QFETCH(Say, say);
    QFETCH(QString, page);
    house().broker.allowUndocumented(); // one says what nobody understands
    QVERIFY(startPlayer());
    QElapsedTimer time;
    time.start();
    say(house());
    QVERIFY(house().handled());
    qInfo("handled after %lld ms", static_cast<long long>(time.elapsed()));
    QVERIFY(house().waitForPage(page));
    QVERIFY(!probe().picture().isNull());
    QVERIFY(answersTouches(page));
    if (page == Player) {
        house().publishZone("nowPlaying/song", "after");
        QVERIFY(shows("songTitle", "after"));
    }
    QVERIFY(comesThrough(page, { 64, 32 }));
}

QTEST_GUILESS_MAIN(TestLongTexts)
#include "tst_longtexts.moc"
