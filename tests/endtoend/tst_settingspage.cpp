// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/process/filecontents.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <memory>

using namespace PageNames;

namespace {

const QString SettingsFile = "/data/velunor-touch.ini";
const QString Page = "SettingsWindow";

QByteArray stored()
{
    return fileContents(SettingsFile);
}

bool store(const QByteArray &text)
{
    QFile file(SettingsFile);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

Probe::Target sliderOf(const QString &row)
{
    return Probe::Target("slider").inside(row);
}

bool run(const QString &command)
{
    return QProcess::execute("sh", { "-c", command }) == 0;
}

} // namespace

/** The settings page by touch, whatever the disk holds or does. */
class TestSettingsPage : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void whatIsStoredOpensThePage_data();
    void whatIsStoredOpensThePage();
    void aDamagedDiskKeepsNobodyFromThePage_data();
    void aDamagedDiskKeepsNobodyFromThePage();
    void inactivityDiscardsAndLeaves();
    void aTremblingFingerIsNoActivity();

private:
    bool start();
    bool open() { return probe().tap("settingsCorner") && m_appliance->waitForPage(Page); }
    bool drag(const QString &row, double distance);
    int shown(const QString &row) { return probe().property(sliderOf(row), "value").toInt(-1); }
    Probe &probe() { return m_appliance->program.probe(); }

    std::unique_ptr<Appliance> m_appliance;
};

void TestSettingsPage::cleanup()
{
    if (m_appliance && !m_appliance->program.isQuiet())
        QTest::qFail("Qt or the scene has complained", __FILE__, __LINE__);
    m_appliance.reset();
    QFile::remove(SettingsFile);
    QFile::remove(SettingsFile + ".unread");
}

void TestSettingsPage::whatIsStoredOpensThePage_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("applied"); // to the panel, as the program starts
    QTest::addColumn<int>("screen");         // where the sliders stand in the band of 13 to 254
    QTest::addColumn<int>("clock");
    const auto row
        = [](const char *name, const QByteArray &text, const QByteArray &applied, int screen,
              int clock) { QTest::newRow(name) << text << applied << screen << clock; };
    row("below and above the band", "[LCD]\nBrightness=3\nClockBrightness=900\n", "3", 13, 254);
    row("zero and the largest number", "[LCD]\nBrightness=0\nClockBrightness=4294967295\n", "0", 13,
        -1);
    row("numbers that no number holds",
        "[LCD]\nBrightness=99999999999999999999\nClockBrightness=1e400\n", "150", 150, 150);
    row("negative and broken numbers", "[LCD]\nBrightness=-5\nClockBrightness=1.5\n", "150", 150,
        150);
    row("words", "[LCD]\nBrightness=bright\nClockBrightness=true\n", "150", 150, 150);
    row("lists", "[LCD]\nBrightness=1, 2, 3\nClockBrightness=,\n", "150", 150, 150);
    row("an object", "[LCD]\nBrightness=80\nClockBrightness=@Variant(\\0\\0\\0\\tne\\\n0)\n", "150",
        150, 150);
    row("a typed value that ends too soon", "[LCD]\nBrightness=@Size(1\nClockBrightness=@Rect(1\n",
        "150", 150, 150);
    row("cut in the middle of a number", "[LCD]\nClockBrightness=20\nBrightness=8", "8", 13, 20);
    row("cut in the middle of a key", "[LCD]\nClockBrightness=20\nBright", "150", 150, 20);
    row("cut in the middle of the group", "[LC", "150", 150, 150);
    row("bytes of all kinds",
        QByteArray("\x7f"
                   "ELF\0\xff\xfe[[[===\r\r\n\0\0;#\"\\x",
            24),
        "150", 150, 150);
    row("a long line of nothing", QByteArray(200000, '\0'), "150", 150, 150);
}

void TestSettingsPage::whatIsStoredOpensThePage()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, applied);
    QFETCH(int, screen);
    QFETCH(int, clock);
    QVERIFY(store(text));
    QVERIFY(start());
    QCOMPARE(m_appliance->panel.brightness(), applied);
    QVERIFY(open());
    QCOMPARE(shown("screenBrightness"), screen);
    // The scene counts up to half of what the file can hold; beyond it the end is open.
    if (clock >= 0)
        QCOMPARE(shown("clockBrightness"), clock);
    // Looking at the page changes nothing.
    QCOMPARE(m_appliance->panel.brightness(), applied);
    QCOMPARE(stored(), text);

    // A touch brings the value into the band, at once.
    QVERIFY(drag("screenBrightness", 100));
    const int brighter = shown("screenBrightness");
    QVERIFY(brighter > screen);
    QTRY_COMPARE_WITH_TIMEOUT(
        m_appliance->panel.brightness(), QByteArray::number(brighter), PatienceMs);
    QVERIFY(probe().tap(Probe::Target("title").inside(Page)));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->panel.brightness(), applied);
    QCOMPARE(stored(), text);

    QVERIFY(open());
    QVERIFY(drag("screenBrightness", 100));
    QVERIFY(probe().tap("save"));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->panel.brightness(), QByteArray::number(brighter));
    QVERIFY2(stored().contains("\nBrightness=" + QByteArray::number(brighter) + "\n"),
        stored().left(500));
    QVERIFY(m_appliance->program.stop());
}

void TestSettingsPage::aDamagedDiskKeepsNobodyFromThePage_data()
{
    QTest::addColumn<QString>("breakIt");
    QTest::addColumn<QString>("mendIt");
    QTest::addColumn<bool>("kept");
    QTest::newRow("read only") << "mount -o remount,bind,ro /data"
                               << "mount -o remount,bind,rw /data" << false;
    QTest::newRow("not there")
        << "umount -l /data && rmdir /data"
        << "rm -r /data && mkdir /data && mount -t tmpfs -o mode=755 data /data"
        << true; // made again with the file
    QTest::newRow("full") << "mount -t tmpfs -o size=4k,nr_inodes=1 full /data"
                          << "umount -l /data" << false;
    QTest::newRow("a directory in place of the file") << "mkdir /data/velunor-touch.ini"
                                                      << "rmdir /data/velunor-touch.ini" << false;
}

void TestSettingsPage::aDamagedDiskKeepsNobodyFromThePage()
{
    QFETCH(QString, breakIt);
    QFETCH(QString, mendIt);
    QFETCH(bool, kept);
    QVERIFY(run(breakIt));
    const auto mend = qScopeGuard([&mendIt] { run(mendIt); });
    QVERIFY(start());
    QCOMPARE(m_appliance->panel.brightness(), QByteArray("150"));
    QVERIFY(open());
    QVERIFY(drag("screenBrightness", 50));
    const int brighter = shown("screenBrightness");
    QVERIFY(brighter > 150);
    QVERIFY(probe().tap("save"));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->panel.brightness(), QByteArray::number(brighter));
    QCOMPARE(stored().contains("\nBrightness=" + QByteArray::number(brighter) + "\n"), kept);
    for (const QString &text :
        { QString("SettingsWindow: SAVE"), QString("ScreenController::saveSettings()"),
            QString("Settings::save()"), QString("Settings::save:LCD/Brightness%1").arg(brighter),
            QString("Settings::save:LCD/ClockBrightness150") })
        QCOMPARE(m_appliance->program.count(Line::debug(text)), 1);

    // What was chosen holds until the program ends; leaving by the title goes back to the start.
    QVERIFY(open());
    QCOMPARE(shown("screenBrightness"), brighter);
    QVERIFY(probe().tap(Probe::Target("title").inside(Page)));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->panel.brightness(), QByteArray("150"));
    QVERIFY(m_appliance->program.stop());
}

void TestSettingsPage::inactivityDiscardsAndLeaves()
{
    const QByteArray text = "[LCD]\nBrightness=80\nClockBrightness=20\n";
    QVERIFY(store(text));
    QVERIFY(start());
    QVERIFY(open());
    QVERIFY(drag("clockBrightness", 60));
    const int brighter = shown("clockBrightness");
    QVERIFY(brighter > 20);
    QTRY_COMPARE_WITH_TIMEOUT(
        m_appliance->panel.brightness(), QByteArray::number(brighter), PatienceMs);
    QCOMPARE(probe().objectProperty("inactivityTimer", "interval"), QJsonValue(30000));
    QCOMPARE(probe().objectProperty("inactivityTimer", "running"), QJsonValue(true));
    QVERIFY(probe().setObjectProperty("inactivityTimer", "interval", 1));
    QVERIFY(m_appliance->waitForPage(Player));
    QCOMPARE(m_appliance->program.count(Line::debug("SettingsWindow: time out")), 1);
    QCOMPARE(m_appliance->program.count(Line::debug("ScreenController::restoreSettings()")), 1);
    QVERIFY(m_appliance->handled());
    QCOMPARE(m_appliance->panel.brightness(), QByteArray("80"));
    QCOMPARE(stored(), text);

    QVERIFY(open());
    QCOMPARE(shown("clockBrightness"), 20);
    // When the core has gone meanwhile, the time-out leads where the title would.
    m_appliance->publishCore("coreDetected", "false");
    QVERIFY(m_appliance->handled());
    QVERIFY(probe().setObjectProperty("inactivityTimer", "interval", 1));
    QVERIFY(m_appliance->waitForPage("RoonConnectionFailure"));
    QVERIFY(m_appliance->program.stop());
}

void TestSettingsPage::aTremblingFingerIsNoActivity()
{
    m_appliance = std::make_unique<Appliance>();
    m_appliance->program.setEnvironment("VELUNOR_TOUCHUI_SCREENTYPE", "DISPLAY2_7INCH"); // 1 to 31
    QVERIFY(m_appliance->start());
    QVERIFY(open());
    const QRectF area = probe().area(sliderOf("screenBrightness"));
    const double step = (area.width() - 34) / 30;
    const auto placeOf = [&](int value) {
        return QPointF(area.left() + 17 + (value - 1) * step, area.center().y());
    };
    QVERIFY(probe().press(placeOf(31)));
    QVERIFY(probe().move(placeOf(25)));
    QVERIFY(probe().move(placeOf(20)));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->panel.brightness(), QByteArray("20"), PatienceMs);
    QVERIFY(probe().setObjectProperty("inactivityTimer", "interval", 1000));
    // The finger stays on the slider, and within the step; that alone must not keep the page.
    double aside = step / 3;
    QVERIFY(waitUntil([&] {
        aside = -aside;
        return !probe().move(placeOf(20) + QPointF(aside, 0)) || probe().shows(Player);
    }));
    QCOMPARE(m_appliance->program.count(Line::debug("SettingsWindow: time out")), 1);
    QVERIFY(probe().release(placeOf(20)));
    QVERIFY(m_appliance->handled());
    QCOMPARE(m_appliance->panel.brightness(), QByteArray("150"));
    QVERIFY(m_appliance->program.stop());
}

bool TestSettingsPage::start()
{
    m_appliance = std::make_unique<Appliance>();
    return m_appliance->start();
}

bool TestSettingsPage::drag(const QString &row, double distance)
{
    const QRectF area = probe().area(sliderOf(row));
    const double position = probe().property(sliderOf(row), "visualPosition").toDouble();
    const QPointF handle(area.left() + position * (area.width() - 34) + 17, area.center().y());
    bool done = probe().press(handle);
    for (int step = 1; step <= 5; ++step)
        done = done && probe().move(handle + QPointF(distance * step / 5, 0));
    return done && probe().release(handle + QPointF(distance, 0));
}

QTEST_GUILESS_MAIN(TestSettingsPage)
#include "tst_settingspage.moc"
