// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings.h"
#include "propertyclasstest.h"
#include "samplevalue.h"
#include "textfile.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestSettings : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override
    {
        return std::make_unique<Settings>(m_directory->path());
    }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override;
    QStringList constructorLines() const override;

private slots:
    void init();
    void cleanup();

    void instanceIsOneObject() { checkInstance<Settings>(); }
    void fileIsInTheDataDirectory();
    void readingMakesNoFile();
    void readsTheFile();
    void damagedFileGivesDefaults_data();
    void damagedFileGivesDefaults();
    void fileWithObjectsIsNotRead_data();
    void fileWithObjectsIsNotRead();
    void fileThatCannotBeOpenedGivesDefaults();

    void defaultPlayerScreenIsOnlyStored();
    void settersDoNotWriteTheFile();

    void colorNames_data();
    void colorNames();
    void equalColorDoesNotNotify();
    void customColorShowsOnlyWhenChosen();
    void customColorIsTakenAsItStands();

    void saveWritesTheTwoBrightnessValues();
    void saveLeavesOtherKeys();
    void saveLogsTheValues();
    void saveMakesAMissingDirectory();
    void saveIntoAnUnusableDirectoryIsSilent();
    void revertGoesBackToTheStart();
    void revertComesBackToTheFileAsItWasBeforeASave();
    void revertLeavesOtherSettings();
    void revertOfUnchangedValuesIsSilent();

private:
    QString fileName() const { return m_directory->filePath(QStringLiteral("velunor-touch.ini")); }
    void write(const QByteArray &text) const { writeTextFile(fileName(), text); }
    QByteArray text() const { return readTextFile(fileName()); }
    QVariant stored(const QString &key) const;

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TestSettings::init()
{
    PropertyClassTest::init();
    m_directory.reset(new QTemporaryDir);
    QVERIFY(m_directory->isValid());
}

void TestSettings::cleanup()
{
    m_directory.reset();
    PropertyClassTest::cleanup();
}

QVariant TestSettings::stored(const QString &key) const
{
    return QSettings(fileName(), QSettings::IniFormat).value(key);
}

QList<PropertyRow> TestSettings::rows() const
{
    return {
        PropertyRow("uint brightness read write lcdBrightnessChanged(uint)", 150u)
            .writing({ 80u, 0u })
            .logging({ "debug: Settings::setLcdBrightness() %1" }),
        PropertyRow("uint clockBrightness read write lcdClockBrightnessChanged(uint)", 150u)
            .writing({ 300u })
            .logging({ "debug: Settings::setLcdClockBrightness() %1" }),
        PropertyRow("QString clockColor read write lcdClockColorChanged(QString)", "grey")
            .writing({ "green" })
            .moving("clockColorRGB")
            .logging({ "debug: Settings::setLcdClockColor() %1" }),
        PropertyRow("QString customClockColor read write", "#545050")
            .onEveryWrite()
            .telling("lcdClockColorChanged(QString)")
            .logging({ "debug: Settings::setLcdCustomClockColor() %1" })
            .loggingRepeats({ "debug: Settings::setLcdCustomClockColor() %1" }),
        { "QString clockColorRGB read lcdClockColorChanged(QString)", "#545050" },
        PropertyRow("bool timeFormat read write timeFormatChanged(bool)", true)
            .logging({ "debug: Settings::timeFormat write %1" }),
        PropertyRow("bool scrolling read write scrollingChanged(bool)", true)
            .logging({ "debug: Settings::scrolling write %1" }),
        PropertyRow("bool blankScreen read write blankScreenChanged(bool)", false)
            .logging({ "debug: Settings::blankScreen write %1" }),
        { "uint defaultPlayerScreen read write", 11u },
        PropertyRow("uint screenSaverTime read write screenSaverTimeChanged(uint)", 10u)
            .writing({ 3u, 0u })
            .onEveryWrite(),
        PropertyRow("bool hidePowerButton read write hidePowerButtonChanged(bool)", false)
            .logging({ "debug: Settings::hidePowerButton write %1" }),
        PropertyRow("bool hideOptionsButtons read write hideOptionsButtonsChanged(bool)", false)
            .logging({ "debug: Settings::setHideOptionsButtons write %1" }),
        PropertyRow("bool ShowBlurBackground read write showBlurBackgroundChanged(bool)", true)
            .logging({ "debug: Settings::setShowBlurBackground write %1" }),
    };
}

QStringList TestSettings::methodEntries() const
{
    return { "public signal lcdBrightnessChanged(uint)",
        "public signal lcdClockBrightnessChanged(uint)",
        "public signal lcdClockColorChanged(QString)", "public signal timeFormatChanged(bool)",
        "public signal scrollingChanged(bool)", "public signal blankScreenChanged(bool)",
        "public signal screenSaverTimeChanged(uint)", "public signal hidePowerButtonChanged(bool)",
        "public signal hideOptionsButtonsChanged(bool)",
        "public signal showBlurBackgroundChanged(bool)", "public slot save()",
        "public slot revert()" };
}

QStringList TestSettings::constructorLines() const
{
    return PropertyClassTest::constructorLines()
        + QStringList("debug: Settings: reading from: " + fileName());
}

void TestSettings::fileIsInTheDataDirectory()
{
    {
        const Settings settings;
        QCOMPARE(m_log->take(),
            QStringList({ constructorLine(QStringLiteral("Settings")),
                "debug: Settings: reading from: /data/velunor-touch.ini" }));
    }
    const Settings settings(m_directory->path());
    QCOMPARE(m_log->take().last(), "debug: Settings: reading from: " + fileName());
}

void TestSettings::readingMakesNoFile()
{
    const Settings settings(m_directory->path());
    QVERIFY(!QFile::exists(fileName()));
}

void TestSettings::readsTheFile()
{
    write("[LCD]\nBrightness=80\nClockBrightness=20\nDefaultPlayerScreen=12\n"
          "ScreenSaverTime=3\nclockColor=blue\n");
    const Settings settings(m_directory->path());
    QCOMPARE(settings.brightness(), 80u);
    QCOMPARE(settings.clockBrightness(), 20u);
    QCOMPARE(settings.defaultPlayerScreen(), 12u);
    QCOMPARE(settings.screenSaverTime(), 10u); // not a setting of the file
    QCOMPARE(settings.clockColor(), QStringLiteral("grey"));
}

void TestSettings::damagedFileGivesDefaults_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<uint>("brightness");
    QTest::addColumn<uint>("clockBrightness");
    QTest::addColumn<uint>("playerScreen");
    QTest::newRow("empty") << QByteArray() << 150u << 150u << 11u;
    QTest::newRow("other group only")
        << QByteArray("[Other]\nBrightness=80\n") << 150u << 150u << 11u;
    QTest::newRow("no group") << QByteArray("Brightness=80\nClockBrightness=80\n") << 150u << 150u
                              << 11u;
    QTest::newRow("one key") << QByteArray("[LCD]\nClockBrightness=20\n") << 150u << 20u << 11u;
    QTest::newRow("zero") << QByteArray("[LCD]\nBrightness=0\nClockBrightness=0\n") << 0u << 0u
                          << 11u;
    QTest::newRow("large") << QByteArray("[LCD]\nBrightness=300\nClockBrightness=4294967295\n")
                           << 300u << 4294967295u << 11u;
    QTest::newRow("too large") << QByteArray("[LCD]\nBrightness=4294967296\n") << 150u << 150u
                               << 11u;
    QTest::newRow("negative") << QByteArray(
        "[LCD]\nBrightness=-1\nClockBrightness=-80\nDefaultPlayerScreen=-1\n")
                              << 150u << 150u << 11u;
    QTest::newRow("text") << QByteArray(
        "[LCD]\nBrightness=bright\nClockBrightness=80x\nDefaultPlayerScreen=player\n")
                          << 150u << 150u << 11u;
    QTest::newRow("nothing") << QByteArray("[LCD]\nBrightness=\nClockBrightness=\"\"\n") << 150u
                             << 150u << 11u;
    QTest::newRow("fraction") << QByteArray("[LCD]\nBrightness=80.5\n") << 150u << 150u << 11u;
    QTest::newRow("list") << QByteArray("[LCD]\nBrightness=80, 90\n") << 150u << 150u << 11u;
    QTest::newRow("quoted") << QByteArray("[LCD]\nBrightness=\"80\"\n") << 80u << 150u << 11u;
    QTest::newRow("twice") << QByteArray("[LCD]\nBrightness=80\nBrightness=90\n") << 90u << 150u
                           << 11u;
    QTest::newRow("cut off") << QByteArray("[LCD]\nBrightness=80\nClockBri") << 80u << 150u << 11u;
    // As QSettings writes and reads them.
    QTest::newRow("escapes") << QByteArray("[LCD]\nBrightness=80\nAt=me@home\nText=@String(7\\0)"
                                           "\nOther=\\x140\\x4e40\\x400\\\\x40\\\\100\\0\\x31\n")
                             << 80u << 150u << 11u;
    QTest::newRow("binary") << QByteArray("\0\xff\xfe[LCD\n=\n]]\n\0", 14) << 150u << 150u << 11u;
}

void TestSettings::damagedFileGivesDefaults()
{
    QFETCH(QByteArray, content);
    write(content);
    const Settings settings(m_directory->path());
    QTEST(settings.brightness(), "brightness");
    QTEST(settings.clockBrightness(), "clockBrightness");
    QTEST(settings.defaultPlayerScreen(), "playerScreen");
    QCOMPARE(m_log->take().size(), 2); // the constructor's own lines, no complaint
    QCOMPARE(text(), content);
}

void TestSettings::fileWithObjectsIsNotRead_data()
{
    QTest::addColumn<QByteArray>("content");
    // A list of two billion elements, as QSettings would read it: that ended the program.
    QTest::newRow("@") << QByteArray(
        "[LCD]\nBrightness=80\nClockBrightness=@Variant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("@ in hexadecimal")
        << QByteArray("[LCD]\nBrightness=80\nOther=\\x10040Variant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("@ in octal") << QByteArray(
        "[Other]\nOther=\\100Variant(\\0\\0\\0\\tne\\\n0)\n[LCD]\nBrightness=80\n");
    QTest::newRow("a letter of it escaped")
        << QByteArray("[LCD]\nBrightness=80\nOther=@\\126ariant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("within quotation marks")
        << QByteArray("[LCD]\nBrightness=80\nOther=@\"Variant(\\0\\0\\0\\tne\\\n0)\"\n");
    QTest::newRow("after a zero byte")
        << QByteArray("[LCD]\nOther=") + '\0' + "\nClockBrightness=@Variant(\\0)\nBrightness=80\n";
    QTest::newRow("blanks after quotation marks")
        << QByteArray("[LCD]\nBrightness=80\nOther=@\"Var\" \tiant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("no number") << QByteArray(
        "[LCD]\nBrightness=80\nOther=@\\xVariant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("byte order marks") << QByteArray(
        "\xef\xbb\xbf[LCD]\nBrightness=80\nOther=@\"\"\xef\xbb\xbfVariant(\\0\\0\\0\\tne\\\n0)\n");
    QTest::newRow("becomes a text that looks like one")
        << QByteArray("[LCD]\nBrightness=80\nOther=@@Variant(\\0)\n");
    QTest::newRow("a time") << QByteArray(
        "[LCD]\nBrightness=80\nOther=@DateTime(\\0\\0\\0\\x10)\n");
}

void TestSettings::fileWithObjectsIsNotRead()
{
    QFETCH(QByteArray, content);
    write(content);
    {
        Settings settings(m_directory->path());
        QCOMPARE(m_log->take().size(), 2); // nothing is reported
        QCOMPARE(settings.brightness(), 150u);
        QCOMPARE(settings.clockBrightness(), 150u);
        QCOMPARE(settings.defaultPlayerScreen(), 11u);
        QCOMPARE(text(), content);
        settings.setLcdBrightness(90);
        settings.save();
        settings.setLcdBrightness(91);
        settings.save();
    }
    QCOMPARE(text(), QByteArray("[LCD]\nBrightness=91\nClockBrightness=150\n"));
    {
        Settings settings(m_directory->path());
        write(content); // while the program runs
        settings.setLcdBrightness(91);
        settings.save();
        QCOMPARE(settings.brightness(), 91u);
    }
    QCOMPARE(text(), QByteArray("[LCD]\nBrightness=91\nClockBrightness=150\n"));
    QFile aside(fileName() + ".unread");
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);
    m_log->clear();
    const Settings again(m_directory->path());
    QCOMPARE(again.brightness(), 91u);
    QCOMPARE(m_log->take().size(), 2);
}

void TestSettings::fileThatCannotBeOpenedGivesDefaults()
{
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("velunor-touch.ini")));
    const Settings settings(m_directory->path());
    QCOMPARE(settings.brightness(), 150u);
    QCOMPARE(settings.clockBrightness(), 150u);
    QCOMPARE(settings.defaultPlayerScreen(), 11u);
    QCOMPARE(m_log->take().size(), 2);
}

void TestSettings::defaultPlayerScreenIsOnlyStored()
{
    write("[LCD]\nDefaultPlayerScreen=12\n");
    Settings settings(m_directory->path());
    m_log->clear();
    QVERIFY(settings.setProperty("defaultPlayerScreen", 13u));
    QCOMPARE(settings.defaultPlayerScreen(), 13u);
    QCOMPARE(m_log->take(), QStringList());
    settings.save();
    QCOMPARE(stored(QStringLiteral("LCD/DefaultPlayerScreen")).toUInt(), 12u);
}

void TestSettings::settersDoNotWriteTheFile()
{
    {
        Settings settings(m_directory->path());
        const QMetaObject &meta = Settings::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            if (meta.property(i).isWritable())
                QVERIFY(meta.property(i).write(
                    &settings, sampleValue(meta.property(i).read(&settings))));
        }
    }
    QVERIFY(!QFile::exists(fileName()));
}

void TestSettings::colorNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("accepted");
    QTest::addColumn<QString>("rgb");
    QTest::newRow("grey") << "grey"
                          << "grey"
                          << "#545050";
    QTest::newRow("green") << "green"
                           << "green"
                           << "#5dfc0a";
    QTest::newRow("blue") << "blue"
                          << "blue"
                          << "#05edff";
    QTest::newRow("custom") << "custom"
                            << "custom"
                            << "#123456";
    QTest::newRow("purple") << "purple"
                            << "grey"
                            << "#545050";
    QTest::newRow("other case") << "Green"
                                << "grey"
                                << "#545050";
    QTest::newRow("blank behind") << "blue "
                                  << "grey"
                                  << "#545050";
    QTest::newRow("an RGB text") << "#5dfc0a"
                                 << "grey"
                                 << "#545050";
    QTest::newRow("empty") << ""
                           << "grey"
                           << "#545050";
}

void TestSettings::colorNames()
{
    QFETCH(QString, name);
    QFETCH(QString, accepted);
    QFETCH(QString, rgb);
    for (const QString &before : { QStringLiteral("grey"), QStringLiteral("green"),
             QStringLiteral("blue"), QStringLiteral("custom") }) {
        Settings settings(m_directory->path());
        settings.setLcdCustomClockColor(QStringLiteral("#123456"));
        settings.setLcdClockColor(before);
        m_log->clear();
        QSignalSpy changed(&settings, &Settings::lcdClockColorChanged);
        settings.setLcdClockColor(name);
        QCOMPARE(settings.clockColor(), accepted);
        QCOMPARE(settings.clockColorRGB(), rgb);
        const bool expected = accepted != before;
        QCOMPARE(changed.count(), expected ? 1 : 0);
        if (expected)
            QCOMPARE(changed.first(), QVariantList({ accepted }));
        QCOMPARE(m_log->take(),
            expected ? QStringList({ "debug: Settings::setLcdClockColor() " + accepted })
                     : QStringList());
    }
}

void TestSettings::equalColorDoesNotNotify()
{
    Settings settings(m_directory->path());
    m_log->clear();
    QSignalSpy changed(&settings, &Settings::lcdClockColorChanged);
    settings.setLcdClockColor(QStringLiteral("grey"));
    settings.setLcdClockColor(QStringLiteral("purple"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_log->take(), QStringList());
}

void TestSettings::customColorShowsOnlyWhenChosen()
{
    Settings settings(m_directory->path());
    settings.setLcdCustomClockColor(QStringLiteral("#123456"));
    QCOMPARE(settings.clockColorRGB(), QStringLiteral("#545050"));
    settings.setLcdClockColor(QStringLiteral("custom"));
    QCOMPARE(settings.property("clockColorRGB").toString(), QStringLiteral("#123456"));
    settings.setLcdCustomClockColor(QStringLiteral("#654321"));
    QCOMPARE(settings.clockColorRGB(), QStringLiteral("#654321"));
    settings.setLcdClockColor(QStringLiteral("blue"));
    QCOMPARE(settings.clockColorRGB(), QStringLiteral("#05edff"));
    QCOMPARE(settings.customClockColor(), QStringLiteral("#654321"));
}

void TestSettings::customColorIsTakenAsItStands()
{
    Settings settings(m_directory->path());
    settings.setLcdClockColor(QStringLiteral("custom"));
    for (const QString &odd : { QStringLiteral("no colour"), QString(), QStringLiteral("grün") }) {
        settings.setLcdCustomClockColor(odd);
        QCOMPARE(settings.clockColorRGB(), odd);
    }
}

void TestSettings::saveWritesTheTwoBrightnessValues()
{
    Settings settings(m_directory->path());
    settings.setLcdBrightness(80);
    settings.setLcdClockBrightness(20);
    settings.setDefaultPlayerScreen(12);
    settings.setScreenSaverTime(3);
    settings.save();
    QCOMPARE(text(), QByteArray("[LCD]\nBrightness=80\nClockBrightness=20\n"));
}

void TestSettings::saveLeavesOtherKeys()
{
    write("[LCD]\nBrightness=80\nDefaultPlayerScreen=12\nOther=kept\n\n[Network]\nname=\"a b\"\n");
    Settings settings(m_directory->path());
    settings.setLcdBrightness(90);
    settings.save();
    QCOMPARE(stored(QStringLiteral("LCD/Brightness")).toUInt(), 90u);
    QCOMPARE(stored(QStringLiteral("LCD/ClockBrightness")).toUInt(), 150u);
    QCOMPARE(stored(QStringLiteral("LCD/DefaultPlayerScreen")).toUInt(), 12u);
    QCOMPARE(stored(QStringLiteral("LCD/Other")).toString(), QStringLiteral("kept"));
    QCOMPARE(stored(QStringLiteral("Network/name")).toString(), QStringLiteral("a b"));
    QCOMPARE(QSettings(fileName(), QSettings::IniFormat).allKeys().size(), 5);
}

void TestSettings::saveLogsTheValues()
{
    Settings settings(m_directory->path());
    settings.setLcdClockBrightness(20);
    m_log->clear();
    QVERIFY(QMetaObject::invokeMethod(&settings, "save", Qt::DirectConnection));
    QCOMPARE(m_log->take(),
        QStringList({ "debug: Settings::save()", "debug: Settings::save:LCD/Brightness150",
            "debug: Settings::save:LCD/ClockBrightness20" }));
}

void TestSettings::saveMakesAMissingDirectory()
{
    const QString directory = m_directory->filePath(QStringLiteral("not/there"));
    Settings settings(directory);
    QCOMPARE(settings.brightness(), 150u);
    QVERIFY(!QFile::exists(directory));
    settings.setLcdBrightness(80);
    settings.save();
    QCOMPARE(Settings(directory).brightness(), 80u);
}

void TestSettings::saveIntoAnUnusableDirectoryIsSilent()
{
    // A file where the directory should be stops root as well, unlike missing permissions.
    const QString obstacle = m_directory->filePath(QStringLiteral("file"));
    QFile file(obstacle);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    Settings settings(obstacle);
    QCOMPARE(settings.brightness(), 150u);
    settings.setLcdBrightness(80);
    m_log->clear();
    settings.save();
    QCOMPARE(m_log->take().size(), 3); // save()'s own lines, no complaint
    QCOMPARE(settings.brightness(), 80u);
    settings.revert();
    QCOMPARE(settings.brightness(), 150u);
}

void TestSettings::revertGoesBackToTheStart()
{
    write("[LCD]\nBrightness=80\nClockBrightness=20\n");
    Settings settings(m_directory->path());
    settings.setLcdBrightness(90);
    settings.setLcdClockBrightness(30);
    m_log->clear();
    QSignalSpy brightness(&settings, &Settings::lcdBrightnessChanged);
    QSignalSpy clockBrightness(&settings, &Settings::lcdClockBrightnessChanged);
    settings.revert();
    QCOMPARE(settings.brightness(), 80u);
    QCOMPARE(settings.clockBrightness(), 20u);
    QCOMPARE(brightness.count(), 1);
    QCOMPARE(brightness.first(), QVariantList({ 80u }));
    QCOMPARE(clockBrightness.count(), 1);
    QCOMPARE(clockBrightness.first(), QVariantList({ 20u }));
    QCOMPARE(m_log->take(),
        QStringList({ "debug: Settings::revert()", "debug: Settings::setLcdBrightness() 80",
            "debug: Settings::setLcdClockBrightness() 20" }));
}

void TestSettings::revertComesBackToTheFileAsItWasBeforeASave()
{
    Settings settings(m_directory->path());
    settings.setLcdBrightness(80);
    settings.save();
    settings.setLcdBrightness(60);
    settings.revert();
    QCOMPARE(settings.brightness(), 150u);
    QCOMPARE(stored(QStringLiteral("LCD/Brightness")).toUInt(), 80u);
}

void TestSettings::revertLeavesOtherSettings()
{
    Settings settings(m_directory->path());
    const QMetaObject &meta = Settings::staticMetaObject;
    QList<QVariant> values;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (meta.property(i).isWritable())
            meta.property(i).write(&settings, sampleValue(meta.property(i).read(&settings)));
        values.append(meta.property(i).read(&settings));
    }
    settings.revert();
    for (int i = meta.propertyOffset() + 2; i < meta.propertyCount(); ++i)
        QCOMPARE(meta.property(i).read(&settings), values.at(i - meta.propertyOffset()));
}

void TestSettings::revertOfUnchangedValuesIsSilent()
{
    Settings settings(m_directory->path());
    m_log->clear();
    QSignalSpy brightness(&settings, &Settings::lcdBrightnessChanged);
    QSignalSpy clockBrightness(&settings, &Settings::lcdClockBrightnessChanged);
    QVERIFY(QMetaObject::invokeMethod(&settings, "revert", Qt::DirectConnection));
    QCOMPARE(brightness.count() + clockBrightness.count(), 0);
    QCOMPARE(m_log->take(), QStringList({ "debug: Settings::revert()" }));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
