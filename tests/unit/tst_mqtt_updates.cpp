// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "nobroker.h"
#include "player.h"
#include "roon.h"
#include "roonzone.h"
#include "settings.h"
#include "signalrecorder.h"
#include "spotify.h"
#include "velunor_state.h"

#include <QMetaProperty>
#include <QTest>
#include <QVariantMap>

#include <memory>

/** A zone with a property that no text can be converted to. */
class OddZone : public RoonZone {
    Q_OBJECT
    Q_PROPERTY(QVariantMap odd MEMBER odd)

public:
    OddZone()
        : RoonZone(QStringLiteral("odd"))
    {
    }
    QVariantMap odd;
};

namespace {

QStringList zoneLevels(const QString &rest)
{
    return (QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/z1/") + rest)
        .split(QLatin1Char('/'));
}

QStringList roonLevels(const QString &rest)
{
    return (QStringLiteral("Velunor/Controller/remote_control/v4/roon/Roon/") + rest)
        .split(QLatin1Char('/'));
}

QStringList spotifyLevels(const QString &rest)
{
    return (QStringLiteral("Velunor/Controller/remote_control/v4/spotify/") + rest)
        .split(QLatin1Char('/'));
}

QStringList stateLevels(const QString &rest)
{
    return (QStringLiteral("Velunor/State/v1/") + rest).split(QLatin1Char('/'));
}

QStringList settingsLevels(const QString &rest)
{
    return (QStringLiteral("Velunor/Settings/v2/") + rest).split(QLatin1Char('/'));
}

/** All properties of an object and what they hold. */
QVariantMap snapshot(const QObject &object)
{
    QVariantMap values;
    for (int i = 0; i < object.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = object.metaObject()->property(i);
        if (!property.isConstant())
            values.insert(QString::fromLatin1(property.name()), property.read(&object));
    }
    return values;
}

/** A payload of each kind and what it is as each type. */
struct Conversion {
    const char *name;
    QByteArray payload;
    bool asBool;
    uint asUint;
    float asFloat;
};

const QList<Conversion> Conversions {
    { "empty", "", false, 0, 0.0f },
    { "null", QByteArray(), false, 0, 0.0f },
    { "zero", "0", false, 0, 0.0f },
    { "one", "1", true, 1, 1.0f },
    { "false", "false", false, 0, 0.0f },
    { "False", "False", false, 0, 0.0f },
    { "FALSE", "FALSE", false, 0, 0.0f },
    { "true", "true", true, 0, 0.0f },
    { "no", "no", true, 0, 0.0f },
    { "two zeros", "00", true, 0, 0.0f },
    { "number", "42", true, 42, 42.0f },
    { "negative", "-12.5", true, 0, -12.5f },
    { "negative whole", "-1", true, 0, -1.0f },
    { "fraction", "0.5", true, 0, 0.5f },
    { "exponent", "1e3", true, 0, 1000.0f },
    { "comma", "1,5", true, 0, 0.0f },
    { "letters", "abc", true, 0, 0.0f },
    { "number and letters", "42abc", true, 0, 0.0f },
    { "largest", "4294967295", true, 4294967295u, 4294967295.0f },
    { "one more", "4294967296", true, 0, 4294967296.0f },
    { "two more", "4294967297", true, 0, 4294967296.0f },
    { "more than a float holds", "1e39", true, 0, 0.0f },
    { "more than anything holds", "-1e400", true, 0, 0.0f },
    { "infinite", "inf", true, 0, 0.0f },
    { "not a number", "nan", true, 0, 0.0f },
    { "accented",
        "K\xc3\xbc"
        "che",
        true, 0, 0.0f },
};

QVariant converted(const Conversion &conversion, int type)
{
    switch (type) {
    case QMetaType::Bool:
        return conversion.asBool;
    case QMetaType::UInt:
        return conversion.asUint;
    case QMetaType::Float:
        return conversion.asFloat;
    default:
        return QString::fromUtf8(conversion.payload);
    }
}

} // namespace

class TestMqttUpdates : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { m_log.reset(); }

    void zoneKeysNameProperties_data();
    void zoneKeysNameProperties();
    void zonePropertiesConvertTheText_data();
    void zonePropertiesConvertTheText();
    void unknownZoneKeyIsDropped_data();
    void unknownZoneKeyIsDropped();
    void outputsAreHandedOverAsTheyAre();
    void valueThatCannotBeConvertedIsDropped();

    void roonKeysNameProperties_data();
    void roonKeysNameProperties();
    void unknownRoonKeyIsDropped_data();
    void unknownRoonKeyIsDropped();
    void coreDetectedNotifiesTwice_data();
    void coreDetectedNotifiesTwice();

    void spotifyKeysNameProperties_data();
    void spotifyKeysNameProperties();
    void unknownSpotifyKeyIsDropped_data();
    void unknownSpotifyKeyIsDropped();

    void stateIsWrittenAsABoolean_data();
    void stateIsWrittenAsABoolean();
    void unknownStateKeyIsDropped_data();
    void unknownStateKeyIsDropped();

    void settingsKeysCallSetters_data();
    void settingsKeysCallSetters();
    void settingsConvertTheText_data();
    void settingsConvertTheText();
    void screenSaverTimeNotifiesOnEveryMessage();
    void unknownSettingsKeyIsIgnored_data();
    void unknownSettingsKeyIsIgnored();

private:
    QStringList lines() { return m_log->take(QStringLiteral("mqtt.cpp")); }

    std::unique_ptr<Mqtt> m_mqtt;
    std::unique_ptr<LogCapture> m_log;
};

void TestMqttUpdates::initTestCase()
{
    m_mqtt = std::make_unique<Mqtt>();
    for (const Mqtt *const mqtt : { m_mqtt.get(), Mqtt::instance() })
        waitForTheFailureOf(mqtt);
}

void TestMqttUpdates::init()
{
    m_log = std::make_unique<LogCapture>();
}

void TestMqttUpdates::zoneKeysNameProperties_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QVariant>("value");
    const auto row
        = [](const char *key, const char *property, const char *payload, const QVariant &value) {
              QTest::newRow(key) << key << property << QByteArray(payload) << value;
          };
    row("id", "id", "z9", "z9");
    row("name", "name",
        "K\xc3\xbc"
        "che",
        QStringLiteral("Küche"));
    row("state", "state", "playing", "playing");
    row("nowPlaying/seekPosition", "nowPlaying_seekPosition", "42", 42u);
    row("nowPlaying/length", "nowPlaying_length", "200", 200u);
    row("nowPlaying/album", "nowPlaying_album", "Album", "Album");
    row("nowPlaying/song", "nowPlaying_song", "Song", "Song");
    row("nowPlaying/artist", "nowPlaying_artist", "Artist", "Artist");
    row("nowPlaying/imageKey", "nowPlaying_imageKey", "key", "key");
    row("settings/shuffle", "settings_shuffle", "true", true);
    row("settings/loop", "settings_loop", "loop_one", "loop_one");
    row("settings/autoRadio", "settings_autoRadio", "1", true);
    row("volume/available", "volume_available", "true", true);
    row("volume/type", "volume_type", "db", "db");
    row("volume/value", "volume_value", "-12.5", -12.5f);
    row("volume/min", "volume_min", "-80", -80.0f);
    row("volume/max", "volume_max", "100", 100.0f);
    row("volume/hard_limit_min", "volume_hard_limit_min", "-70", -70.0f);
    row("volume/hard_limit_max", "volume_hard_limit_max", "90", 90.0f);
    row("volume/soft_limit", "volume_soft_limit", "60.5", 60.5f);
    row("volume/step", "volume_step", "0.5", 0.5f);
    row("volume/is_muted", "volume_is_muted", "true", true);
    row("queue_items_remaining", "queue_items_remaining", "12", 12u);
    row("queue_time_remaining", "queue_time_remaining", "3600", 3600u);
    row("is_previous_allowed", "is_previous_allowed", "true", true);
    row("is_next_allowed", "is_next_allowed", "true", true);
    row("is_pause_allowed", "is_pause_allowed", "true", true);
    row("is_play_allowed", "is_play_allowed", "true", true);
    row("is_seek_allowed", "is_seek_allowed", "true", true);
    row("volume_value", "volume_value", "3", 3.0f); // the property's own name
    row("state/further/levels", "state", "paused", "paused");
}

void TestMqttUpdates::zoneKeysNameProperties()
{
    QFETCH(QString, key);
    QFETCH(QString, property);
    QFETCH(QByteArray, payload);
    QFETCH(QVariant, value);
    RoonZone zone(QStringLiteral("z1"));
    QVariantMap expected = snapshot(zone);
    expected.insert(property, value);
    QVERIFY(m_mqtt->updateZone(&zone, zoneLevels(key), payload));
    QCOMPARE(snapshot(zone), expected);
    QCOMPARE(lines(),
        QStringList(QStringLiteral("debug: Mqtt::updateZone() setting property %1 to value: %2")
                        .arg(property, QString::fromUtf8(payload == "1" ? "true" : payload))));
}

void TestMqttUpdates::zonePropertiesConvertTheText_data()
{
    QTest::addColumn<int>("conversion");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("property");
    const QList<QPair<const char *, const char *>> properties {
        { "settings/shuffle", "settings_shuffle" },
        { "nowPlaying/length", "nowPlaying_length" },
        { "volume/value", "volume_value" },
        { "nowPlaying/song", "nowPlaying_song" },
    };
    for (int i = 0; i < Conversions.size(); ++i) {
        for (const auto &property : properties)
            QTest::addRow("%s, %s", property.second, Conversions.at(i).name)
                << i << property.first << property.second;
    }
}

void TestMqttUpdates::zonePropertiesConvertTheText()
{
    QFETCH(int, conversion);
    QFETCH(QString, key);
    QFETCH(QString, property);
    const Conversion &row = Conversions.at(conversion);
    const QByteArray name = property.toLatin1();
    RoonZone zone(QStringLiteral("z1"));
    // From a value that is not the null value, so that a null value is seen to be written.
    QVERIFY(zone.setProperty(name, QStringLiteral("7")));
    const QVariant expected = converted(row, zone.property(name).userType());
    QVERIFY(m_mqtt->updateZone(&zone, zoneLevels(key), row.payload));
    QCOMPARE(zone.property(name), expected);
    QCOMPARE(lines(),
        QStringList(QStringLiteral("debug: Mqtt::updateZone() setting property ") + property
            + QStringLiteral(" to value: ") + expected.toString()));
}

void TestMqttUpdates::unknownZoneKeyIsDropped_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::newRow("foo") << "foo"
                         << "foo";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("group alone") << "settings"
                                 << "settings_";
    QTest::newRow("group and empty") << "volume/"
                                     << "volume_";
    QTest::newRow("group of another") << "nowPlaying/shuffle"
                                      << "nowPlaying_shuffle";
    QTest::newRow("other case") << "Name"
                                << "Name";
    QTest::newRow("other case of a group") << "Volume/value"
                                           << "Volume";
    QTest::newRow("outputs in a group") << "settings/outputs"
                                        << "settings_outputs";
    QTest::newRow("accented") << "größe"
                              << "größe";
}

void TestMqttUpdates::unknownZoneKeyIsDropped()
{
    QFETCH(QString, key);
    QFETCH(QString, name);
    RoonZone zone(QStringLiteral("z1"));
    const QVariantMap before = snapshot(zone);
    QVERIFY(!m_mqtt->updateZone(&zone, zoneLevels(key), "1"));
    QCOMPARE(snapshot(zone), before);
    QCOMPARE(lines(),
        QStringList(QStringLiteral("warning: Mqtt::updateZone() unknown property: ") + name));
    // A topic that ends before the key reads as an empty key.
    QVERIFY(!m_mqtt->updateZone(&zone, { QStringLiteral("Velunor") }, "1"));
    QCOMPARE(
        lines(), QStringList(QStringLiteral("warning: Mqtt::updateZone() unknown property: ")));
}

void TestMqttUpdates::outputsAreHandedOverAsTheyAre()
{
    RoonZone zone(QStringLiteral("z1"));
    const QVariantMap before = snapshot(zone);
    QVERIFY(m_mqtt->updateZone(&zone, zoneLevels(QStringLiteral("outputs")),
        R"([{"display_name":"Kitchen"},{"display_name":"Bath"}])"));
    QCOMPARE(zone.outputs(), QStringList({ "Kitchen", "Bath" }));
    QCOMPARE(lines(), QStringList());
    QVERIFY(m_mqtt->updateZone(&zone, zoneLevels(QStringLiteral("outputs")), "not JSON"));
    QCOMPARE(zone.outputs(), QStringList());
    QCOMPARE(snapshot(zone), before);
}

void TestMqttUpdates::valueThatCannotBeConvertedIsDropped()
{
    OddZone zone;
    zone.odd.insert(QStringLiteral("a"), 1);
    QVERIFY(!m_mqtt->updateZone(&zone, zoneLevels(QStringLiteral("odd")), "1"));
    QCOMPARE(zone.odd.size(), 1);
    QCOMPARE(lines(),
        QStringList(
            QStringLiteral("warning: Mqtt::updateZone() can't set type for property: odd")));
}

void TestMqttUpdates::roonKeysNameProperties_data()
{
    QTest::addColumn<QString>("key");
    for (const char *key : { "serverName", "id", "serverUrl", "version" })
        QTest::newRow(key) << key;
}

void TestMqttUpdates::roonKeysNameProperties()
{
    QFETCH(QString, key);
    SignalRecorder recorder(Roon::instance());
    for (const QByteArray &payload : { QByteArray("K\xc3\xbc"
                                                  "che"),
             QByteArray("127.0.0.1:9330"), QByteArray() }) {
        QVariantMap expected = snapshot(*Roon::instance());
        expected.insert(key, QString::fromUtf8(payload));
        QVERIFY(m_mqtt->updateRoon(roonLevels(key), payload));
        QCOMPARE(snapshot(*Roon::instance()), expected);
        QCOMPARE(lines(),
            QStringList(QStringLiteral("info: Mqtt::updateRoon() setting property %1 to value: %2")
                            .arg(key, QString::fromUtf8(payload))));
    }
    QCOMPARE(recorder.take(), QStringList());
}

void TestMqttUpdates::unknownRoonKeyIsDropped_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("foo") << "foo";
    QTest::newRow("empty") << "";
    QTest::newRow("other case") << "coredetected";
}

void TestMqttUpdates::unknownRoonKeyIsDropped()
{
    QFETCH(QString, key);
    const QVariantMap before = snapshot(*Roon::instance());
    SignalRecorder recorder(Roon::instance());
    QVERIFY(!m_mqtt->updateRoon(roonLevels(key), "1"));
    QCOMPARE(snapshot(*Roon::instance()), before);
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(lines(),
        QStringList(QStringLiteral("warning: Mqtt::updateRoon() unknown property: ") + key));
}

void TestMqttUpdates::coreDetectedNotifiesTwice_data()
{
    QTest::addColumn<int>("conversion");
    for (int i = 0; i < Conversions.size(); ++i)
        QTest::newRow(Conversions.at(i).name) << i;
}

void TestMqttUpdates::coreDetectedNotifiesTwice()
{
    QFETCH(int, conversion);
    const Conversion &row = Conversions.at(conversion);
    for (const bool before : { false, true }) {
        Roon::instance()->setCoreDetected(before);
        SignalRecorder recorder(Roon::instance());
        QVERIFY(m_mqtt->updateRoon(roonLevels(QStringLiteral("coreDetected")), row.payload));
        QCOMPARE(Roon::instance()->coreDetected(), row.asBool);
        QCOMPARE(recorder.take(), QStringList({ "coreDetectionChanged", "coreDetectionChanged" }));
        QCOMPARE(lines(),
            QStringList(
                QStringLiteral("info: Mqtt::updateRoon() setting property coreDetected to value: ")
                + QLatin1String(row.asBool ? "true" : "false")));
    }
}

void TestMqttUpdates::spotifyKeysNameProperties_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *key, const char *property, const char *payload,
                         const QVariant &value) {
        QTest::addRow("%s, %s", key, payload) << key << property << QByteArray(payload) << value;
    };
    row("state", "state", "playing", "playing");
    row("nowPlaying/seekPosition", "nowPlaying_seekPosition", "42", 42u);
    row("nowPlaying/length", "nowPlaying_length", "200", 200u);
    row("nowPlaying/length", "nowPlaying_length", "abc", 0u);
    row("nowPlaying/album", "nowPlaying_album", "Album", "Album");
    row("nowPlaying/song", "nowPlaying_song", "Lied \xc3\xbc", QStringLiteral("Lied ü"));
    row("nowPlaying/artist", "nowPlaying_artist", "Artist", "Artist");
    row("nowPlaying/imageUrl", "nowPlaying_imageUrl", "http://127.0.0.1/a", "http://127.0.0.1/a");
}

void TestMqttUpdates::spotifyKeysNameProperties()
{
    QFETCH(QString, key);
    QFETCH(QString, property);
    QFETCH(QByteArray, payload);
    QFETCH(QVariant, value);
    QVariantMap expected = snapshot(*Spotify::instance());
    expected.insert(property, value);
    QVERIFY(m_mqtt->updateSpotify(spotifyLevels(key), payload));
    QCOMPARE(snapshot(*Spotify::instance()), expected);
    QCOMPARE(lines(),
        QStringList(
            { QStringLiteral("info: Mqtt::updateSpotify() ") + key.section(QLatin1Char('/'), 0, 0),
                QStringLiteral("debug: Mqtt::updateSpotify() ") + QString::fromUtf8(payload),
                QStringLiteral("debug: Mqtt::updateSpotify() setting property %1 to value: %2")
                    .arg(property, value.toString()) }));
}

void TestMqttUpdates::unknownSpotifyKeyIsDropped_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::newRow("foo") << "foo"
                         << "foo";
    QTest::newRow("group alone") << "nowPlaying"
                                 << "nowPlaying_";
    QTest::newRow("no group here") << "settings/shuffle"
                                   << "settings";
    QTest::newRow("empty") << ""
                           << "";
}

void TestMqttUpdates::unknownSpotifyKeyIsDropped()
{
    QFETCH(QString, key);
    QFETCH(QString, name);
    const QVariantMap before = snapshot(*Spotify::instance());
    QVERIFY(!m_mqtt->updateSpotify(spotifyLevels(key), "1"));
    QCOMPARE(snapshot(*Spotify::instance()), before);
    QCOMPARE(
        lines().last(), QStringLiteral("warning: Mqtt::updateSpotify() unknown property: ") + name);
}

void TestMqttUpdates::stateIsWrittenAsABoolean_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<int>("conversion");
    for (const char *property : { "Stage", "Init", "Installation", "RequireConfigure",
             "RequireReboot", "ConfigureIsRunning", "UpdateAvailable", "UpdateInstalling",
             "UpdateInhibited", "WebIfaceIsUp", "TimeSynced", "UpdateInfo", "InhibitReason" }) {
        for (int i = 0; i < Conversions.size(); ++i)
            QTest::newRow((QByteArray(property) + ", " + Conversions.at(i).name).constData())
                << property << i;
    }
}

void TestMqttUpdates::stateIsWrittenAsABoolean()
{
    QFETCH(QString, property);
    QFETCH(int, conversion);
    const Conversion &row = Conversions.at(conversion);
    const QString text = QLatin1String(row.asBool ? "true" : "false");
    VelunorState *const state = VelunorState::instance();
    const QByteArray name = property.toLatin1();
    const bool isText = state->property(name).userType() == QMetaType::QString;
    const QVariant expected = isText ? QVariant(text) : QVariant(row.asBool);
    QVERIFY(state->setProperty(name, !row.asBool)); // so that there is something to notify
    QVariantMap all = snapshot(*state);
    all.insert(property, expected);
    m_log->clear();
    SignalRecorder recorder(state);
    QVERIFY(m_mqtt->updateVelunorState(stateLevels(property), row.payload));
    QCOMPARE(snapshot(*state), all);
    QCOMPARE(recorder.take().size(), 1);
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("info: Mqtt::updateVelunorState() ") + property,
            QStringLiteral("debug: Mqtt::updateVelunorState() setting property %1 to value: %2")
                .arg(property, text) }));
    QVERIFY(m_mqtt->updateVelunorState(stateLevels(property), row.payload));
    QCOMPARE(recorder.take(), QStringList());
}

void TestMqttUpdates::unknownStateKeyIsDropped_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("foo") << "foo";
    QTest::newRow("empty") << "";
    QTest::newRow("other case") << "requirereboot";
}

void TestMqttUpdates::unknownStateKeyIsDropped()
{
    QFETCH(QString, key);
    const QVariantMap before = snapshot(*VelunorState::instance());
    QVERIFY(!m_mqtt->updateVelunorState(stateLevels(key), "1"));
    QCOMPARE(snapshot(*VelunorState::instance()), before);
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("info: Mqtt::updateVelunorState() ") + key,
            QStringLiteral("warning: Mqtt::updateVelunorState() unknown property: ") + key }));
    QVERIFY(!VelunorState::instance()->dynamicPropertyNames().contains(key.toLocal8Bit()));
}

void TestMqttUpdates::settingsKeysCallSetters_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("expectedSignals");
    const auto row = [](const char *key, const char *payload, const char *property,
                         const QVariant &value, const QStringList &expected) {
        QTest::addRow("%s, %s", key, payload)
            << key << QByteArray(payload) << property << value << expected;
    };
    // Each from the default: the first row of a pair changes it, the second does not.
    row("touchscreen_blankscreen", "true", "blankScreen", true, { "blankScreenChanged true" });
    row("touchscreen_blankscreen", "0", "blankScreen", false, {});
    row("touchscreen_scrolling", "false", "scrolling", false, { "scrollingChanged false" });
    row("touchscreen_scrolling", "yes", "scrolling", true, {});
    row("touchscreen_clock24", "0", "timeFormat", false, { "timeFormatChanged false" });
    row("touchscreen_clock24", "1", "timeFormat", true, {});
    row("touchscreen_clockcolor", "blue", "clockColor", "blue", { "lcdClockColorChanged blue" });
    row("touchscreen_clockcolor", "mauve", "clockColor", "grey", {});
    row("touchscreen_custom_clockcolor", "#010203", "customClockColor", "#010203",
        { "lcdClockColorChanged #010203" });
    row("touchscreen_custom_clockcolor", "#545050", "customClockColor", "#545050",
        { "lcdClockColorChanged #545050" });
    row("touchscreen_screensaver_time", "300", "screenSaverTime", 300u,
        { "screenSaverTimeChanged 300" });
    row("touchscreen_screensaver_time", "10", "screenSaverTime", 10u,
        { "screenSaverTimeChanged 10" });
    row("touchscreen_screensaver_time", "soon", "screenSaverTime", 0u,
        { "screenSaverTimeChanged 0" });
    row("touchscreen_hide_power_button", "1", "hidePowerButton", true,
        { "hidePowerButtonChanged true" });
    row("touchscreen_hide_power_button", "", "hidePowerButton", false, {});
    row("touchscreen_hide_option_buttons", "1", "hideOptionsButtons", true,
        { "hideOptionsButtonsChanged true" });
    row("touchscreen_hide_option_buttons", "FALSE", "hideOptionsButtons", false, {});
    row("touchscreen_show_blur_image", "0", "ShowBlurBackground", false,
        { "showBlurBackgroundChanged false" });
    row("touchscreen_show_blur_image", "1", "ShowBlurBackground", true, {});
}

/** The settings as they are without a message. */
static void resetSettings()
{
    Settings *const settings = Settings::instance();
    settings->setBlankScreen(false);
    settings->setScrolling(true);
    settings->setTimeFormat(true);
    settings->setLcdClockColor(QStringLiteral("grey"));
    settings->setLcdCustomClockColor(QStringLiteral("#545050"));
    settings->setScreenSaverTime(10);
    settings->setHidePowerButton(false);
    settings->setHideOptionsButtons(false);
    settings->setShowBlurBackground(true);
}

void TestMqttUpdates::settingsKeysCallSetters()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, payload);
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QStringList, expectedSignals);
    resetSettings();
    QVariantMap expected = snapshot(*Settings::instance());
    expected.insert(property, value);
    if (property == QLatin1String("clockColor") && value == QVariant(QStringLiteral("blue")))
        expected.insert(QStringLiteral("clockColorRGB"), QStringLiteral("#05edff"));
    m_log->clear();
    SignalRecorder recorder(Settings::instance());
    QVERIFY(m_mqtt->updateSettings(settingsLevels(key), payload));
    QCOMPARE(snapshot(*Settings::instance()), expected);
    QCOMPARE(recorder.take(), expectedSignals);
    QCOMPARE(lines(), QStringList(QStringLiteral("debug: Mqtt::updateSettings() ") + key));
    resetSettings();
}

void TestMqttUpdates::settingsConvertTheText_data()
{
    QTest::addColumn<int>("conversion");
    for (int i = 0; i < Conversions.size(); ++i)
        QTest::newRow(Conversions.at(i).name) << i;
}

void TestMqttUpdates::settingsConvertTheText()
{
    QFETCH(int, conversion);
    const Conversion &row = Conversions.at(conversion);
    resetSettings();
    m_mqtt->updateSettings(settingsLevels(QStringLiteral("touchscreen_blankscreen")), row.payload);
    QCOMPARE(Settings::instance()->blankScreen(), row.asBool);
    m_mqtt->updateSettings(
        settingsLevels(QStringLiteral("touchscreen_screensaver_time")), row.payload);
    QCOMPARE(Settings::instance()->screenSaverTime(), row.asUint);
    m_mqtt->updateSettings(
        settingsLevels(QStringLiteral("touchscreen_custom_clockcolor")), row.payload);
    QCOMPARE(Settings::instance()->customClockColor(), QString::fromUtf8(row.payload));
    resetSettings();
}

void TestMqttUpdates::screenSaverTimeNotifiesOnEveryMessage()
{
    SignalRecorder recorder(Settings::instance());
    for (int i = 0; i < 3; ++i)
        m_mqtt->updateSettings(
            settingsLevels(QStringLiteral("touchscreen_screensaver_time")), "300");
    const QString entry = QStringLiteral("screenSaverTimeChanged 300");
    QCOMPARE(recorder.take(), QStringList({ entry, entry, entry }));
}

void TestMqttUpdates::unknownSettingsKeyIsIgnored_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("foo") << "foo";
    QTest::newRow("empty") << "";
    QTest::newRow("other case") << "Touchscreen_blankscreen";
    QTest::newRow("a property's name") << "blankScreen";
}

void TestMqttUpdates::unknownSettingsKeyIsIgnored()
{
    QFETCH(QString, key);
    const QVariantMap before = snapshot(*Settings::instance());
    SignalRecorder recorder(Settings::instance());
    QVERIFY(m_mqtt->updateSettings(settingsLevels(key), "1"));
    QCOMPARE(m_log->take(), QStringList(QStringLiteral("debug: Mqtt::updateSettings() ") + key));
    QCOMPARE(snapshot(*Settings::instance()), before);
    QCOMPARE(recorder.take(), QStringList());
}

QTEST_GUILESS_MAIN(TestMqttUpdates)
#include "tst_mqtt_updates.moc"
