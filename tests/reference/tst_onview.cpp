// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

#include <QSet>

#include <chrono>
#include <memory>

namespace {

constexpr std::chrono::minutes DialogsClose { 10 };

using Messages = QList<QPair<QString, QByteArray>>; // by the document's names

const MqttReference::Entry &entry(const QString &message)
{
    return MqttReference::instance().entry(message);
}

QByteArray odd(const QString &message)
{
    return entry(message).oddPayload;
}

/** What the page of a zone that plays, and its dialog, begin with before each row. */
Messages beginning()
{
    return { { "availableZones", R"([{"id":"z1","name":"Kitchen"}])" }, { "zoneOutputs", "[]" },
        { "zoneName", "Kitchen" }, { "zoneState", "playing" },
        { "zoneNowPlayingSeekPosition", "1" }, { "zoneNowPlayingLength", "2" },
        { "zoneNowPlayingAlbum", "A" }, { "zoneNowPlayingSong", "S" },
        { "zoneNowPlayingArtist", "B" }, { "zoneNowPlayingImageKey", "red" },
        { "zoneSettingsShuffle", "false" }, { "zoneSettingsLoop", "disabled" },
        { "zoneSettingsAutoRadio", "false" }, { "zoneQueueItemsRemaining", "0" },
        { "zoneIsPreviousAllowed", "false" }, { "zoneIsNextAllowed", "false" },
        { "zoneIsPauseAllowed", "true" }, { "zoneIsPlayAllowed", "false" },
        { "zoneIsSeekAllowed", "false" }, { "zoneVolumeHardLimitMin", "0" },
        { "zoneVolumeHardLimitMax", "100" }, { "zoneVolumeSoftLimit", "80" },
        { "zoneVolumeStep", "1" }, { "zoneVolumeValue", "20" }, { "zoneVolumeAvailable", "true" },
        { "settingClockcolor", "custom" }, { "settingCustomClockcolor", "#ff0000" },
        { "settingHideOptionButtons", "false" }, { "settingShowBlurImage", "true" },
        { "settingScrolling", "true" }, { "settingClock24", "true" },
        { "stateUpdateAvailable", "false" } };
}

/** A title that does not fit. */
const QByteArray LongTitle(100, 'm');

/** What a row needs to begin with besides. */
Messages exception(const QString &message)
{
    if (message == "zoneIsPlayAllowed" || message == "zoneIsPauseAllowed")
        return { { "zoneIsPauseAllowed", "false" } };
    if (message == "zoneVolumeAvailable")
        return { { "zoneVolumeAvailable", "false" } };
    if (message == "settingScrolling")
        return { { "zoneNowPlayingSong", LongTitle } };
    if (message == "zoneName") // found by the list, whatever it calls itself
        return { { "availableZones", R"([{"id":"z1","name":"Kitchen + Attic"}])" },
            { "zoneName", "Kitchen + Attic" } };
    return {};
}

} // namespace

/** What docs/mqtt-api.yaml says of pages and of odd payloads is what is to be seen. */
class TestOnView : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void itIsSeenOnItsPages_data();
    void itIsSeenOnItsPages();

    void theOutputsBringThePage();

    void oddFlagsAndNumbers();
    void anOddScrolling();
    void theClockFollowsItsFormat();
    void oddTexts();
    void anOddState();
    void anEmptyStateLeavesThePage();
    void anOddName();
    void anOddLoop();
    void anOddImageKey();
    void anOddServerUrl();
    void oddColours();
    void anOddDelay();
    void zeroIsALimit();
    void theListReachesTheVolumeDialog();
    void hiddenIconsAnswer();

private:
    bool publish(const Messages &messages);
    bool showPage(const QString &page);
    bool showsPlayer();
    QJsonArray calmScene();
    QImage coverPicture() { return m_appliance->program.probe().picture("cover"); }

    std::unique_ptr<Appliance> m_appliance;
};

void TestOnView::initTestCase()
{
    m_appliance = std::make_unique<Appliance>();
    m_appliance->images.setBehaviour("red", { ImageServer::Behaviour::Picture, Qt::red });
    m_appliance->images.setBehaviour("5f3c0a9d", { ImageServer::Behaviour::Picture, Qt::blue });
    QVERIFY(m_appliance->start());
}

void TestOnView::cleanupTestCase()
{
    m_appliance.reset();
}

/** Each test begins on the player page, with all dialogs closed. */
void TestOnView::init()
{
    QVERIFY(publish({ { "coreServerUrl", m_appliance->images.address() },
        { "settingScreensaverTime", "10" } }));
    QVERIFY(publish(beginning()));
    QVERIFY(showsPlayer());
    Probe &probe = m_appliance->program.probe();
    QTRY_COMPARE_WITH_TIMEOUT(
        coverPicture().pixelColor(QPoint(20, 20)), QColor(254, 0, 0), PatienceMs); // as JPEG has it
    QVERIFY(probe.pass(DialogsClose)); // and the volume is bright no longer
    QTRY_VERIFY_WITH_TIMEOUT(!probe.shows("volumeDown"), PatienceMs);
}

/** All retained, and handled when it returns. */
bool TestOnView::publish(const Messages &messages)
{
    for (const auto &[message, payload] : messages)
        m_appliance->services.publish(entry(message).topicOf("z1"), payload, true);
    return m_appliance->handled();
}

bool TestOnView::showsPlayer()
{
    for (int step = 0; step < 3 && m_appliance->program.probe().alive(PageNames::Player) == 0;
         ++step) {
        m_appliance->sendCommand(entry("toggleStandby").sent.first());
        if (!m_appliance->handled())
            return false;
    }
    return m_appliance->waitForPage(PageNames::Player);
}

/** A page or dialog by the document's name. */
bool TestOnView::showPage(const QString &page)
{
    Probe &probe = m_appliance->program.probe();
    if (page == "clock") {
        m_appliance->sendCommand(entry("toggleStandby").sent.first());
        return m_appliance->waitForPage(PageNames::Clock);
    }
    if (page == "volume") {
        const QJsonObject closeTimer { { "name", "closeTimer" },
            { "where", QJsonObject { { "running", true } } } };
        const auto interval
            = double(std::chrono::milliseconds(DialogsClose).count()); // on a slow machine, too
        return probe.tap("volumeBox") && waitUntil([&] { return probe.shows("volumeDown"); })
            && probe.setObjectProperty(closeTimer, "interval", interval);
    }
    return showsPlayer();
}

/** All that is shown, once nothing moves or fades any more. */
QJsonArray TestOnView::calmScene()
{
    Probe &probe = m_appliance->program.probe();
    QJsonArray scene;
    waitUntil([&] {
        const QJsonArray before = probe.scene();
        probe.pass(std::chrono::milliseconds(100));
        scene = probe.scene();
        return scene == before;
    });
    return scene;
}

void TestOnView::itIsSeenOnItsPages_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("page"); // empty where it is seen on none
    // Where these lead is seen by tst_messages and the tests below.
    const QSet<QString> elsewhere { "connection failure", "zone not found", "screen saver",
        "update", "zones" };
    // And these are seen on the player page besides.
    const QSet<QString> both { "zoneName", "zoneState" };
    for (const MqttReference::Entry &each : MqttReference::instance().entries()) {
        // The outputs bring the page itself, see theOutputsBringThePage(), and the clock follows
        // with its next second, see theClockFollowsItsFormat().
        const bool leads = elsewhere.intersects({ each.pages.begin(), each.pages.end() });
        if (!each.received || each.message == "zoneOutputs" || each.message == "settingClock24"
            || (leads && !both.contains(each.message)))
            continue;
        if (each.pages.isEmpty())
            QTest::newRow(qPrintable(each.message)) << each.message << QString();
        for (const QString &page : each.pages) {
            if ((!leads && each.message != "zoneVolumeAvailable") || page == "player")
                QTest::addRow("%s, %s", qPrintable(each.message), qPrintable(page))
                    << each.message << page;
        }
    }
}

void TestOnView::itIsSeenOnItsPages()
{
    QFETCH(QString, message);
    QFETCH(QString, page);
    QVERIFY(publish(exception(message)));
    QVERIFY(showPage(page));
    const QJsonArray before = calmScene();
    bool differs = false;
    for (const QByteArray &example : entry(message).sent) {
        const int logged = m_appliance->program.logSize();
        QVERIFY(publish({ { message, example } }));
        if (message == "zoneNowPlayingImageKey") // its picture comes in its own time
            QVERIFY(m_appliance->program.waitForLine(
                Line::info("ImageProvider::requestImage() return fetched mage"), logged));
        differs = differs || calmScene() != before;
    }
    QCOMPARE(differs, !page.isEmpty());
    QCOMPARE(m_appliance->program.probe().shows("volumeDown"), page == "volume");
}

/** Only the outputs tell that the zone plays in that group. */
void TestOnView::theOutputsBringThePage()
{
    QCOMPARE(entry("zoneOutputs").pages, QStringList("player"));
    QVERIFY(publish({ { "availableZones", R"([{"id":"z1","name":"Attic + Kitchen"}])" },
        { "coreCoreDetected", "true" } }));
    QVERIFY(m_appliance->waitForPage(PageNames::NotFound));
    QVERIFY(publish({ { "zoneOutputs", entry("zoneOutputs").sent.first() } }));
    QVERIFY(m_appliance->waitForPage(PageNames::Player));
    QVERIFY(publish({ { "zoneOutputs", odd("zoneOutputs") }, { "coreCoreDetected", "true" } }));
    QVERIFY(m_appliance->waitForPage(PageNames::NotFound));
}

void TestOnView::oddFlagsAndNumbers()
{
    Probe &probe = m_appliance->program.probe();
    const Probe::Target next = Probe::Target("icon").inside("next");
    QVERIFY(!probe.shows(next));
    QVERIFY(publish({ { "zoneIsNextAllowed", odd("zoneIsNextAllowed") } }));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows(next), PatienceMs);

    QVERIFY(publish({ { "zoneQueueItemsRemaining", "1" },
        { "zoneNowPlayingSeekPosition", odd("zoneNowPlayingSeekPosition") },
        { "zoneNowPlayingLength", odd("zoneNowPlayingLength") },
        { "zoneVolumeValue", odd("zoneVolumeValue") } }));
    QTRY_COMPARE_WITH_TIMEOUT(probe.shown(Probe::Target::text("0:00")), 2, PatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows(Probe::Target::text("0").inside("volumeBox")), PatienceMs);
}

void TestOnView::anOddScrolling()
{
    QVERIFY(publish({ { "zoneNowPlayingSong", LongTitle } }));
    const QJsonArray scrolling = calmScene();
    QVERIFY(publish({ { "settingScrolling", "false" } }));
    const QByteArray cut = LongTitle.left(38);
    QTRY_VERIFY_WITH_TIMEOUT(
        m_appliance->songOnView().startsWith(cut) && m_appliance->songOnView().size() < 45,
        PatienceMs);
    QVERIFY(calmScene() != scrolling);
    QVERIFY(publish({ { "settingScrolling", odd("settingScrolling") } }));
    QTRY_COMPARE_WITH_TIMEOUT(calmScene(), scrolling, PatienceMs);
}

void TestOnView::theClockFollowsItsFormat()
{
    Probe &probe = m_appliance->program.probe();
    const Probe::Target marker = Probe::Target("text").inside("marker");
    QCOMPARE(entry("settingClock24").pages, QStringList("clock"));
    QVERIFY(showPage("clock"));
    QVERIFY(!probe.shows(marker));
    QVERIFY(publish({ { "settingClock24", entry("settingClock24").sent.first() } }));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows(marker), PatienceMs);
    QVERIFY(publish({ { "settingClock24", odd("settingClock24") } }));
    QTRY_VERIFY_WITH_TIMEOUT(!probe.shows(marker), PatienceMs);
}

void TestOnView::oddTexts()
{
    Probe &probe = m_appliance->program.probe();
    QVERIFY(publish({ { "zoneNowPlayingAlbum", odd("zoneNowPlayingAlbum") },
        { "zoneNowPlayingArtist", odd("zoneNowPlayingArtist") } }));
    for (const char *const line : { "album", "artist" })
        QTRY_VERIFY_WITH_TIMEOUT(
            probe.shows(Probe::Target::text("<b>Live</b>").inside(line)), PatienceMs);

    QVERIFY(publish({ { "zoneNowPlayingSong", odd("zoneNowPlayingSong") } }));
    QTRY_VERIFY_WITH_TIMEOUT(
        !probe.shows(Probe::Target::text("S").inside("songTitle")), PatienceMs);
    QVERIFY(!probe.shows(Probe::Target::text("Nothing Playing")));
    QVERIFY(publish({ { "zoneState", "paused" }, { "zoneIsPlayAllowed", "false" } }));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows(Probe::Target::text("Nothing Playing")), PatienceMs);
}

/** The clock comes for none of the states that the display does not know. */
void TestOnView::anOddState()
{
    QVERIFY(publish({ { "settingScreensaverTime", "0" }, { "zoneState", odd("zoneState") } }));
    QVERIFY(m_appliance->program.waitForLine(
        Line::debug("NavigationController::screenSaverTimeout() " + odd("zoneState"))));
    QVERIFY(m_appliance->waitForPage(PageNames::Player));
    QVERIFY(publish({ { "zoneState", "paused" } }));
    QVERIFY(m_appliance->waitForPage(PageNames::Clock));
}

void TestOnView::anEmptyStateLeavesThePage()
{
    const QJsonArray playing = calmScene();
    QVERIFY(publish({ { "zoneState", "" } }));
    QCOMPARE(calmScene(), playing);
    QVERIFY(publish({ { "zoneState", odd("zoneState") } }));
    QVERIFY(calmScene() != playing);
}

void TestOnView::anOddName()
{
    for (const QByteArray &name : { odd("zoneName"), QByteArray("Scullery") }) {
        QVERIFY(publish({ { "zoneName", name } }));
        QVERIFY(m_appliance->waitForPage(PageNames::NotFound));
        QVERIFY(publish({ { "zoneName", "Kitchen" } }));
        QVERIFY(m_appliance->waitForPage(PageNames::Player));
    }
}

void TestOnView::anOddLoop()
{
    const auto icon = [this] { return m_appliance->program.probe().picture("loop"); };
    const QImage off = icon();
    QVERIFY(publish({ { "zoneSettingsLoop", "loop" } }));
    QTRY_VERIFY_WITH_TIMEOUT(icon() != off, PatienceMs);
    const QImage on = icon();
    QVERIFY(publish({ { "zoneSettingsLoop", "disabled" } }));
    QTRY_COMPARE_WITH_TIMEOUT(icon(), off, PatienceMs);

    QVERIFY(publish({ { "zoneSettingsLoop", odd("zoneSettingsLoop") } }));
    QTRY_COMPARE_WITH_TIMEOUT(icon(), on, PatienceMs);
    QVERIFY(m_appliance->program.probe().tap("loop"));
    const QByteArray command = R"({"command":"set_loopmode","loop":"disabled","zone_id":"z1"})";
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->commands().last(), command, PatienceMs);
}

void TestOnView::anOddImageKey()
{
    QVERIFY(publish({ { "zoneNowPlayingImageKey", "5f3c0a9d" } }));
    QTRY_COMPARE_WITH_TIMEOUT(m_appliance->images.requestsFor("5f3c0a9d") > 0, true, PatienceMs);
    calmScene();
    const QImage cover = coverPicture();
    QVERIFY(publish({ { "zoneNowPlayingImageKey", odd("zoneNowPlayingImageKey") } }));
    calmScene();
    QCOMPARE(coverPicture(), cover);
}

void TestOnView::anOddServerUrl()
{
    const QImage cover = coverPicture();
    QVERIFY(publish({ { "zoneState", "paused" }, { "zoneIsPauseAllowed", "false" } }));
    QTRY_VERIFY_WITH_TIMEOUT(coverPicture() != cover, PatienceMs);
    const QImage logo = coverPicture(); // for nothing is playing
    QVERIFY(publish(beginning()));
    QTRY_COMPARE_WITH_TIMEOUT(coverPicture(), cover, PatienceMs);

    QVERIFY(publish({ { "coreServerUrl", odd("coreServerUrl") } }));
    QTRY_COMPARE_WITH_TIMEOUT(coverPicture(), logo, PatienceMs);
}

void TestOnView::oddColours()
{
    Probe &probe = m_appliance->program.probe();
    const auto colour = [&probe] {
        return probe.property(Probe::Target("text").inside("time"), "color").toString();
    };
    QVERIFY(showPage("clock"));
    QTRY_COMPARE_WITH_TIMEOUT(colour(), QString("#ff0000"), PatienceMs);
    QVERIFY(publish({ { "settingCustomClockcolor", odd("settingCustomClockcolor") } }));
    QTRY_COMPARE_WITH_TIMEOUT(colour(), QString("#545050"), PatienceMs);
    QVERIFY(publish({ { "settingClockcolor", "blue" } }));
    QTRY_COMPARE_WITH_TIMEOUT(colour(), QString("#05edff"), PatienceMs);
    QVERIFY(publish({ { "settingClockcolor", odd("settingClockcolor") } }));
    QTRY_COMPARE_WITH_TIMEOUT(colour(), QString("#545050"), PatienceMs);
}

void TestOnView::anOddDelay()
{
    QVERIFY(publish({ { "settingScreensaverTime", odd("settingScreensaverTime") },
        { "zoneState", "paused" } }));
    QVERIFY(m_appliance->waitForPage(PageNames::Clock));
}

void TestOnView::zeroIsALimit()
{
    QVERIFY(publish({ { "zoneVolumeHardLimitMin", "5" } }));
    QVERIFY(showPage("volume"));
    Probe &probe = m_appliance->program.probe();
    for (const auto &[label, message] : QMap<QString, QString> {
             { "minimumText", "zoneVolumeHardLimitMin" },
             { "maximumText", "zoneVolumeHardLimitMax" },
             { "softLimitText",
                 "zoneVolumeSoftLimit" } }.toStdMap()) {
        const auto text = [&, label = label] { return probe.property(label, "text").toString(); };
        QVERIFY(text() != "0");
        QVERIFY(publish({ { message, odd(message) } }));
        QTRY_COMPARE_WITH_TIMEOUT(text(), QString("0"), PatienceMs);
    }
}

/** Limits of a zone that is no longer the display's are not shown. */
void TestOnView::theListReachesTheVolumeDialog()
{
    QVERIFY(entry("availableZones").pages.contains("volume"));
    QVERIFY(showPage("volume"));
    Probe &probe = m_appliance->program.probe();
    QVERIFY(probe.shows(Probe::Target::text("100")));
    QVERIFY(publish({ { "availableZones", R"([{"id":"z2","name":"Kitchen"}])" } }));
    QTRY_VERIFY_WITH_TIMEOUT(!probe.shows(Probe::Target::text("100")), PatienceMs);
    QVERIFY(probe.shows("volumeDown"));
}

/** A command comes although the zone does not allow it. */
void TestOnView::hiddenIconsAnswer()
{
    QVERIFY(publish({ { "zoneIsPauseAllowed", "false" }, { "settingHideOptionButtons", "true" } }));
    Probe &probe = m_appliance->program.probe();
    for (const QString item : { "previous", "playPause", "next", "radio", "shuffle", "loop" }) {
        QTRY_VERIFY_WITH_TIMEOUT(!probe.shows(Probe::Target("icon").inside(item)), PatienceMs);
        const int before = m_appliance->commands().size();
        QVERIFY(probe.tap(item));
        QTRY_COMPARE_WITH_TIMEOUT(m_appliance->commands().size(), before + 1, PatienceMs);
    }
}

QTEST_GUILESS_MAIN(TestOnView)
#include "tst_onview.moc"
