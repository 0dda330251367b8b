// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/appliance.h"
#include "testkit/process/filecontents.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QTest>

#include <memory>

namespace {

const QString BrightnessTopic = Topics::display() + "brightness";
const QString SettingsFile = "/data/velunor-touch.ini";
const QByteArray Toggle = R"({"command":"toggle_standby"})";

using Environment = QList<QPair<QString, QString>>;

/**
 * What the display controller reports at the start, the values only: "DISPLAY2_5INCH", "true", ...
 */
QStringList reported(const Program &program)
{
    const QString prefix = "ScreenController::ScreenController() ";
    QStringList values;
    for (const LogLine &line : program.log()) {
        const int colon = line.text.indexOf(": ");
        if (line.level == "INFO" && line.text.startsWith(prefix) && colon > 0)
            values.append(line.text.mid(colon + 2));
    }
    return values;
}

bool writeSettings(const QByteArray &text)
{
    QFile file(SettingsFile);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

QByteArray settings()
{
    return fileContents(SettingsFile);
}

} // namespace

Q_DECLARE_METATYPE(Environment)

/**
 * The display hardware: geometry from the environment, brightness and power to the panel, settings
 * on disk.
 */
class TestPanel : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void environmentIsRead_data();
    void environmentIsRead();
    void brightnessComesFromTheSettingsFile();
    void damagedSettingsFileGivesDefaults_data();
    void damagedSettingsFileGivesDefaults();
    void missingPanelIsLogged();
    void unwritablePanelIsLoggedAndReported();
    void onlyOnePanelIsWritten();
    void brightnessAndPowerFollowTheScreen();
    void settingsPageShowsSavesAndCancels();
};

void TestPanel::cleanup()
{
    QFile::remove(SettingsFile);
}

void TestPanel::environmentIsRead_data()
{
    QTest::addColumn<Environment>("environment");
    QTest::addColumn<QStringList>("expected"); // type, swapped, rotated, rotation, width, height
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QPair<int, int>>("band");
    const QPair<int, int> wide(13, 254);
    const QPair<int, int> narrow(1, 31);
    const QStringList none;
    const QString rotation = "setting default rotation failed. Falling back to 0";
    const QString width = "setting default width failed. Falling back to 800";
    const QString height = "setting default height failed. Falling back to 480";
    const auto row
        = [](const char *name, const Environment &environment, const QStringList &expected,
              const QStringList &warnings, const QPair<int, int> &band) {
              QTest::newRow(name) << environment << expected << warnings << band;
          };
    row("nothing set", {}, { "UNKNOWN", "false", "false", "0", "800", "480" }, none, wide);
    row("everything set",
        { { "SCREENTYPE", "other" }, { "SWAPPED", "true" }, { "ROTATED", "True" },
            { "ROTATION", "-90" }, { "WIDTH", "1280" }, { "HEIGHT", "720" } },
        { "OTHER", "true", "true", "-90", "1280", "720" }, none, wide);
    row("words that are not true", { { "SWAPPED", "yes" }, { "ROTATED", "1" } },
        { "UNKNOWN", "false", "false", "0", "800", "480" }, none, wide);
    row("no numbers", { { "ROTATION", "ninety" }, { "WIDTH", "800px" }, { "HEIGHT", "" } },
        { "UNKNOWN", "false", "false", "0", "800", "480" }, { rotation, width, height }, wide);
    row("5 inches", { { "SCREENTYPE", "display2_5inch" } },
        { "DISPLAY2_5INCH", "false", "false", "0", "800", "480" }, none, narrow);
    row("7 inches", { { "SCREENTYPE", "DISPLAY2_7INCH" } },
        { "DISPLAY2_7INCH", "false", "false", "0", "800", "480" }, none, narrow);
}

void TestPanel::environmentIsRead()
{
    QFETCH(Environment, environment);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, warnings);
    using Band = QPair<int, int>;
    QFETCH(Band, band);
    const Panel panel;
    Program program;
    for (const auto &variable : environment)
        program.setEnvironment("VELUNOR_TOUCHUI_" + variable.first, variable.second);
    QVERIFY(program.startAndWait());
    QCOMPARE(reported(program), expected);
    QStringList warned;
    for (const LogLine &line : program.log()) {
        if (line.file == "screencontroller.cpp" && line.level == "WARN")
            warned.append(line.text);
    }
    QCOMPARE(warned, warnings);
    QCOMPARE(program.count(Line::info("ScreenController::ScreenController() 'Display 2' detected, "
                                      "adjusting brightness bandwidth")),
        band.first == 1 ? 1 : 0);

    const Probe::Target display = Probe::Target::type("ScreenController");
    Probe &probe = program.probe();
    QCOMPARE(probe.objectProperty(display, "minBrightness").toInt(), band.first);
    QCOMPARE(probe.objectProperty(display, "maxBrightness").toInt(), band.second);
    QCOMPARE(probe.objectProperty(display, "width").toInt(), expected.at(4).toInt());
    QCOMPARE(probe.objectProperty(display, "height").toInt(), expected.at(5).toInt());
}

void TestPanel::brightnessComesFromTheSettingsFile()
{
    QVERIFY(writeSettings("[LCD]\nBrightness=80\nClockBrightness=20\n"));
    const Panel panel;
    Program program;
    QVERIFY(program.startAndWait());
    QCOMPARE(panel.brightness(), QByteArray("80"));
    QCOMPARE(panel.power(), QByteArray("0"));
}

void TestPanel::damagedSettingsFileGivesDefaults_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("without the group") << QByteArray("[Other]\nBrightness=80\n");
    QTest::newRow("no ini file") << QByteArray("\x7f"
                                               "ELF\0\xff\xfe[[[===",
        14);
}

void TestPanel::damagedSettingsFileGivesDefaults()
{
    QFETCH(QByteArray, text);
    QVERIFY(writeSettings(text));
    const Panel panel;
    Program program;
    QVERIFY(program.startAndWait());
    QCOMPARE(panel.brightness(), QByteArray("150"));
    QVERIFY(program.stop());
}

void TestPanel::missingPanelIsLogged()
{
    Program program;
    QVERIFY(program.startAndWait());
    QCOMPARE(program.count(Line::warning("ScreenController::constructor() no sysfile found!")), 1);
    QCOMPARE(program.count(Line::warning("SysFile::write() failed to open file: ")), 2);
    QVERIFY(program.stop());
}

void TestPanel::unwritablePanelIsLoggedAndReported()
{
    Appliance appliance;
    appliance.panel.makeUnwritable();
    QVERIFY(appliance.start());
    QVERIFY(appliance.program.count(Line::warning(
                "SysFile::write() failed to open file: /sys/class/backlight/panel0/brightness"))
        > 0);
    QCOMPARE(appliance.program.count(Line::warning(
                 "SysFile::write() failed to open file: /sys/class/backlight/panel0/bl_power")),
        1);
    QVERIFY(appliance.services.waitFor(BrightnessTopic, "150"));
}

void TestPanel::onlyOnePanelIsWritten()
{
    const Panel one("panel1");
    const Panel two("panel2");
    Program program;
    QVERIFY(program.startAndWait());
    // Which of them comes first is the directory's affair.
    QCOMPARE(
        program.count(Line::info("ScreenController::constructor() found sys dir panel").andMore()),
        1);
    QCOMPARE(one.brightness() + two.brightness(), QByteArray("150"));
    QCOMPARE(one.power() + two.power(), QByteArray("0"));
}

void TestPanel::brightnessAndPowerFollowTheScreen()
{
    QVERIFY(writeSettings("[LCD]\nBrightness=80\nClockBrightness=20\n"));
    Appliance appliance;
    QVERIFY(appliance.start());
    QCOMPARE(appliance.panel.brightness(), QByteArray("80"));
    QCOMPARE(appliance.panel.power(), QByteArray("0"));
    QVERIFY(appliance.services.waitFor(BrightnessTopic, "80"));

    appliance.sendCommand(Toggle);
    QVERIFY(appliance.waitForPage("Clock"));
    QCOMPARE(appliance.panel.brightness(), QByteArray("20"));
    QCOMPARE(appliance.panel.power(), QByteArray("0"));
    QVERIFY(appliance.services.waitFor(BrightnessTopic, "20"));

    appliance.sendCommand(Toggle);
    QVERIFY(appliance.waitForPage("ScreenSaver"));
    QCOMPARE(appliance.panel.brightness(), QByteArray("80"));
    QCOMPARE(appliance.panel.power(), QByteArray("1"));

    appliance.sendCommand(Toggle);
    QVERIFY(appliance.waitForPage("RoonPlayerWindow2"));
    QCOMPARE(appliance.panel.brightness(), QByteArray("80"));
    QCOMPARE(appliance.panel.power(), QByteArray("0"));

    // What was applied last is what a service that starts later finds.
    BrokerClient late;
    QVERIFY(late.connectToBroker());
    QVERIFY(late.waitFor(BrightnessTopic, "80"));
    QCOMPARE(late.payloads(BrightnessTopic).size(), 1);
    QVERIFY(appliance.program.stop());
}

void TestPanel::settingsPageShowsSavesAndCancels()
{
    QVERIFY(writeSettings("[LCD]\nBrightness=80\nClockBrightness=20\nDefaultPlayerScreen=11\n"));
    Appliance appliance;
    QVERIFY(appliance.start());
    Probe &probe = appliance.program.probe();
    const Probe::Target slider = Probe::Target("slider").inside("screenBrightness");

    const auto drag = [&probe, &slider](double distance) {
        const QRectF area = probe.area(slider);
        const QPointF handle(area.left()
                + probe.property(slider, "visualPosition").toDouble() * (area.width() - 34) + 17,
            area.center().y());
        bool done = probe.press(handle);
        for (int step = 1; step <= 5; ++step)
            done = done && probe.move(handle + QPointF(distance * step / 5, 0));
        return done && probe.release(handle + QPointF(distance, 0));
    };

    // The panel shows every change at once; leaving by the title takes it back.
    QVERIFY(probe.tap("settingsCorner"));
    QVERIFY(appliance.waitForPage("SettingsWindow"));
    QCOMPARE(probe.property(slider, "value").toInt(), 80);
    QVERIFY(drag(100));
    const int brighter = probe.property(slider, "value").toInt();
    QVERIFY(brighter > 80);
    QTRY_COMPARE_WITH_TIMEOUT(
        appliance.panel.brightness(), QByteArray::number(brighter), PatienceMs);
    QVERIFY(probe.tap(Probe::Target("title").inside("SettingsWindow")));
    QVERIFY(appliance.waitForPage("RoonPlayerWindow2"));
    QCOMPARE(appliance.panel.brightness(), QByteArray("80"));
    QVERIFY(settings().contains("Brightness=80"));

    QVERIFY(probe.tap("settingsCorner"));
    QVERIFY(appliance.waitForPage("SettingsWindow"));
    QVERIFY(drag(-30));
    const int darker = probe.property(slider, "value").toInt();
    QVERIFY(darker < 80);
    QVERIFY(probe.tap("save"));
    QVERIFY(appliance.waitForPage("RoonPlayerWindow2"));
    QCOMPARE(appliance.panel.brightness(), QByteArray::number(darker));
    const QByteArray kept = settings();
    QVERIFY2(kept.contains("\nBrightness=" + QByteArray::number(darker) + "\n"), kept);
    QVERIFY2(kept.contains("\nClockBrightness=20\n"), kept);
    QVERIFY2(kept.contains("\nDefaultPlayerScreen=11\n"), kept);
    QVERIFY(appliance.program.stop());
}

QTEST_GUILESS_MAIN(TestPanel)
#include "tst_panel.moc"
