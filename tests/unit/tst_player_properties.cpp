// SPDX-License-Identifier: GPL-3.0-or-later
#include "player.h"
#include "playertest.h"
#include "propertyclasstest.h"

#include <QTest>

class TestPlayerProperties : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<Player>(); }
    QList<PropertyRow> rows() const override;
    QStringList methodEntries() const override;
    QStringList constructorLines() const override;

private slots:
    void initTestCase() { startPlayerWithoutBroker(); }
    void instanceIsOneObject() { checkInstance<Player>(); }
};

QList<PropertyRow> TestPlayerProperties::rows() const
{
    return {
        PropertyRow("QString roonState read write roonStateChanged()", "init")
            .logging({ "info: Player::setRoonState() Roon state set to: %1" }),
        { "QString song read write songChanged()", QString() },
        { "QString artist read write artistChanged()", QString() },
        { "QString album read write albumChanged()", QString() },
        { "QString imageKey read write imageKeyChanged()", QString() },
        { "bool remoteConnected read write remoteConnectionChanged()", true },
        PropertyRow("uint seekPosition read write seekPositionChanged()", 0u)
            .moving("seekPositionText"),
        { "bool autoRadio read write autoRadioChanged()", false },
        { "QString loop read write loopChanged()", QString() },
        { "bool shuffle read write shuffleChanged()", false },
        PropertyRow("uint length read write lengthChanged()", 0u).moving("lengthText"),
        { "QString zone read write zoneChanged()", "UNKNOWN" },
        { "QString wantedZone read write wantedZoneChanged()", "Kitchen" },
        { "QString time read timeChanged()" },
        { "bool volumeAvailable read write volumeAvailableChanged()", false },
        PropertyRow("float volume read write volumeChanged()", 0.0f)
            .writing({ -12.5f, 0.5f })
            .logging({ "info: Player::setVolume() %1" })
            .loggingRepeats({ "debug: Player::setVolume() SKIPPED: %1" }),
        PropertyRow("float minVolume read write minVolumeChanged()", 0.0f).writing({ -12.5f }),
        PropertyRow("float maxVolume read write maxVolumeChanged()", 0.0f).writing({ -12.5f }),
        PropertyRow("float limitMinVolume read write limitMinVolumeChanged()", 0.0f)
            .writing({ -12.5f }),
        PropertyRow("float limitMaxVolume read write limitMaxVolumeChanged()", 0.0f)
            .writing({ -12.5f }),
        PropertyRow("float limitSoftVolume read write limitSoftVolumeChanged()", 0.0f)
            .writing({ -12.5f }),
        PropertyRow("float volumeStep read write volumeStepChanged()", 0.0f).onEveryWrite(),
        PropertyRow("float volumeMuted read write volumeMuteChanged()", 0.0f).writing({ 1.0f }),
        { "uint volumeDisplayPrecision read constant", 0u },
        { "QString bigImageUrl read" },
        { "QString seekPositionText read seekPositionChanged()", "0:00" },
        { "QString lengthText read lengthChanged()", "0:00" },
        { "uint queueItemsRemaining read write queueItemsRemainingChanged()", 0u },
        { "bool prevAllowed read write prevAllowedChanged()", false },
        { "bool nextAllowed read write nextAllowedChanged()", false },
        { "bool pauseAllowed read write pauseAllowedChanged()", false },
        { "bool playAllowed read write playAllowedChanged()", false },
        { "bool seekAllowed read write seekAllowedChanged()", false },
    };
}

QStringList TestPlayerProperties::methodEntries() const
{
    QStringList methods;
    for (const char *name : { "roonState", "song", "artist", "album", "imageKey", "time", "length",
             "volumeAvailable", "volume", "minVolume", "maxVolume", "limitMinVolume",
             "limitMaxVolume", "limitSoftVolume", "volumeStep", "volumeMute" })
        methods.append(QStringLiteral("public signal %1Changed()").arg(QLatin1String(name)));
    methods.append({ "public signal playPausePressed()", "public signal prevPressed()",
        "public signal nextPressed()" });
    for (const char *name : { "remoteConnection", "seekPosition", "zone", "wantedZone", "autoRadio",
             "shuffle", "loop", "queueItemsRemaining", "prevAllowed", "nextAllowed", "pauseAllowed",
             "playAllowed", "seekAllowed", "zoneMenuList" })
        methods.append(QStringLiteral("public signal %1Changed()").arg(QLatin1String(name)));
    for (const char *signature :
        { "playPause()", "prev()", "next()", "clickedRadioButton()", "clickedShuffleButton()",
            "clickedLoopButton()", "movedVolumeSlider(float)", "timeFormatChanged(bool)",
            "scrollingChanged(bool)", "connectionStateChanged(bool)", "commandVolumeDown()",
            "commandVolumeUp()", "selectZone(QString)", "installUpdate()", "mqttConnected()" })
        methods.append(QStringLiteral("public slot ") + QLatin1String(signature));
    return methods;
}

QStringList TestPlayerProperties::constructorLines() const
{
    return PropertyClassTest::constructorLines()
        + QStringList("info: Player::Player() setting wanted zone to Kitchen");
}

QTEST_GUILESS_MAIN(TestPlayerProperties)
#include "tst_player_properties.moc"
