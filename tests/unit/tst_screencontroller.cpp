// SPDX-License-Identifier: GPL-3.0-or-later
#include "screencontroller.h"
#include "mqtt.h"
#include "propertyclasstest.h"
#include "settings.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"
#include "textfile.h"
#include "writecounter.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <memory>

namespace {

const QString Topic = QStringLiteral("Velunor/touch_ui/v3/Display/brightness");
const QString MarkTopic = QStringLiteral("test/mark");
const QString Source = QStringLiteral("screencontroller.cpp");
const QString Prefix = QStringLiteral("info: ScreenController::ScreenController() ");

const QByteArrayList Variables { "VELUNOR_TOUCHUI_SCREENTYPE", "VELUNOR_TOUCHUI_SWAPPED",
    "VELUNOR_TOUCHUI_ROTATED", "VELUNOR_TOUCHUI_ROTATION", "VELUNOR_TOUCHUI_WIDTH",
    "VELUNOR_TOUCHUI_HEIGHT" };

/** The first entry of a directory as the file system lists it. */
QString firstEntry(const QString &directory)
{
    QString first;
    DIR *const entries = ::opendir(QFile::encodeName(directory).constData());
    while (const dirent *const entry = ::readdir(entries)) {
        const QString name = QFile::decodeName(entry->d_name);
        if (name != QLatin1String(".") && name != QLatin1String("..")) {
            first = name;
            break;
        }
    }
    ::closedir(entries);
    return first;
}

} // namespace

class TestScreenController : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override
    {
        return std::make_unique<ScreenController>(m_directory->path());
    }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override;
    QStringList constructorLines() const override;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void constructorReportsTheBrightness();
    void constructorAppliesTheSettings();
    void instanceDrivesTheSystemsPanel();

    void panelIsTheFirstDirectory_data();
    void panelIsTheFirstDirectory();
    void onlyOneOfSeveralPanelsIsDriven();
    void withoutPanelEveryWriteWarnsAndIsReported_data();
    void withoutPanelEveryWriteWarnsAndIsReported();
    void pathsAreAbsolute();

    void environmentIsRead_data();
    void environmentIsRead();
    void screenTypeChoosesTheBand_data();
    void screenTypeChoosesTheBand();

    void brightnessIsWrittenAndReportedOnEveryCall();
    void reportIsRetainedAtQos1();
    void valuesOutsideTheBandAreAppliedAsTheyAre_data();
    void valuesOutsideTheBandAreAppliedAsTheyAre();
    void newBrightnessIsTakenAndApplied();
    void newClockBrightnessIsAppliedAtOnce();
    void settingsAreFollowed();
    void backlightGoesOnOnce();
    void backlightGoesOffEveryTime();
    void saveAndRestoreGoToTheSettings();

private:
    QByteArray contents(const QString &attribute) const;
    std::unique_ptr<ScreenController> makeSettled();
    void settle();

    int m_marks = 0;
    Broker m_broker;
    BrokerClient m_client;
    std::unique_ptr<QTemporaryDir> m_directory; // in the place of /sys/class/backlight
};

void TestScreenController::initTestCase()
{
    QVERIFY2(!QFile::exists(QStringLiteral("/data/velunor-touch.ini")),
        "needs a machine of its own: run it with ctest");
    QVERIFY(m_client.startBroker(&m_broker));
    QTRY_VERIFY_WITH_TIMEOUT(Mqtt::instance()->isConnected(), PatienceMs);
}

void TestScreenController::init()
{
    PropertyClassTest::init();
    for (const QByteArray &variable : Variables)
        qunsetenv(variable);
    Settings::instance()->revert();
    m_directory.reset(new QTemporaryDir);
    const QString panel = m_directory->filePath(QStringLiteral("panel0"));
    QVERIFY(QDir().mkdir(panel));
    for (const QString &attribute :
        { QStringLiteral("/brightness"), QStringLiteral("/bl_power") }) {
        QFile file(panel + attribute);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    settle();
}

void TestScreenController::cleanup()
{
    m_directory.reset();
    PropertyClassTest::cleanup();
}

QByteArray TestScreenController::contents(const QString &attribute) const
{
    return readTextFile(m_directory->filePath(QStringLiteral("panel0/") + attribute));
}

/** A controller of the panel, its constructor's log lines dropped and its report received. */
std::unique_ptr<ScreenController> TestScreenController::makeSettled()
{
    auto controller = std::make_unique<ScreenController>(m_directory->path());
    settle();
    return controller;
}

/** Waits until all that was published so far has gone round, and forgets it and the log. */
void TestScreenController::settle()
{
    const QByteArray mark = QByteArray::number(++m_marks);
    Mqtt::instance()->publish(MarkTopic, mark, false);
    QVERIFY(m_client.waitFor(MarkTopic, mark));
    m_client.clear();
    m_log->clear();
}

QList<PropertyRow> TestScreenController::rows() const
{
    return {
        { "bool swapped read write swappedChanged()", false },
        { "bool rotated read write rotatedChanged()", false },
        { "int rotation read write rotationChanged()", 0 },
        { "uint width read write widthChanged()", 800u },
        { "uint height read write heightChanged()", 480u },
        { "uint minBrightness read write minBrightnessChanged()", 13u },
        { "uint maxBrightness read write maxBrightnessChanged()", 254u },
    };
}

QStringList TestScreenController::methodEntries() const
{
    return { "public signal brightnessChanged()", "public signal timeFormatChanged()",
        "public signal swappedChanged()", "public signal rotatedChanged()",
        "public signal rotationChanged()", "public signal widthChanged()",
        "public signal heightChanged()", "public signal minBrightnessChanged()",
        "public signal maxBrightnessChanged()", "public slot lcdBrightnessChanged(uint)",
        "public slot lcdClockBrightnessChanged(uint)", "public slot saveSettings()",
        "public slot restoreSettings()", "public slot setDefaultBrightness()",
        "public slot setClockBrightness()" };
}

QStringList TestScreenController::constructorLines() const
{
    const QString file = constructorLine(QStringLiteral("SysFile"));
    return { file, file, constructorLine(QStringLiteral("ScreenController")),
        "info: ScreenController::constructor() found sys dir panel0",
        Prefix + "screenType: UNKNOWN", Prefix + "swapped: false", Prefix + "rotated: false",
        Prefix + "rotation: 0", Prefix + "width: 800", Prefix + "height: 480",
        "info: ScreenController::exec_brightness() 150",
        "info: ScreenController::exec_backlight_on()" };
}

void TestScreenController::constructorReportsTheBrightness()
{
    const ScreenController controller(m_directory->path());
    QVERIFY(m_client.waitFor(Topic, "150"));
}

void TestScreenController::constructorAppliesTheSettings()
{
    Settings::instance()->setLcdBrightness(300); // above the band
    Settings::instance()->setLcdClockBrightness(5);
    const std::unique_ptr<ScreenController> controller = makeSettled();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("300"));
    QCOMPARE(contents(QStringLiteral("bl_power")), QByteArray("0"));
    controller->setClockBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("5"));
    controller->setDefaultBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("300"));
}

void TestScreenController::instanceDrivesTheSystemsPanel()
{
    const QString panel = QStringLiteral("/sys/class/backlight/panel7");
    QVERIFY(QDir().mkdir(panel));
    QFile brightness(panel + QStringLiteral("/brightness"));
    QFile power(panel + QStringLiteral("/bl_power"));
    QVERIFY(brightness.open(QIODevice::ReadWrite) && power.open(QIODevice::ReadWrite));
    ScreenController *const controller = ScreenController::instance();
    QVERIFY(controller);
    QCOMPARE(ScreenController::instance(), controller);
    QVERIFY(!controller->parent());
    QCOMPARE(brightness.readAll(), QByteArray("150"));
    QCOMPARE(power.readAll(), QByteArray("0"));
    // It stays, and listens to the settings; from here on it is only a second writer.
    QObject::disconnect(Settings::instance(), nullptr, controller, nullptr);
    QVERIFY(QDir(panel).removeRecursively());
}

void TestScreenController::panelIsTheFirstDirectory_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("directory") << "directory";
    QTest::newRow("link to a directory, as in sysfs") << "link";
    QTest::newRow("beside a file") << "file";
    QTest::newRow("beside a broken link") << "broken";
}

void TestScreenController::panelIsTheFirstDirectory()
{
    QFETCH(QString, kind);
    const QTemporaryDir elsewhere;
    const QString panel = m_directory->filePath(QStringLiteral("panel0"));
    if (kind == QLatin1String("link")) {
        const QString target = elsewhere.filePath(QStringLiteral("device"));
        QVERIFY(QDir().rename(panel, target));
        QVERIFY(QFile::link(target, panel));
    } else if (kind == QLatin1String("file")) {
        QFile file(m_directory->filePath(QStringLiteral("a_file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (kind == QLatin1String("broken")) {
        QVERIFY(
            QFile::link(QStringLiteral("nowhere"), m_directory->filePath(QStringLiteral("link"))));
    }
    const ScreenController controller(m_directory->path());
    QVERIFY(m_log->contains(
        QStringLiteral("info: ScreenController::constructor() found sys dir panel0")));
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("150"));
    QCOMPARE(contents(QStringLiteral("bl_power")), QByteArray("0"));
}

void TestScreenController::onlyOneOfSeveralPanelsIsDriven()
{
    const QDir directory(m_directory->path());
    QVERIFY(QDir(directory.filePath(QStringLiteral("panel0"))).removeRecursively());
    const QStringList panels { QStringLiteral("zeta"), QStringLiteral("alpha"),
        QStringLiteral("mid") };
    for (const QString &panel : panels) {
        QVERIFY(directory.mkdir(panel));
        QFile brightness(directory.filePath(panel + QStringLiteral("/brightness")));
        QFile power(directory.filePath(panel + QStringLiteral("/bl_power")));
        QVERIFY(brightness.open(QIODevice::WriteOnly) && power.open(QIODevice::WriteOnly));
    }
    const QString first = firstEntry(directory.path());
    const ScreenController controller(directory.path());
    QVERIFY(m_log->contains("info: ScreenController::constructor() found sys dir " + first));
    for (const QString &panel : panels) {
        const qint64 expected = panel == first ? 3 : 0;
        QCOMPARE(QFile(directory.filePath(panel + QStringLiteral("/brightness"))).size(), expected);
    }
}

void TestScreenController::withoutPanelEveryWriteWarnsAndIsReported_data()
{
    QTest::addColumn<bool>("directoryExists");
    QTest::newRow("empty directory") << true;
    QTest::newRow("no directory") << false;
}

void TestScreenController::withoutPanelEveryWriteWarnsAndIsReported()
{
    QFETCH(bool, directoryExists);
    QVERIFY(QDir(m_directory->filePath(QStringLiteral("panel0"))).removeRecursively());
    const QString directory = directoryExists ? m_directory->path()
                                              : m_directory->filePath(QStringLiteral("backlight"));
    const QString noFile = QStringLiteral("warning: SysFile::write() failed to open file: ");
    ScreenController controller(directory);
    QCOMPARE(m_log->take(Source).at(1),
        QStringLiteral("warning: ScreenController::constructor() no sysfile found!"));
    QCOMPARE(m_log->take(QStringLiteral("sysfile.cpp")).mid(2), QStringList({ noFile, noFile }));
    QVERIFY(m_client.waitFor(Topic, "150"));
    controller.exec_brightness(31);
    controller.exec_backlight_off();
    controller.exec_backlight_on();
    QCOMPARE(m_log->take(QStringLiteral("sysfile.cpp")), QStringList({ noFile, noFile, noFile }));
    QVERIFY(m_client.waitFor(Topic, "31"));
}

void TestScreenController::pathsAreAbsolute()
{
    const QString former = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_directory->path()));
    ScreenController controller(QStringLiteral("."));
    QVERIFY(QDir::setCurrent(former));
    controller.exec_brightness(77);
    controller.exec_backlight_off();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("77"));
    QCOMPARE(contents(QStringLiteral("bl_power")), QByteArray("1"));
}

void TestScreenController::environmentIsRead_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QStringList>("lines");
    struct Flag {
        const char *variable;
        const char *property;
    };
    for (const Flag flag : { Flag { "VELUNOR_TOUCHUI_SWAPPED", "swapped" },
             Flag { "VELUNOR_TOUCHUI_ROTATED", "rotated" } }) {
        for (const char *text :
            { "true", "True", "TRUE", "tRuE", "false", "yes", "1", "", " true", "true ", "on" }) {
            const bool expected = QByteArray(text).toUpper() == "TRUE";
            QTest::newRow((QByteArray(flag.property) + '=' + text).constData())
                << QByteArray(flag.variable) << QByteArray(text) << QByteArray(flag.property)
                << QVariant(expected)
                << QStringList({ Prefix + flag.property
                       + (expected ? QStringLiteral(": true") : QStringLiteral(": false")) });
        }
    }
    struct Number {
        const char *variable;
        const char *property;
        int fallback;
    };
    struct Text {
        const char *text;
        bool isNumber;
        int value;
    };
    for (const Number number : { Number { "VELUNOR_TOUCHUI_ROTATION", "rotation", 0 },
             Number { "VELUNOR_TOUCHUI_WIDTH", "width", 800 },
             Number { "VELUNOR_TOUCHUI_HEIGHT", "height", 480 } }) {
        for (const Text text :
            { Text { "1280", true, 1280 }, Text { "0", true, 0 }, Text { "-90", true, -90 },
                Text { "2147483647", true, 2147483647 }, Text { "2147483648", false, 0 },
                Text { "", false, 0 }, Text { "wide", false, 0 }, Text { "90.0", false, 0 },
                Text { "0x10", false, 0 }, Text { "90 deg", false, 0 } }) {
            const bool isSigned = number.fallback == 0;
            const int value = text.isNumber ? text.value : number.fallback;
            const QVariant expected
                = isSigned ? QVariant(value) : QVariant(static_cast<uint>(value));
            QStringList lines;
            if (!text.isNumber) {
                lines.append(
                    QStringLiteral("warning: setting default %1 failed. Falling back to %2")
                        .arg(QLatin1String(number.property))
                        .arg(number.fallback));
            }
            lines.append(Prefix + number.property + QStringLiteral(": ") + expected.toString());
            QTest::newRow((QByteArray(number.property) + '=' + text.text).constData())
                << QByteArray(number.variable) << QByteArray(text.text)
                << QByteArray(number.property) << expected << lines;
        }
    }
}

void TestScreenController::environmentIsRead()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, expected);
    QFETCH(QStringList, lines);
    qputenv(variable, value);
    const ScreenController controller(m_directory->path());
    QCOMPARE(controller.property(property), expected);
    const QStringList defaults { Prefix + "screenType: UNKNOWN", Prefix + "swapped: false",
        Prefix + "rotated: false", Prefix + "rotation: 0", Prefix + "width: 800",
        Prefix + "height: 480" };
    QStringList all;
    for (int i = 0; i < defaults.size(); ++i) {
        if (i == Variables.indexOf(variable))
            all.append(lines);
        else
            all.append(defaults.at(i));
    }
    QCOMPARE(m_log->take(Source).mid(2, all.size()), all);
    qputenv(variable, "7"); // read once
    QCOMPARE(controller.property(property), expected);
}

void TestScreenController::screenTypeChoosesTheBand_data()
{
    QTest::addColumn<QByteArray>("type"); // null: not set
    QTest::addColumn<QString>("logged");
    QTest::addColumn<bool>("display2");
    QTest::newRow("not set") << QByteArray() << "UNKNOWN" << false;
    QTest::newRow("empty") << QByteArray("") << "" << false;
    QTest::newRow("7 inch") << QByteArray("DISPLAY2_7INCH") << "DISPLAY2_7INCH" << true;
    QTest::newRow("5 inch") << QByteArray("DISPLAY2_5INCH") << "DISPLAY2_5INCH" << true;
    QTest::newRow("lower case") << QByteArray("display2_5inch") << "DISPLAY2_5INCH" << true;
    QTest::newRow("mixed case") << QByteArray("Display2_7inch") << "DISPLAY2_7INCH" << true;
    QTest::newRow("longer") << QByteArray("display2_7inch_v2") << "DISPLAY2_7INCH_V2" << false;
    QTest::newRow("blank behind") << QByteArray("display2_7inch ") << "DISPLAY2_7INCH " << false;
    QTest::newRow("the first display") << QByteArray("display_7inch") << "DISPLAY_7INCH" << false;
}

void TestScreenController::screenTypeChoosesTheBand()
{
    QFETCH(QByteArray, type);
    QFETCH(QString, logged);
    QFETCH(bool, display2);
    if (!type.isNull())
        qputenv("VELUNOR_TOUCHUI_SCREENTYPE", type);
    const ScreenController controller(m_directory->path());
    QCOMPARE(controller.minBrightness(), display2 ? 1u : 13u);
    QCOMPARE(controller.maxBrightness(), display2 ? 31u : 254u);
    QStringList lines = m_log->take(Source);
    QCOMPARE(lines.at(2), Prefix + "screenType: " + logged);
    QCOMPARE(
        lines.at(8) == Prefix + "'Display 2' detected, adjusting brightness bandwidth", display2);
    QCOMPARE(lines.size(), display2 ? 11 : 10);
}

void TestScreenController::brightnessIsWrittenAndReportedOnEveryCall()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    QSignalSpy brightness(controller.get(), &ScreenController::brightnessChanged);
    WriteCounter writes(m_directory->filePath(QStringLiteral("panel0/brightness")));
    for (int i = 0; i < 3; ++i) {
        controller->exec_brightness(128);
        QCOMPARE(writes.take(), 1);
    }
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("128"));
    controller->exec_brightness(9);
    QVERIFY(m_client.waitFor(Topic, "9"));
    QCOMPARE(m_client.payloads(Topic), QList<QByteArray>({ "128", "128", "128", "9" }));
    const QString line = QStringLiteral("info: ScreenController::exec_brightness() 128");
    QCOMPARE(m_log->take(Source),
        QStringList({ line, line, line, "info: ScreenController::exec_brightness() 9" }));
    QCOMPARE(brightness.count(), 0);
}

void TestScreenController::reportIsRetainedAtQos1()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    controller->exec_brightness(201);
    QVERIFY(m_client.waitFor(Topic, "201"));
    const QStringList packets = m_broker.lines(QRegularExpression(
        QStringLiteral("^Received PUBLISH from .*'%1'").arg(QRegularExpression::escape(Topic))));
    QVERIFY(!packets.isEmpty());
    for (const QString &packet : packets)
        QVERIFY2(packet.contains(QLatin1String(" q1, r1,")), qPrintable(packet));
    BrokerClient late;
    QVERIFY(late.connectToBroker());
    QVERIFY(late.waitFor(Topic, "201"));
    QVERIFY(late.messages().first().retained);
}

void TestScreenController::valuesOutsideTheBandAreAppliedAsTheyAre_data()
{
    QTest::addColumn<uint>("value");
    for (const uint value : { 0u, 12u, 255u, 4294967295u })
        QTest::addRow("%u", value) << value;
}

void TestScreenController::valuesOutsideTheBandAreAppliedAsTheyAre()
{
    QFETCH(uint, value);
    const std::unique_ptr<ScreenController> controller = makeSettled();
    Settings::instance()->setLcdBrightness(value);
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray::number(value));
    QVERIFY(m_client.waitFor(Topic, QByteArray::number(value)));
}

void TestScreenController::newBrightnessIsTakenAndApplied()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    controller->lcdBrightnessChanged(90);
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("90"));
    controller->exec_brightness(1);
    m_log->clear();
    controller->setDefaultBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("90"));
    QCOMPARE(m_log->take(Source),
        QStringList({ "info: ScreenController::setDefaultBrightness()",
            "info: ScreenController::exec_brightness() 90" }));
    controller->setClockBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("150"));
}

void TestScreenController::newClockBrightnessIsAppliedAtOnce()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    controller->lcdClockBrightnessChanged(40);
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("40"));
    controller->setDefaultBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("150"));
    m_log->clear();
    controller->setClockBrightness();
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("40"));
    QCOMPARE(m_log->take(Source), QStringList({ "info: ScreenController::exec_brightness() 40" }));
}

void TestScreenController::settingsAreFollowed()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    Settings::instance()->setLcdBrightness(60);
    Settings::instance()->setLcdBrightness(60);
    Settings::instance()->setLcdClockBrightness(20);
    QCOMPARE(m_log->take(Source),
        QStringList({ "debug: ScreenController::lcdBrightnessChanged()",
            "info: ScreenController::exec_brightness() 60",
            "debug: ScreenController::lcdClockBrightnessChanged()",
            "info: ScreenController::exec_brightness() 20" }));
    QVERIFY(m_client.waitFor(Topic, "20"));
    QCOMPARE(m_client.payloads(Topic), QList<QByteArray>({ "60", "20" }));
}

void TestScreenController::backlightGoesOnOnce()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    WriteCounter writes(m_directory->filePath(QStringLiteral("panel0/bl_power")));
    controller->exec_backlight_on(); // on since the constructor
    QCOMPARE(writes.take(), 0);
    QCOMPARE(m_log->take(), QStringList());
    controller->exec_backlight_off();
    QCOMPARE(writes.take(), 1);
    m_log->clear();
    controller->exec_backlight_on();
    QCOMPARE(writes.take(), 1);
    controller->exec_backlight_on();
    QCOMPARE(writes.take(), 0);
    QCOMPARE(contents(QStringLiteral("bl_power")), QByteArray("0"));
    QCOMPARE(m_log->take(), QStringList({ "info: ScreenController::exec_backlight_on()" }));
}

void TestScreenController::backlightGoesOffEveryTime()
{
    const std::unique_ptr<ScreenController> controller = makeSettled();
    WriteCounter writes(m_directory->filePath(QStringLiteral("panel0/bl_power")));
    for (int i = 0; i < 2; ++i) {
        controller->exec_backlight_off();
        QCOMPARE(writes.take(), 1);
        QCOMPARE(contents(QStringLiteral("bl_power")), QByteArray("1"));
        QCOMPARE(m_log->take(), QStringList({ "debug: ScreenController::exec_backlight_off()" }));
    }
}

void TestScreenController::saveAndRestoreGoToTheSettings()
{
    const QString file = QStringLiteral("/data/velunor-touch.ini");
    const std::unique_ptr<ScreenController> controller = makeSettled();
    Settings::instance()->setLcdBrightness(60);
    Settings::instance()->setLcdClockBrightness(20);
    QVERIFY(!QFile::exists(file));
    m_log->clear();
    controller->saveSettings();
    QCOMPARE(m_log->take().mid(0, 2),
        QStringList({ "debug: ScreenController::saveSettings()", "debug: Settings::save()" }));
    QFile saved(file);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(saved.readAll(), QByteArray("[LCD]\nBrightness=60\nClockBrightness=20\n"));
    QVERIFY(saved.remove());

    controller->restoreSettings();
    QCOMPARE(m_log->take(Source),
        QStringList({ "debug: ScreenController::restoreSettings()",
            "debug: ScreenController::lcdBrightnessChanged()",
            "info: ScreenController::exec_brightness() 150",
            "debug: ScreenController::lcdClockBrightnessChanged()",
            "info: ScreenController::exec_brightness() 150" }));
    QCOMPARE(contents(QStringLiteral("brightness")), QByteArray("150"));
}

QTEST_GUILESS_MAIN(TestScreenController)
#include "tst_screencontroller.moc"
