// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/appliance.h"
#include "testkit/likeness.h"
#include "testkit/services/apiserver.h"
#include "testkit/waiting.h"

#include <QMarginsF>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

namespace {

const QString CommandTopic = Topics::command();
const QString ZoneTopic = Topics::display() + "zone";

const QStringList TransportIcons { "icons/round_pause_white_48dp.png",
    "icons/round_stop_white_48dp.png", "icons/round_play_arrow_white_48dp.png",
    "icons/round_skip_next_white_48dp.png", "icons/round_skip_previous_white_48dp.png" };
const QStringList OptionIcons { "icons/ic_radio_white_48dp.png", "icons/ic_radio_blue_48dp.png",
    "icons/ic_shuffle_white_48dp.png", "icons/ic_shuffle_blue_48dp.png",
    "icons/ic_loop_white_48dp.png", "icons/ic_loop_blue_48dp.png" };
const QMarginsF CoverFrame(4, 4, 4, 4);
const QString Logo = "images/Velunor_logo_v020-07.png";

/** A zone's values by key, as its service publishes them. */
using ZoneValues = QList<QPair<QString, QByteArray>>;

} // namespace

Q_DECLARE_METATYPE(ZoneValues)

/** The player page, from broker message to what is shown, and from touch to command. */
class TestPlaying : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void textsFollowTheZone();
    void longTextsAreShortenedWhenTheyMayNotScroll();
    void timesAndProgressFollowTheZone();
    void middleButtonFollowsTheState_data();
    void middleButtonFollowsTheState();
    void optionIconsFollowTheZone();
    void nothingPlayingShowsTheLogo();
    void touchesBecomeCommands_data();
    void touchesBecomeCommands();
    void commandsAreLoggedAsTheyComeBack();
    void twoQuickTouchesSendTheSameTwice();
    void hiddenIconsAnswerTouches();
    void volumeDialogSendsSteps();
    void volumeSliderSendsAValueOnce();
    void volumeSliderKeepsToItsRange_data();
    void volumeSliderKeepsToItsRange();
    void volumeSliderWithoutARangeSendsNothing_data();
    void volumeSliderWithoutARangeSendsNothing();
    void volumeHandleStaysWhereItWasPut();
    void volumeDragEndsWithItsZone_data();
    void volumeDragEndsWithItsZone();
    void volumeRangeIsNotLentToAnotherZone_data();
    void volumeRangeIsNotLentToAnotherZone();
    void volumeStepEndsWithItsZone_data();
    void volumeStepEndsWithItsZone();
    void volumeDragOutlivesNewsOfOtherZones();
    void volumeDialogGoesWithTheVolume();
    void volumeDialogClosesBesideATouch();
    void aZoneIsChosenFromTheList();
    void anUpdateIsAskedForAtTheWebService();
    void aMissingWebServiceIsLogged();

private:
    /** Publishes values of the zone and waits until the program has them. */
    bool zoneIs(const ZoneValues &values);
    Probe &probe() { return m_appliance.program.probe(); }
    /**
     * Which of these icons is seen in the middle of the button, where it has this part of the
     * shorter side; empty when none of them is.
     */
    QString iconOf(
        const QString &button, const QStringList &icons, double part = 1, double opacity = 1);
    /** The icons of radio, shuffle and loop, as they are seen. */
    QStringList optionIcons();
    /** Waits until this command, and nothing else, has come to the broker. */
    bool onlyCommandIs(const QByteArray &command);
    /** The same for the zone with the id "z2", which lists as @p name beside "Kitchen". */
    bool otherZoneIs(const QByteArray &name, const ZoneValues &values);
    bool openVolumeDialog();
    bool closeVolumeDialog();
    bool volumeHandleIsShown();
    /** The middle of the volume dialog's handle when it is at this part of its way. */
    QPointF sliderPlace(double part);
    /** A finger goes there in small steps. */
    bool slide(const QPointF &from, const QPointF &to);

    Appliance m_appliance;
    int m_firstLine = 0;
};

void TestPlaying::initTestCase()
{
    QVERIFY(m_appliance.start());
}

void TestPlaying::init()
{
    // The state from which each test starts: the zone as it is, and no other.
    m_appliance.publishZones(R"([{"id":"z1","name":"Kitchen"}])");
    QVERIFY(probe().setObjectProperty(Probe::Target::type("Player"), "wantedZone", "Kitchen"));
    QVERIFY(zoneIs({ { "name", "Kitchen" }, { "volume/step", "1" }, { "state", "playing" },
        { "nowPlaying/song", "Song" }, { "nowPlaying/artist", "Artist" },
        { "nowPlaying/album", "Album" }, { "nowPlaying/length", "200" },
        { "nowPlaying/seekPosition", "50" }, { "settings/shuffle", "false" },
        { "settings/autoRadio", "false" }, { "settings/loop", "disabled" },
        { "queue_items_remaining", "3" }, { "is_previous_allowed", "true" },
        { "is_next_allowed", "true" }, { "is_pause_allowed", "true" },
        { "is_play_allowed", "false" }, { "is_seek_allowed", "true" },
        { "volume/available", "true" }, { "volume/value", "40" }, { "volume/min", "0" },
        { "volume/max", "100" }, { "volume/hard_limit_min", "0" },
        { "volume/hard_limit_max", "100" }, { "volume/soft_limit", "80" } }));
    m_appliance.services.clear();
    m_firstLine = m_appliance.program.logSize();
}

void TestPlaying::cleanup()
{
    QVERIFY(m_appliance.program.isRunning());
    for (const LogLine &line : m_appliance.program.log().mid(m_firstLine)) {
        if (line.level == "WARN" && (line.file.isEmpty() || line.file.endsWith(".qml")))
            QTest::qFail(qPrintable(line.whole), __FILE__, __LINE__);
    }
    m_appliance.program.printLogOnFailure(m_firstLine);
}

void TestPlaying::textsFollowTheZone()
{
    QVERIFY(
        zoneIs({ { "nowPlaying/song",
                     "<b>Caf\xc3\xa9</b> & \xe4\xb8\xad <img src=\"http://127.0.0.1:8080/x\">" },
            { "nowPlaying/artist", "\xd7\x90\xd7\x91 Artist" }, { "nowPlaying/album", "" } }));
    const QString song = QString::fromUtf8(
        "<b>Caf\xc3\xa9</b> & \xe4\xb8\xad <img src=\"http://127.0.0.1:8080/x\">");
    QCOMPARE(probe().property("songTitle", "text"), QJsonValue(song));
    QCOMPARE(probe().property("artist", "text"),
        QJsonValue(QString::fromUtf8("\xd7\x90\xd7\x91 Artist")));
    QCOMPARE(probe().property("album", "text"), QJsonValue(""));
    // Shown as it came, not as the mark-up that it might be.
    const Probe::Target label = Probe::Target("label").inside("songTitle");
    QCOMPARE(probe().property(label, "text"), QJsonValue(song));
    QCOMPARE(probe().property(label, "textFormat"), QJsonValue(Qt::PlainText));
}

void TestPlaying::longTextsAreShortenedWhenTheyMayNotScroll()
{
    const QString text = "1234567890123456789012345678901234567890";
    QVERIFY(zoneIs({ { "nowPlaying/song", text.toUtf8() }, { "nowPlaying/artist", text.toUtf8() },
        { "nowPlaying/album", text.toUtf8() } }));
    QCOMPARE(probe().property("songTitle", "text"), QJsonValue(text));
    m_appliance.publishSetting("touchscreen_scrolling", "false");
    QVERIFY(m_appliance.handled());
    QCOMPARE(probe().property("songTitle", "text"), QJsonValue(text.left(38) + "..."));
    QCOMPARE(probe().property("artist", "text"), QJsonValue(text.left(30) + "..."));
    QCOMPARE(probe().property("album", "text"), QJsonValue(text.left(24) + "..."));
    m_appliance.publishSetting("touchscreen_scrolling", "true");
    QVERIFY(m_appliance.handled());
    QCOMPARE(probe().property("album", "text"), QJsonValue(text));
}

void TestPlaying::timesAndProgressFollowTheZone()
{
    QVERIFY(zoneIs({ { "nowPlaying/length", "3725" }, { "nowPlaying/seekPosition", "1005" } }));
    QCOMPARE(probe().property("seekPosition", "text"), QJsonValue("16:45"));
    QCOMPARE(probe().property("length", "text"), QJsonValue("62:05"));
    const double bar = probe().area("progressBar").width();
    QCOMPARE(
        probe().property("progressFill", "width").toDouble(), std::floor(1005.0 / 3725.0 * bar));

    QVERIFY(zoneIs({ { "nowPlaying/length", "0" }, { "queue_items_remaining", "0" },
        { "is_seek_allowed", "false" } }));
    QVERIFY(!probe().shows("length"));
    QVERIFY(probe().area("progressFill").width() == 0);
}

void TestPlaying::middleButtonFollowsTheState_data()
{
    QTest::addColumn<ZoneValues>("values");
    QTest::addColumn<QString>("icon"); // empty: hidden
    QTest::newRow("playing") << ZoneValues { { "state", "playing" } }
                             << QString("round_pause_white_48dp.png");
    QTest::newRow("playing a stream")
        << ZoneValues { { "state", "playing" }, { "is_seek_allowed", "false" } }
        << QString("round_stop_white_48dp.png");
    QTest::newRow("paused") << ZoneValues { { "state", "paused" }, { "is_play_allowed", "true" } }
                            << QString("round_play_arrow_white_48dp.png");
    QTest::newRow("loading") << ZoneValues { { "state", "loading" } }
                             << QString("round_play_arrow_white_48dp.png");
    QTest::newRow("nothing allowed") << ZoneValues { { "is_pause_allowed", "false" } } << QString();
}

void TestPlaying::middleButtonFollowsTheState()
{
    QFETCH(ZoneValues, values);
    QFETCH(QString, icon);
    QVERIFY(zoneIs(values));
    if (icon.isEmpty())
        QVERIFY(isBlank(probe().picture(), probe().area("playPause")));
    else
        QCOMPARE(iconOf("playPause", TransportIcons), "icons/" + icon);
}

void TestPlaying::optionIconsFollowTheZone()
{
    const QString radioOff = "icons/ic_radio_white_48dp.png";
    const QString radioOn = "icons/ic_radio_blue_48dp.png";
    const QString shuffleOff = "icons/ic_shuffle_white_48dp.png";
    const QString shuffleOn = "icons/ic_shuffle_blue_48dp.png";
    const QString loopOff = "icons/ic_loop_white_48dp.png";
    const QString loopOn = "icons/ic_loop_blue_48dp.png";
    QCOMPARE(optionIcons(), QStringList({ radioOff, shuffleOff, loopOff }));
    QVERIFY(zoneIs({ { "settings/autoRadio", "true" } }));
    QCOMPARE(optionIcons(), QStringList({ radioOn, shuffleOff, loopOff }));
    QVERIFY(zoneIs({ { "settings/shuffle", "true" } }));
    QCOMPARE(optionIcons(), QStringList({ radioOn, shuffleOn, loopOff }));
    QVERIFY(zoneIs({ { "settings/loop", "loop_one" } }));
    QCOMPARE(optionIcons(), QStringList({ radioOn, shuffleOn, loopOn }));
    // The "1" stands at the upper left of the arrows and reaches into their square.
    QRectF one = probe().area("loopOne");
    one.setRight(probe().area(Probe::Target("icon").inside("loop")).left() - 1);
    QVERIFY(!isBlank(probe().picture(), one));
    QVERIFY(zoneIs({ { "settings/autoRadio", "false" }, { "settings/shuffle", "false" },
        { "settings/loop", "loop" } }));
    QCOMPARE(optionIcons(), QStringList({ radioOff, shuffleOff, loopOn }));
    QVERIFY(isBlank(probe().picture(), one));
}

void TestPlaying::nothingPlayingShowsTheLogo()
{
    const QRectF position = probe().area("seekPosition");
    const QRectF bar = probe().area("progressBar");
    const QImage before = probe().picture();
    QVERIFY(!isBlank(before, position));
    QVERIFY(!isBlank(before, bar));
    QVERIFY(zoneIs({ { "state", "stopped" }, { "queue_items_remaining", "0" },
        { "is_pause_allowed", "false" } }));
    QCOMPARE(probe().property("songTitle", "text"), QJsonValue("Nothing Playing"));
    QCOMPARE(probe().property("artist", "text"), QJsonValue(""));
    QCOMPARE(probe().property("album", "text"), QJsonValue(""));
    const QRectF cover = probe().area("cover") - CoverFrame;
    // The cover comes a turn of the event loop later.
    QVERIFY(waitUntil([&] { return drawnFile(probe().picture(), cover, { Logo }) == Logo; }));
    const QImage after = probe().picture();
    QVERIFY(isBlank(after, position));
    QVERIFY(isBlank(after, bar));
}

void TestPlaying::touchesBecomeCommands_data()
{
    QTest::addColumn<ZoneValues>("values");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("play or pause") << ZoneValues() << QString("playPause")
                                   << QByteArray(R"({"command":"playpause","zone_id":"z1"})");
    QTest::newRow("previous") << ZoneValues() << QString("previous")
                              << QByteArray(R"({"command":"previous","zone_id":"z1"})");
    QTest::newRow("next") << ZoneValues() << QString("next")
                          << QByteArray(R"({"command":"next","zone_id":"z1"})");
    QTest::newRow("radio on") << ZoneValues() << QString("radio")
                              << QByteArray(
                                     R"({"command":"set_radio","radio":true,"zone_id":"z1"})");
    QTest::newRow("radio off") << ZoneValues {
        { "settings/autoRadio", "true" }
    } << QString("radio") << QByteArray(R"({"command":"set_radio","radio":false,"zone_id":"z1"})");
    QTest::newRow("shuffle on")
        << ZoneValues() << QString("shuffle")
        << QByteArray(R"({"command":"set_shuffle","shuffle":true,"zone_id":"z1"})");
    QTest::newRow("shuffle off")
        << ZoneValues { { "settings/shuffle", "true" } } << QString("shuffle")
        << QByteArray(R"({"command":"set_shuffle","shuffle":false,"zone_id":"z1"})");
    const auto loop = [](const char *name, const QByteArray &from, const QByteArray &to) {
        QTest::newRow(name) << ZoneValues { { "settings/loop", from } } << QString("loop")
                            << QByteArray(R"({"command":"set_loopmode","loop":")" + to
                                   + R"(","zone_id":"z1"})");
    };
    loop("loop after none", "disabled", "loop");
    loop("one after loop", "loop", "loop_one");
    loop("none after one", "loop_one", "disabled");
    loop("none after an unknown mode", "shuffle", "disabled");
    loop("none after no mode", "", "disabled");
}

void TestPlaying::touchesBecomeCommands()
{
    QFETCH(ZoneValues, values);
    QFETCH(QString, item);
    QFETCH(QByteArray, command);
    QVERIFY(zoneIs(values));
    QVERIFY(probe().tap(item));
    QVERIFY(onlyCommandIs(command));
    QVERIFY(m_appliance.broker.waitForLine(QRegularExpression(QStringLiteral(
        "^Received PUBLISH from \\S+ \\(d0, q1, r0, m\\d+, '%1', \\.\\.\\. \\(%2 bytes\\)\\)$")
                                                                  .arg(CommandTopic)
                                                                  .arg(command.size()))));
}

void TestPlaying::commandsAreLoggedAsTheyComeBack()
{
    QVERIFY(probe().tap("next"));
    QVERIFY(m_appliance.program.waitForLine(
        Line::info(
            R"(Mqtt::processMessageApi() received remote control command: {"command":"next","zone_id":"z1"})"),
        m_firstLine));
    QVERIFY(m_appliance.program.waitForLine(
        Line::warning("Mqtt::processMessageApi() ignore unsupported command: next"), m_firstLine));
}

void TestPlaying::twoQuickTouchesSendTheSameTwice()
{
    QVERIFY(probe().tap("shuffle"));
    QVERIFY(probe().tap("shuffle"));
    const QByteArray command = R"({"command":"set_shuffle","shuffle":true,"zone_id":"z1"})";
    QTRY_COMPARE_WITH_TIMEOUT(
        m_appliance.commands(), QList<QByteArray>({ command, command }), PatienceMs);
}

void TestPlaying::hiddenIconsAnswerTouches()
{
    m_appliance.publishSetting("touchscreen_hide_option_buttons", "true");
    QVERIFY(zoneIs({ { "is_next_allowed", "false" } }));
    QVERIFY(!probe().shows(Probe::Target("icon").inside("next")));
    QVERIFY(!probe().shows(Probe::Target("icon").inside("radio")));
    QVERIFY(probe().tap("next"));
    QVERIFY(probe().tap("radio"));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance.commands(),
        QList<QByteArray>({ R"({"command":"next","zone_id":"z1"})",
            R"({"command":"set_radio","radio":true,"zone_id":"z1"})" }),
        PatienceMs);
    m_appliance.publishSetting("touchscreen_hide_option_buttons", "false");
    QVERIFY(m_appliance.handled());
}

void TestPlaying::volumeDialogSendsSteps()
{
    QVERIFY(zoneIs({ { "volume/step", "0.5" }, { "volume/value", "40.5" } }));
    QCOMPARE(probe().property("volumeText", "text"), QJsonValue("40.5"));
    QVERIFY(openVolumeDialog());
    QCOMPARE(probe().property("currentText", "text"), QJsonValue("40.5"));
    QCOMPARE(probe().property("minimumText", "text"), QJsonValue("0.0"));
    QCOMPARE(probe().property("maximumText", "text"), QJsonValue("100.0"));
    QCOMPARE(probe().property("softLimitText", "text"), QJsonValue("80.0"));
    QVERIFY(probe().tap("volumeUp"));
    QVERIFY(probe().tap("volumeDown"));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance.commands(),
        QList<QByteArray>(
            { R"({"command":"set_volume","how":"relative","value":0.5,"zone_id":"z1"})",
                R"({"command":"set_volume","how":"relative","value":-0.5,"zone_id":"z1"})" }),
        PatienceMs);
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeSliderSendsAValueOnce()
{
    QVERIFY(openVolumeDialog());
    const QRectF slider = probe().area("volumeSlider");
    const QPointF middle = slider.center();
    // The handle's middle is at the middle of the range: 0 to the soft limit of 80.
    QVERIFY(probe().press(middle));
    QVERIFY(probe().move(middle + QPointF(40, 0)));
    QVERIFY(probe().move(middle + QPointF(80, 0)));
    QVERIFY(probe().release(middle + QPointF(80, 0)));
    QTRY_VERIFY_WITH_TIMEOUT(!m_appliance.commands().isEmpty(), PatienceMs);
    QVERIFY(m_appliance.handled());
    const QList<QByteArray> commands = m_appliance.commands();
    const QRegularExpression form(
        R"(^\{"command":"set_volume","how":"absolute","value":([0-9]+\.[0-9]),"zone_id":"z1"\}$)");
    for (const QByteArray &command : commands)
        QVERIFY2(form.match(command).hasMatch(), command);
    for (int i = 1; i < commands.size(); ++i)
        QVERIFY(commands.at(i) != commands.at(i - 1));
    // A command does not change what is shown; the zone does.
    QCOMPARE(probe().property("currentText", "text"), QJsonValue("40"));

    // The same place again is the same value again, and that is not sent twice in a row.
    m_appliance.services.clear();
    QVERIFY(probe().tap(middle + QPointF(80, 0)));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeSliderKeepsToItsRange_data()
{
    QTest::addColumn<QByteArray>("lowest");
    QTest::addColumn<QByteArray>("softLimit");
    QTest::addColumn<QByteArray>("step");
    QTest::addColumn<QByteArray>("first"); // that leaves at the left end
    QTest::addColumn<QByteArray>("last");
    const auto row = [](const char *name, const QByteArray &lowest, const QByteArray &softLimit,
                         const QByteArray &step, const QByteArray &first, const QByteArray &last) {
        QTest::newRow(name) << lowest << softLimit << step << first << last;
    };
    row("steps that end beyond", "0", "75", "2", "0.0", "75.0");
    row("steps that end further beyond", "0", "98", "3", "0.0", "98.0");
    row("decibels", "-80", "-10.5", "1", "-80.0", "-10.5");
    row("a step beyond the range", "0", "50", "100", "0.0", "50.0");
    row("steps that end before", "0", "97", "3", "0.0", "97.0");
    row("tenths", "-20.1", "70.1", "0.1", "-20.1", "70.1");
    row("more decimals than a command has", "-20.27", "10.27", "0.5", "-20.2", "10.2");
    row("no step", "0", "60.5", "0", "0.0", "60.5");
}

void TestPlaying::volumeSliderKeepsToItsRange()
{
    QFETCH(QByteArray, lowest);
    QFETCH(QByteArray, softLimit);
    QFETCH(QByteArray, step);
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, last);
    QVERIFY(zoneIs({ { "volume/hard_limit_min", lowest }, { "volume/soft_limit", softLimit },
        { "volume/step", step }, { "volume/value", lowest } }));
    QVERIFY(openVolumeDialog());
    QVERIFY(slide(sliderPlace(0), sliderPlace(1)));
    const QByteArray command
        = R"({"command":"set_volume","how":"absolute","value":%,"zone_id":"z1"})";
    QVERIFY(m_appliance.services.waitFor(CommandTopic, QByteArray(command).replace("%", last)));
    QVERIFY(m_appliance.handled());
    QVERIFY(slide(sliderPlace(1), sliderPlace(0)));
    QVERIFY(m_appliance.services.waitFor(CommandTopic, QByteArray(command).replace("%", first)));
    QVERIFY(m_appliance.handled());
    const QRegularExpression form(R"("value":(-?[0-9]+\.[0-9]),)");
    for (const QByteArray &sent : m_appliance.commands()) {
        const double value = form.match(sent).captured(1).toDouble();
        QVERIFY2(value >= lowest.toDouble() && value <= softLimit.toDouble(), sent);
    }
    QCOMPARE(m_appliance.commands().last(), QByteArray(command).replace("%", first));
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeSliderWithoutARangeSendsNothing_data()
{
    QTest::addColumn<ZoneValues>("values"); // of a zone of which no more than its volume is known
    const auto row
        = [](const char *name, const ZoneValues &values) { QTest::newRow(name) << values; };
    row("never published", {});
    row("no minimum", { { "volume/soft_limit", "80" } });
    row("no soft limit", { { "volume/hard_limit_min", "-80" } });
    row("one value", { { "volume/hard_limit_min", "30" }, { "volume/soft_limit", "30" } });
    row("the wrong way round",
        { { "volume/hard_limit_min", "10" }, { "volume/soft_limit", "-10" } });
    row("no numbers", { { "volume/hard_limit_min", "nan" }, { "volume/soft_limit", "inf" } });
    row("empty", { { "volume/hard_limit_min", "" }, { "volume/soft_limit", "" } });
}

void TestPlaying::volumeSliderWithoutARangeSendsNothing()
{
    QFETCH(ZoneValues, values);
    QVERIFY(otherZoneIs("Cellar",
        ZoneValues { { "volume/available", "true" }, { "volume/value", "40" },
            { "volume/step", "2" }, { "state", "playing" } }
            + values));
    QVERIFY(m_appliance.program.probe().setObjectProperty(
        Probe::Target::type("Player"), "wantedZone", "Cellar"));
    QVERIFY(otherZoneIs("Cellar", { { "is_pause_allowed", "true" } }));
    QVERIFY(openVolumeDialog());
    QCOMPARE(probe().property("currentText", "text"), QJsonValue("40"));
    for (const double part : { 0.0, 0.3, 0.5, 1.0 })
        QVERIFY(probe().tap(sliderPlace(part)));
    QVERIFY(slide(sliderPlace(0), sliderPlace(0.7)));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    QVERIFY(!volumeHandleIsShown());
    QVERIFY(probe().tap("volumeUp"));
    QVERIFY(
        onlyCommandIs(R"({"command":"set_volume","how":"relative","value":2.0,"zone_id":"z2"})"));

    // Once the range is known the slider is there.
    m_appliance.services.clear();
    QVERIFY(
        otherZoneIs("Cellar", { { "volume/hard_limit_min", "0" }, { "volume/soft_limit", "80" } }));
    QTRY_VERIFY_WITH_TIMEOUT(volumeHandleIsShown(), PatienceMs);
    QVERIFY(slide(sliderPlace(0.5), sliderPlace(1)));
    QVERIFY(m_appliance.services.waitFor(
        CommandTopic, R"({"command":"set_volume","how":"absolute","value":80.0,"zone_id":"z2"})"));
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeHandleStaysWhereItWasPut()
{
    const auto handleIsAt = [this](const QPointF &place) {
        const QPointF handle = probe().centre(Probe::Target("handle").inside("volumeSlider"));
        return std::fabs(handle.x() - place.x()) < 1;
    };
    const int second = probe().objectProperty("echoTimer", "interval").toInt();
    QCOMPARE(second, 1000);
    QVERIFY(probe().setObjectProperty("echoTimer", "interval", PatienceMs)); // on a slow machine
    QVERIFY(openVolumeDialog());
    QVERIFY(slide(sliderPlace(0.5), sliderPlace(0.775)));
    QVERIFY(m_appliance.services.waitFor(
        CommandTopic, R"({"command":"set_volume","how":"absolute","value":62.0,"zone_id":"z1"})"));
    // What was passed comes back late, as from a zone that carries out one command after another.
    const QPointF put = sliderPlace(0.775);
    for (const char *volume : { "45", "50", "55" }) {
        QVERIFY(zoneIs({ { "volume/value", volume } }));
        QCOMPARE(probe().property("currentText", "text"), QJsonValue(volume));
        QVERIFY(handleIsAt(put));
    }
    QVERIFY(zoneIs({ { "volume/value", "62" } }));
    QVERIFY(handleIsAt(put));
    QVERIFY(zoneIs({ { "volume/value", "20" } }));
    QVERIFY(handleIsAt(sliderPlace(0.25)));

    // What never comes back is waited for no longer than a second.
    QVERIFY(probe().setObjectProperty("echoTimer", "interval", second));
    QVERIFY(probe().tap(put));
    QTRY_VERIFY_WITH_TIMEOUT(handleIsAt(sliderPlace(0.25)), PatienceMs);
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeDragEndsWithItsZone_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QByteArray>("zones"); // the list that comes under the finger
    QTest::addColumn<bool>("speaks");      // whether the new zone does before the finger goes on
    const QByteArray before = R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Cellar"}])";
    const QByteArray group = R"([{"id":"z2","name":"Kitchen + Cellar"}])";
    const QByteArray anew = R"([{"id":"z2","name":"Kitchen"}])";
    const QByteArray followed = R"([{"id":"z2","name":"Cellar + Kitchen"}])";
    QTest::newRow("another is chosen") << "Cellar" << before << true;
    QTest::newRow("another is chosen, silent") << "Cellar" << before << false;
    QTest::newRow("a group is made") << "Kitchen" << group << true;
    QTest::newRow("a group is listed") << "Kitchen" << group << false;
    QTest::newRow("a group follows") << "Kitchen" << followed << true;
    QTest::newRow("made anew under the same name") << "Kitchen" << anew << true;
    QTest::newRow("listed anew under the same name") << "Kitchen" << anew << false;
}

void TestPlaying::volumeDragEndsWithItsZone()
{
    QFETCH(QString, wanted);
    QFETCH(QByteArray, zones);
    QFETCH(bool, speaks);
    const Probe::Target player = Probe::Target::type("Player");
    const ZoneValues newValues { { "volume/available", "true" }, { "volume/value", "10" },
        { "volume/hard_limit_min", "0" }, { "volume/soft_limit", "80" }, { "volume/step", "1" },
        { "state", "playing" }, { "is_pause_allowed", "true" },
        { "outputs", R"([{"display_name":"Kitchen"},{"display_name":"Cellar"}])" } };
    QVERIFY(otherZoneIs("Cellar", newValues));
    m_appliance.services.clear();
    QVERIFY(openVolumeDialog());
    QVERIFY(probe().press(sliderPlace(0.5)));
    QVERIFY(probe().move(sliderPlace(0.6)));
    QVERIFY(probe().move(sliderPlace(0.62)));
    QTRY_VERIFY_WITH_TIMEOUT(!m_appliance.commands().isEmpty(), PatienceMs);
    QVERIFY(probe().move(sliderPlace(0.75))); // a value that was not the last one sent
    QVERIFY(m_appliance.services.waitFor(
        CommandTopic, R"({"command":"set_volume","how":"absolute","value":60.0,"zone_id":"z1"})"));

    QVERIFY(probe().setObjectProperty(player, "wantedZone", wanted));
    m_appliance.publishZones(zones);
    const auto speak = [&] {
        for (const auto &value : newValues)
            m_appliance.services.publish(
                Topics::zone("z2", value.first.toLatin1()), value.second, true);
        return m_appliance.handled();
    };
    QVERIFY(speaks ? speak() : m_appliance.handled());
    m_appliance.services.clear();
    QVERIFY(probe().move(sliderPlace(0.9)));
    QVERIFY(probe().move(sliderPlace(0.8)));
    QVERIFY(probe().release(sliderPlace(0.8)));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());

    // The dialog is the new zone's from then on.
    QVERIFY(speak());
    const Probe::Target handle = Probe::Target("handle").inside("volumeSlider");
    QVERIFY(std::fabs(probe().centre(handle).x() - sliderPlace(0.125).x()) < 1);
    QVERIFY(probe().tap("volumeUp"));
    QVERIFY(
        onlyCommandIs(R"({"command":"set_volume","how":"relative","value":1.0,"zone_id":"z2"})"));
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeRangeIsNotLentToAnotherZone_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QByteArray>("zones");
    QTest::addColumn<QByteArray>("name"); // of the zone that the commands go to from then on
    QTest::newRow("made anew under the same name")
        << "Kitchen" << QByteArray(R"([{"id":"z2","name":"Kitchen"}])") << QByteArray("Kitchen");
    QTest::newRow("a group is listed")
        << "Kitchen" << QByteArray(R"([{"id":"z2","name":"Kitchen + Cellar"}])")
        << QByteArray("Kitchen + Cellar");
    QTest::newRow("another is chosen")
        << "Cellar" << QByteArray(R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Cellar"}])")
        << QByteArray("Cellar");
}

void TestPlaying::volumeRangeIsNotLentToAnotherZone()
{
    QFETCH(QString, wanted);
    QFETCH(QByteArray, zones);
    QFETCH(QByteArray, name);
    // The new zone has spoken before, so only the next message of any zone has its values copied.
    QVERIFY(otherZoneIs("Cellar",
        { { "volume/available", "true" }, { "volume/value", "-60" },
            { "volume/hard_limit_min", "-80" }, { "volume/hard_limit_max", "0" },
            { "volume/soft_limit", "-40" }, { "volume/step", "1" }, { "state", "playing" } }));
    QVERIFY(openVolumeDialog());
    QVERIFY(volumeHandleIsShown());
    m_appliance.services.clear();
    QVERIFY(probe().setObjectProperty(Probe::Target::type("Player"), "wantedZone", wanted));
    m_appliance.publishZones(zones);
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().tap(sliderPlace(1)));
    QVERIFY(slide(sliderPlace(0.5), sliderPlace(0.9)));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    QTRY_VERIFY_WITH_TIMEOUT(!volumeHandleIsShown(), PatienceMs);
    for (const char *limit : { "minimumText", "maximumText", "softLimitText" })
        QCOMPARE(probe().property(limit, "text"), QJsonValue(""));

    m_appliance.services.publish(Topics::zone("z2", "name"), name, true);
    QVERIFY(m_appliance.handled());
    QTRY_VERIFY_WITH_TIMEOUT(volumeHandleIsShown(), PatienceMs);
    QCOMPARE(probe().property("softLimitText", "text").toString(), QStringLiteral("-40"));
    // A way of several values: the same one twice would not be sent again.
    QVERIFY(slide(sliderPlace(0.25), sliderPlace(1)));
    QVERIFY(m_appliance.services.waitFor(
        CommandTopic, R"({"command":"set_volume","how":"absolute","value":-40.0,"zone_id":"z2"})"));
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeStepEndsWithItsZone_data()
{
    QTest::addColumn<QString>("icon");
    QTest::newRow("up") << "volumeUp";
    QTest::newRow("down") << "volumeDown";
}

void TestPlaying::volumeStepEndsWithItsZone()
{
    QFETCH(QString, icon);
    QVERIFY(openVolumeDialog());
    const QPointF place = probe().centre(icon);
    QVERIFY(probe().press(place));
    m_appliance.publishZones(R"([{"id":"z2","name":"Kitchen"}])");
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().release(place));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    // Nor does a new tap send the former zone's step, before the new zone has spoken.
    QVERIFY(probe().tap(place));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeDragOutlivesNewsOfOtherZones()
{
    QVERIFY(openVolumeDialog());
    QVERIFY(probe().press(sliderPlace(0.5)));
    QVERIFY(probe().move(sliderPlace(0.6)));
    QVERIFY(probe().move(sliderPlace(0.7)));
    QVERIFY(otherZoneIs("Cellar", { { "volume/available", "true" }, { "volume/value", "10" } }));
    QVERIFY(otherZoneIs("Attic", { { "volume/soft_limit", "20" } }));
    QVERIFY(zoneIs({ { "nowPlaying/song", "Next" }, { "volume/value", "45" } }));
    m_appliance.services.clear();
    QVERIFY(probe().release(sliderPlace(0.75)));
    QVERIFY(
        onlyCommandIs(R"({"command":"set_volume","how":"absolute","value":60.0,"zone_id":"z1"})"));
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeDialogGoesWithTheVolume()
{
    QVERIFY(openVolumeDialog());
    const QPointF from = sliderPlace(0.5);
    const QPointF to = sliderPlace(0.9);
    QVERIFY(probe().press(from));
    QVERIFY(probe().move((from + to) / 2));
    QVERIFY(probe().move(to));
    QTRY_VERIFY_WITH_TIMEOUT(!m_appliance.commands().isEmpty(), PatienceMs);
    QVERIFY(zoneIs({ { "volume/available", "false" } }));
    QVERIFY(!probe().shows("volumeSlider"));
    m_appliance.services.clear();
    QVERIFY(probe().move(from));
    QVERIFY(probe().release(from));
    QVERIFY(m_appliance.handled());
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    // It stays closed until somebody opens it.
    QVERIFY(zoneIs({ { "volume/available", "true" } }));
    QVERIFY(!probe().shows("volumeSlider"));
    QVERIFY(openVolumeDialog());
    QVERIFY(closeVolumeDialog());
}

void TestPlaying::volumeDialogClosesBesideATouch()
{
    QVERIFY(openVolumeDialog());
    QVERIFY(probe().tap("cover")); // lies under the dialog's rim: the touch only closes it
    QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("volumeSlider"), PatienceMs);
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().shows("RoonPlayerWindow2"));
}

void TestPlaying::aZoneIsChosenFromTheList()
{
    m_appliance.publishZones(R"([{"id":"z2","name":"Wohnk)"
                             "\xc3\xbc"
                             R"(che"},{"id":"z1","name":"Kitchen"}])");
    m_appliance.services.publish(Topics::zone("z2", "name"),
        "Wohnk\xc3\xbc"
        "che",
        true);
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().tap("zoneNameText"));
    QTRY_VERIFY_WITH_TIMEOUT(probe().shows("zoneList"), PatienceMs);
    QCOMPARE(probe().property("zoneListHeader", "text"), QJsonValue("Available Zones (2)"));
    QVERIFY(probe().tap(Probe::Target::text(QString::fromUtf8("Wohnk\xc3\xbc"
                                                              "che"))));
    QVERIFY(m_appliance.services.waitFor(ZoneTopic,
        "Wohnk\xc3\xbc"
        "che"));
    QVERIFY(m_appliance.broker.waitForLine(QRegularExpression(QStringLiteral(
        "^Received PUBLISH from \\S+ \\(d0, q1, r1, m\\d+, '%1', \\.\\.\\. \\(10 bytes\\)\\)$")
                                                                  .arg(ZoneTopic))));
    QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("zoneList"), PatienceMs);

    QVERIFY(m_appliance.handled());
    QVERIFY(probe().tap("zoneNameText"));
    QTRY_VERIFY_WITH_TIMEOUT(probe().shows("zoneList"), PatienceMs);
    QVERIFY(probe().tap(Probe::Target::text("Kitchen").inside("zoneList")));
    QVERIFY(m_appliance.services.waitFor(ZoneTopic, "Kitchen"));
    QTRY_VERIFY_WITH_TIMEOUT(!probe().shows("zoneList"), PatienceMs);
}

void TestPlaying::anUpdateIsAskedForAtTheWebService()
{
    ApiServer webService;
    QVERIFY(webService.start());
    QVERIFY(!probe().shows("updateBadge"));
    m_appliance.publishState("UpdateAvailable", "true");
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().shows("updateBadge"));
    QVERIFY(probe().tap("updateBadge"));
    QTRY_COMPARE_WITH_TIMEOUT(webService.requests().size(), 1, PatienceMs);
    QCOMPARE(
        webService.requests().first().line, QByteArray("POST /api/install_update_v1 HTTP/1.1"));
    QCOMPARE(webService.requests().first().body, QByteArray());
    QVERIFY(
        m_appliance.program.waitForLine(Line::info("ApiClient::onFinish() received reply for: "
                                                   "http://127.0.0.1:8080/api/install_update_v1"),
            m_firstLine));
    QCOMPARE(m_appliance.program.count(Line::info("Player::installUpdate()"), m_firstLine), 1);
    QCOMPARE(m_appliance.program.count(Line::info("ApiClient::installUpdate()"), m_firstLine), 1);
    QCOMPARE(m_appliance.commands(), QList<QByteArray>());
    m_appliance.publishState("UpdateAvailable", "false");
    QVERIFY(m_appliance.handled());
    QVERIFY(!probe().shows("updateBadge"));
}

void TestPlaying::aMissingWebServiceIsLogged()
{
    m_appliance.publishState("UpdateAvailable", "true");
    QVERIFY(m_appliance.handled());
    QVERIFY(probe().tap("updateBadge"));
    QVERIFY(probe().tap("updateBadge"));
    const LogPattern refused
        = Line::critical("ApiClient::onFinish() something went wrong: ConnectionRefusedError");
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance.program.count(refused, m_firstLine), 2, PatienceMs);
    m_appliance.publishState("UpdateAvailable", "false");
    QVERIFY(m_appliance.handled());
}

bool TestPlaying::zoneIs(const ZoneValues &values)
{
    for (const auto &value : values)
        m_appliance.publishZone(value.first, value.second);
    return m_appliance.handled();
}

QString TestPlaying::iconOf(
    const QString &button, const QStringList &icons, double part, double opacity)
{
    const QRectF cell = probe().area(button);
    const double side = std::round(part * qMin(cell.width(), cell.height()));
    QRectF area(0, 0, side, side);
    area.moveCenter(cell.center());
    return drawnFile(probe().picture(), area, icons, opacity);
}

QStringList TestPlaying::optionIcons()
{
    QStringList icons;
    for (const char *const button : { "radio", "shuffle", "loop" })
        icons.append(iconOf(button, OptionIcons, 0.4, 0.9));
    return icons;
}

bool TestPlaying::otherZoneIs(const QByteArray &name, const ZoneValues &values)
{
    m_appliance.publishZones(
        R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":")" + name + R"("}])");
    m_appliance.services.publish(Topics::zone("z2", "name"), name, true);
    for (const auto &value : values)
        m_appliance.services.publish(
            Topics::zone("z2", value.first.toLatin1()), value.second, true);
    return m_appliance.handled();
}

bool TestPlaying::onlyCommandIs(const QByteArray &command)
{
    return m_appliance.services.waitFor(CommandTopic, command) && m_appliance.handled()
        && m_appliance.commands() == QList<QByteArray> { command };
}

bool TestPlaying::openVolumeDialog()
{
    return probe().tap("volumeBox") && waitUntil([this] { return probe().shows("volumeSlider"); });
}

bool TestPlaying::closeVolumeDialog()
{
    return probe().tap(QPointF(5, 240))
        && waitUntil([this] { return !probe().shows("volumeSlider"); });
}

bool TestPlaying::volumeHandleIsShown()
{
    const QImage slider = probe().picture().copy(probe().area("volumeSlider").toRect());
    int white = 0;
    for (int y = 0; y < slider.height(); ++y) {
        for (int x = 0; x < slider.width(); ++x)
            white += slider.pixelColor(x, y) == QColor(Qt::white);
    }
    return white > 100;
}

QPointF TestPlaying::sliderPlace(double part)
{
    constexpr double HandleWidth = 34;
    const QRectF slider = probe().area("volumeSlider");
    return { slider.left() + HandleWidth / 2 + part * (slider.width() - HandleWidth),
        slider.center().y() };
}

bool TestPlaying::slide(const QPointF &from, const QPointF &to)
{
    constexpr int Moves = 10;
    bool done = probe().press(from);
    for (int i = 1; i <= Moves; ++i)
        done = done && probe().move(from + (to - from) * i / Moves);
    return done && probe().release(to);
}

QTEST_GUILESS_MAIN(TestPlaying)
#include "tst_playing.moc"
