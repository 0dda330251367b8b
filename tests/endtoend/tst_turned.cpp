// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/appliance.h"
#include "testkit/machine/display.h"
#include "testkit/machine/panelkind.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QFile>
#include <QTest>

#include <memory>

using namespace PageNames;

namespace {

const QString CommandTopic = Topics::command();
const QString ZoneTopic = Topics::display() + "zone";
const QString SettingsFile = "/data/velunor-touch.ini";

QByteArray command(const QByteArray &text)
{
    return R"({"command":)" + text + R"(,"zone_id":"z1"})";
}

bool isAt(const QPointF &one, const QPointF &other)
{
    return qAbs(one.x() - other.x()) <= 1 && qAbs(one.y() - other.y()) <= 1;
}

} // namespace

/**
 * Every panel that the program is meant for, with a display server on which the window fills the
 * real screen: things lie where the finger looks for them, and a touch there has its effect.
 */
class TestTurned : public QObject {
    Q_OBJECT

private slots:
    void touchesLandWhereTheFingerIs_data();
    void touchesLandWhereTheFingerIs();

private:
    // The walk, in this order; each part begins and ends on the player page.
    void thePageFillsTheScreen();
    void playerAreas();
    void volumeDialog();
    void zoneChooser();
    void clockAndScreenSaver();
    void settings();
    void notices();

    Probe &probe() { return m_appliance->program.probe(); }
    /** A touch on a place given on the upright page. */
    bool tapPage(double x, double y) { return probe().tap(m_kind.onScreen({ x, y })); }
    /** A finger that moves that far to the right, as seen on the upright page. */
    bool drag(const QPointF &from, double distance);
    bool itemIsAt(const Probe::Target &item, const QPointF &place);

    PanelKind m_kind;
    std::unique_ptr<Appliance> m_appliance;
};

void TestTurned::touchesLandWhereTheFingerIs_data()
{
    QTest::addColumn<int>("number");
    const QVector<PanelKind> kinds = panelKinds();
    for (int i = 0; i < kinds.size(); ++i)
        QTest::newRow(qPrintable(kinds.at(i).name)) << i;
}

void TestTurned::touchesLandWhereTheFingerIs()
{
    QFETCH(int, number);
    QFile::remove(SettingsFile);
    m_kind = panelKinds().at(number);
    Display display(m_kind.screen);
    QVERIFY(display.start());
    m_appliance = std::make_unique<Appliance>();
    m_kind.describeTo(m_appliance->program);
    m_appliance->program.drawOn(display.name());
    QVERIFY(m_appliance->start());
    QVERIFY(m_kind.fitWindowOf(m_appliance->program));

    using Part = void (TestTurned::*)();
    for (const Part part : { &TestTurned::thePageFillsTheScreen, &TestTurned::playerAreas,
             &TestTurned::volumeDialog, &TestTurned::zoneChooser, &TestTurned::clockAndScreenSaver,
             &TestTurned::settings, &TestTurned::notices }) {
        m_appliance->services.clear();
        (this->*part)();
        if (QTest::currentTestFailed())
            break;
    }
    QVERIFY(m_appliance->program.isQuiet());
    QVERIFY(m_appliance->program.stop());
    m_appliance.reset();
}

void TestTurned::thePageFillsTheScreen()
{
    QTRY_COMPARE_WITH_TIMEOUT(
        probe().area(Player), QRectF({ 0, 0 }, QSizeF(m_kind.screen)), PatienceMs);
    QCOMPARE(probe().property(Player, "width").toDouble(), double(m_kind.page.width()));
    QCOMPARE(probe().property(Player, "height").toDouble(), double(m_kind.page.height()));
}

void TestTurned::playerAreas()
{
    m_appliance->publishZone("is_previous_allowed", "true");
    m_appliance->publishZone("settings/loop", "disabled");
    QVERIFY(m_appliance->handled());
    QList<QByteArray> expected;
    const auto sends = [&](const char *item, const QByteArray &text) {
        expected.append(command(text));
        return probe().tap(item);
    };
    QVERIFY(sends("previous", R"("previous")"));
    QVERIFY(sends("playPause", R"("playpause")"));
    QVERIFY(sends("next", R"("next")"));
    QVERIFY(sends("radio", R"("set_radio","radio":true)"));
    QVERIFY(sends("shuffle", R"("set_shuffle","shuffle":true)"));
    QVERIFY(sends("loop", R"("set_loopmode","loop":"loop")"));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->commands(), expected, PatienceMs);
    // Previous is to the left of next for somebody who looks at the panel, and above the zone.
    const QPointF right = m_kind.onScreen({ 1, 0 }) - m_kind.onScreen({ 0, 0 });
    const QPointF down = m_kind.onScreen({ 0, 1 }) - m_kind.onScreen({ 0, 0 });
    const QPointF previous = probe().centre("previous");
    QVERIFY(QPointF::dotProduct(probe().centre("next") - previous, right) > 0);
    QVERIFY(QPointF::dotProduct(probe().centre("zoneName") - previous, down) > 0);
}

void TestTurned::volumeDialog()
{
    // The panel of 600 x 200 stands in the middle of the page.
    const QPointF corner(m_kind.page.width() / 2.0 - 300, m_kind.page.height() / 2.0 - 100);
    m_appliance->publishZone("volume/step", "1");
    m_appliance->publishZone("volume/min", "0");
    m_appliance->publishZone("volume/max", "100");
    m_appliance->publishZone("volume/hard_limit_min", "0");
    m_appliance->publishZone("volume/hard_limit_max", "100");
    m_appliance->publishZone("volume/soft_limit", "80");
    m_appliance->publishZone("volume/value", "40");
    m_appliance->publishZone("volume/available", "true");
    QVERIFY(m_appliance->handled());
    QVERIFY(probe().tap("volumeBox"));
    QTRY_VERIFY_WITH_TIMEOUT(
        probe().objectProperty("volumeDialog", "opened") == QJsonValue(true), PatienceMs);
    QVERIFY(itemIsAt("volumeSlider", corner + QPointF(290, 99.5)));

    QVERIFY(tapPage(corner.x() + 542, corner.y() + 99));
    QVERIFY(tapPage(corner.x() + 52, corner.y() + 99));
    // Half of the range is 40; the handle has 366 pixels for 80 steps.
    QVERIFY(drag(corner + QPointF(290, 99.5), 100));
    const QList<QByteArray> steps { command(R"("set_volume","how":"relative","value":1.0)"),
        command(R"("set_volume","how":"relative","value":-1.0)") };
    QTRY_VERIFY_WITH_TIMEOUT(m_appliance->commands().size() >= 3, PatienceMs);
    // A slow drag also sends what lies on its way.
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->commands().last(),
        command(R"("set_volume","how":"absolute","value":62.0)"), PatienceMs);
    QCOMPARE(m_appliance->commands().mid(0, 2), steps);

    // Just inside the panel's corner a touch leaves it open, just outside it closes.
    QVERIFY(tapPage(corner.x() + 4, corner.y() + 4));
    QVERIFY(m_appliance->handled());
    QVERIFY(probe().shows("volumeSlider"));
    QVERIFY(tapPage(corner.x() - 6, corner.y() - 6));
    QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("volumeSlider"), PatienceMs);
}

void TestTurned::zoneChooser()
{
    m_appliance->publishZones(
        R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Bath"},{"id":"z3","name":"Hall"}])");
    m_appliance->services.publish(Topics::zone("z2", "name"), "Bath", true);
    QVERIFY(m_appliance->handled());
    for (const QString &zone : { QString("Bath"), QString("Kitchen") }) {
        QVERIFY(probe().tap("zoneName"));
        QTRY_VERIFY_WITH_TIMEOUT(
            probe().objectProperty("zoneDialog", "opened") == QJsonValue(true), PatienceMs);
        const Probe::Target row = Probe::Target::text(zone).inside("zoneList");
        QTRY_VERIFY_WITH_TIMEOUT(probe().shows(row), PatienceMs);
        // A name stands upright in the middle of the page.
        const QPointF place = m_kind.onScreen(QRectF({ 0, 0 }, QSizeF(m_kind.page)).center());
        const QPointF right = m_kind.onScreen({ 1, 0 }) - m_kind.onScreen({ 0, 0 });
        QVERIFY(qAbs(QPointF::dotProduct(probe().centre(row) - place, right)) <= 1);
        QVERIFY(probe().tap(row));
        QVERIFY(m_appliance->services.waitFor(ZoneTopic, zone.toUtf8()));
        QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("zoneList"), PatienceMs);
        QVERIFY(m_appliance->handled());
    }
}

void TestTurned::clockAndScreenSaver()
{
    const double right = m_kind.page.width() - 2;
    const double bottom = m_kind.page.height() - 2;
    QVERIFY(tapPage(right, 2));
    QVERIFY(m_appliance->waitForPage(Clock));
    QVERIFY(tapPage(2, 2));
    QVERIFY(m_appliance->waitForPage(ScreenSaver));
    QVERIFY(tapPage(right, bottom));
    QVERIFY(m_appliance->waitForPage(Player));
    QVERIFY(tapPage(10, bottom - 8)); // the cover
    QVERIFY(m_appliance->waitForPage(Clock));
    QVERIFY(tapPage(right, bottom));
    QVERIFY(m_appliance->waitForPage(ScreenSaver));
    QVERIFY(tapPage(2, 2));
    QVERIFY(m_appliance->waitForPage(Player));
}

void TestTurned::settings()
{
    const double right = m_kind.page.width();
    const double bottom = m_kind.page.height();
    const Probe::Target slider = Probe::Target("slider").inside("screenBrightness");
    const auto dragSlider = [&] {
        const double value = probe().property(slider, "visualPosition").toDouble();
        return drag({ 261 + 17 + value * (317 - 34), 142 }, 100);
    };
    QVERIFY(tapPage(right - 2, bottom - 2));
    QVERIFY(m_appliance->waitForPage(Settings));
    QVERIFY(dragSlider());
    // 283 pixels for the 241 steps from 13 to 254.
    QTRY_VERIFY_WITH_TIMEOUT(qAbs(m_appliance->panel.brightness().toInt() - 235) <= 2, PatienceMs);
    QVERIFY(tapPage(60, 34));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->panel.brightness(), QByteArray("150"));

    QVERIFY(tapPage(right - 2, bottom - 2));
    QVERIFY(m_appliance->waitForPage(Settings));
    QVERIFY(dragSlider());
    QVERIFY(tapPage(right - 90, bottom - 55));
    QVERIFY(m_appliance->waitForPage(Player));
    QVERIFY(qAbs(m_appliance->panel.brightness().toInt() - 235) <= 2);
    QFile file(SettingsFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\nBrightness=" + m_appliance->panel.brightness() + "\n"));
}

void TestTurned::notices()
{
    const double right = m_kind.page.width() - 2;
    const double bottom = m_kind.page.height() - 2;
    m_appliance->publishCore("coreDetected", "false");
    QVERIFY(m_appliance->waitForPage(Failure));
    QVERIFY(tapPage(right, 2));
    QVERIFY(m_appliance->waitForPage(Clock));
    QVERIFY(tapPage(2, bottom));
    QVERIFY(m_appliance->waitForPage(ScreenSaver));

    m_appliance->publishZones(R"([{"id":"z2","name":"Bath"}])");
    m_appliance->publishCore("coreDetected", "true");
    QVERIFY(m_appliance->handled());
    QVERIFY(tapPage(2, bottom));
    QVERIFY(m_appliance->waitForPage(NotFound));
    QVERIFY(tapPage(right, bottom));
    QVERIFY(m_appliance->waitForPage(Clock));
    QVERIFY(tapPage(2, bottom));
    QVERIFY(m_appliance->waitForPage(ScreenSaver));
    QVERIFY(tapPage(right, 2));
    QVERIFY(m_appliance->waitForPage(NotFound));
    // The button stands below the four lines, as soon as they have found their places.
    const QPointF button(0.5 * m_kind.page.width(), 0.675 * m_kind.page.height());
    QTRY_VERIFY_WITH_TIMEOUT(itemIsAt("chooserButton", button), PatienceMs);
    QVERIFY(tapPage(button.x(), button.y()));
    QTRY_VERIFY_WITH_TIMEOUT(
        probe().objectProperty("zoneDialog", "opened") == QJsonValue(true), PatienceMs);
    QVERIFY(probe().tap(Probe::Target::text("Bath").inside("zoneList")));
    QVERIFY(m_appliance->services.waitFor(ZoneTopic, "Bath"));
    QVERIFY(m_appliance->waitForPage(Player));
}

bool TestTurned::drag(const QPointF &from, double distance)
{
    bool done = probe().press(m_kind.onScreen(from));
    for (int step = 1; step <= 5; ++step)
        done = done && probe().move(m_kind.onScreen(from + QPointF(distance * step / 5, 0)));
    return done && probe().release(m_kind.onScreen(from + QPointF(distance, 0)));
}

bool TestTurned::itemIsAt(const Probe::Target &item, const QPointF &place)
{
    return isAt(probe().centre(item), m_kind.onScreen(place));
}

QTEST_GUILESS_MAIN(TestTurned)
#include "tst_turned.moc"
