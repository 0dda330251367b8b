// SPDX-License-Identifier: GPL-3.0-or-later
#include "navigationcontroller.h"
#include "logcapture.h"
#include "markdowntable.h"
#include "metatable.h"
#include "mqtt.h"
#include "player.h"
#include "roon.h"
#include "roonzones.h"
#include "screencontroller.h"
#include "settings.h"
#include "signalrecorder.h"
#include "testkit/machine/panel.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"
#include "velunor_state.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>
#include <memory>

using Navigation = NavigationController;

namespace {

const QString IdleTopic = QStringLiteral("Velunor/touch_ui/v3/Display/idle");
const QString MarkTopic = QStringLiteral("test/mark");
const QByteArray NormalBrightness = "100";
const QByteArray ClockBrightness = "50";
const QByteArray PowerOn = "0";
const QByteArray PowerOff = "1";

constexpr int FirstScreen = Navigation::WelcomeScreen;
constexpr int LastScreen = Navigation::UpdateInstallingScreen;

const QMap<int, QString> ScreenNames {
    { 10, QStringLiteral("Welcome") },
    { 11, QStringLiteral("RoonPlayerWindow2") },
    { 12, QStringLiteral("SettingsWindow") },
    { 13, QStringLiteral("RoonConnectionFailure") },
    { 14, QStringLiteral("ScreenSaver") },
    { 15, QStringLiteral("Clock") },
    { 16, QStringLiteral("RoonZoneNotFound") },
    { 17, QStringLiteral("UpdateInstalling") },
};

/** What the rest of the appliance is like. */
enum Situation {
    NoRemoteService,
    NoCore,
    NeitherServiceNorCore,
    ZoneFound,
    ZoneMissing,
};

const QMap<Situation, const char *> SituationNames {
    { NoRemoteService, "no remote service" },
    { NoCore, "no core" },
    { NeitherServiceNorCore, "neither service nor core" },
    { ZoneFound, "zone found" },
    { ZoneMissing, "zone missing" },
};

bool isFailure(Situation situation)
{
    return situation < ZoneFound;
}

QString failureLine(Situation situation)
{
    return QStringLiteral("warning: NavigationController::communcationFailure() problem detected! "
                          "(remote connected: %1; core detected: %2)")
        .arg(situation == NoCore ? "true" : "false",
            situation == NoRemoteService ? "true" : "false");
}

QString navigateLine(int from, int to)
{
    return QStringLiteral("debug: NavigationController::navigate() to %1, current %2")
        .arg(to)
        .arg(from);
}

QString own(const char *text) // a debug line
{
    return QStringLiteral("debug: NavigationController::") + QLatin1String(text);
}

const QString ZoneFoundLine = own("zoneFound() called with controlled zone Kitchen");
const QStringList ZoneMissingLines { own("zoneFound() called with controlled zone UNKNOWN"),
    own("zoneFound(): NO") };

QStringList setScreen(std::initializer_list<int> screens)
{
    QStringList entries;
    for (const int screen : screens)
        entries.append(QStringLiteral("setScreen ") + ScreenNames.value(screen));
    return entries;
}

} // namespace

Q_DECLARE_METATYPE(Situation)

class TestNavigationController : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void metaObjectIsTheInterface();
    void screensHaveFixedNumbers();
    void constructorLogsAndReportsBusy();
    void constructorPowersTheBacklight();
    void constructorStartsTheWelcomeTimerOnly();
    void unknownWidthIsCriticalAndAsksToQuit();
    void instanceIsOneObject();

    void navigateEmitsTheNameOfTheScreen_data();
    void navigateEmitsTheNameOfTheScreen();
    void navigateAppliesTheBrightnessFirst();
    void navigateToTheCurrentScreenDoesNothing();
    void navigateToAnUnknownScreenChangesNothing_data();
    void navigateToAnUnknownScreenChangesNothing();

    void screenChangedIsBelieved_data();
    void screenChangedIsBelieved();
    void screenChangedToAnUnknownNameChangesNothing_data();
    void screenChangedToAnUnknownNameChangesNothing();

    void communicationFailureNeedsServiceAndCore_data() { addSituations(); }
    void communicationFailureNeedsServiceAndCore();
    void zoneFoundLooksUpThePlayersZone();

    void idleAndBusyPublishChangesOnly();
    void idleIsPublishedAtQosOneWithoutRetain();

    void welcomeTimeoutLeavesTheWelcomeScreen_data();
    void welcomeTimeoutLeavesTheWelcomeScreen();
    void welcomeTimerCallsItsSlot();

    void signalsOfOthersCauseAnEvaluationAtOnce();
    void evaluationLogsChangesOnly();
    void evaluationLogsChangesFirst();

    void decisionTable_data();
    void decisionTable();

    void screenSaverIsArmed_data();
    void screenSaverIsArmed();
    void runningScreenSaverTimerIsLeftAlone();
    void screenSaverTimeIsInMinutes_data();
    void screenSaverTimeIsInMinutes();
    void screenSaverTimeOfZeroComesAtOnce();
    void playingLeavesARunningTimerAlone();
    void screenSaverTimeoutCountsInSomeStates_data();
    void screenSaverTimeoutCountsInSomeStates();

    void resumeWakesTheDisplay_data();
    void resumeWakesTheDisplay();
    void wakeIsKeptUntilAResumeThatCounts();
    void resumeOnThePlayerOnlyEndsTheScreenSaverDelay();

    void blankScreenCutsTheBacklightFirst();
    void enableScreenGoesNowhere();
    void leaveScreenSaverLogsItsSteps_data() { addSituations(); }
    void leaveScreenSaverLogsItsSteps();
    void settingsAreEnteredAndLeft_data();
    void settingsAreEnteredAndLeft();

    void cycleTable_data();
    void cycleTable();
    void wholeCycle();
    void transitionTable_data();
    void transitionTable();

    void documentedDecisions_data();
    void documentedDecisions();
    void documentedEvents_data();
    void documentedEvents();

private:
    static void addSituations();
    void become(Situation situation, bool updating = false);
    void makeNavigation(int screen = Navigation::WelcomeScreen);
    QTimer *screenSaverTimer() const { return m_navigation->findChildren<QTimer *>().value(1); }
    int screen();
    static void forgetReports();
    QList<QByteArray> idleReports();
    QStringList ownLines() { return m_log->take(QStringLiteral("navigationcontroller.cpp")); }

    std::unique_ptr<Broker> m_broker;
    std::unique_ptr<BrokerClient> m_services;
    std::unique_ptr<Panel> m_panel;

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<Navigation> m_navigation;
    std::unique_ptr<SignalRecorder> m_signals;
};

/** A row for each situation. */
void TestNavigationController::addSituations()
{
    QTest::addColumn<Situation>("situation");
    for (auto row = SituationNames.begin(); row != SituationNames.end(); ++row)
        QTest::newRow(row.value()) << row.key();
}

void TestNavigationController::initTestCase()
{
    qRegisterMetaType<Situation>();
    QFile ini(QStringLiteral("/data/velunor-touch.ini"));
    QVERIFY(ini.open(QIODevice::WriteOnly));
    ini.write(
        "[LCD]\nBrightness=" + NormalBrightness + "\nClockBrightness=" + ClockBrightness + "\n");
    ini.close();
    m_panel = std::make_unique<Panel>();
    m_broker = std::make_unique<Broker>();
    QVERIFY(m_broker->start());
    m_services = std::make_unique<BrokerClient>();
    QVERIFY(m_services->connectToBroker());
    QVERIFY(waitUntil([] { return Mqtt::instance()->isConnected(); }));
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z1","name":"Kitchen"}])");
    QCOMPARE(ScreenController::instance()->width(), 800u);
    QCOMPARE(Settings::instance()->brightness(), NormalBrightness.toUInt());
}

void TestNavigationController::cleanupTestCase()
{
    m_services.reset();
    m_broker.reset();
    m_panel.reset();
}

void TestNavigationController::init()
{
    m_log = std::make_unique<LogCapture>();
    Settings::instance()->setBlankScreen(false);
    Settings::instance()->setScreenSaverTime(10);
    ScreenController::instance()->setWidth(800);
    ScreenController::instance()->exec_backlight_on();
    become(ZoneFound);
    Player::instance()->setRoonState(QStringLiteral("none"));
    Player::instance()->setRoonState(QStringLiteral("init"));
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z1","name":"Kitchen"}])");
    m_log->clear();
}

void TestNavigationController::cleanup()
{
    m_log->clear(); // what a test has to say about the log, it has said
    m_signals.reset();
    m_navigation.reset();
    m_log.reset();
}

/** Sets the situation of the appliance; without a navigation, or unnoticed by it. */
void TestNavigationController::become(Situation situation, bool updating)
{
    const bool remoteConnected = situation != NoRemoteService && situation != NeitherServiceNorCore;
    const bool coreDetected = situation != NoCore && situation != NeitherServiceNorCore;
    const QSignalBlocker player(Player::instance());
    const QSignalBlocker roon(Roon::instance());
    const QSignalBlocker state(VelunorState::instance());
    Player::instance()->setRemoteConnected(remoteConnected);
    Roon::instance()->setCoreDetected(coreDetected);
    Player::instance()->setZone(
        situation == ZoneMissing ? QStringLiteral("UNKNOWN") : QStringLiteral("Kitchen"));
    VelunorState::instance()->setProperty("UpdateInstalling", updating);
}

/** A navigation that has gone to @p screen, with an empty record of signals and log. */
void TestNavigationController::makeNavigation(int screen)
{
    m_navigation = std::make_unique<Navigation>();
    m_signals = std::make_unique<SignalRecorder>(m_navigation.get());
    m_navigation->navigate(static_cast<Navigation::Screen>(screen));
    m_signals->take();
    m_log->clear();
}

/**
 * The current screen: going to a screen that does not exist changes nothing, but names it in the
 * log.
 */
int TestNavigationController::screen()
{
    LogCapture log;
    m_navigation->navigate(static_cast<Navigation::Screen>(99));
    return log.take().first().section(QLatin1Char(' '), -1).toInt();
}

/** Reports of the idle state made up to now do not count. */
void TestNavigationController::forgetReports()
{
    Mqtt::instance()->publish(MarkTopic, "from here", false, 1);
}

/** The reports of the idle state that have reached the broker since forgetReports(). */
QList<QByteArray> TestNavigationController::idleReports()
{
    Mqtt::instance()->publish(MarkTopic, "to here", false, 1);
    if (!m_services->waitFor(MarkTopic, "to here"))
        QTest::qFail("the broker does not answer", __FILE__, __LINE__);
    QList<QByteArray> reports;
    for (const BrokerClient::Message &message : m_services->messages()) {
        if (message.topic == MarkTopic && message.payload == "from here")
            reports.clear();
        else if (message.topic == IdleTopic)
            reports.append(message.payload);
    }
    m_services->clear();
    return reports;
}

void TestNavigationController::metaObjectIsTheInterface()
{
    const QMetaObject &meta = Navigation::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta), QStringList());
    QCOMPARE(methodTable(meta),
        QStringList({ "public signal setScreen(QString)", "public signal radioButtonPressed(bool)",
            "public signal shuffleButtonPressed(bool)", "public signal loopButtonPressed(QString)",
            "public slot remoteConnectionChanged()", "public slot stateChanged()",
            "public slot clickedGotoSettings()", "public slot clickedLeaveSettings()",
            "public slot leaveScreenSaver()", "public slot cycleDisplayOutput()",
            "public slot blankScreen()", "public slot enableScreen()",
            "public slot screenChanged(QString)", "public slot welcomeTimeout()",
            "public slot screenSaverTimeout()", "public slot updateState()" }));
    QCOMPARE(enumeratorTable(meta), QStringList());
}

void TestNavigationController::screensHaveFixedNumbers()
{
    QCOMPARE(int(Navigation::WelcomeScreen), 10);
    QCOMPARE(int(Navigation::PlayerScreen), 11);
    QCOMPARE(int(Navigation::SettingsScreen), 12);
    QCOMPARE(int(Navigation::ConnectionFailureScreen), 13);
    QCOMPARE(int(Navigation::ScreenSaverScreen), 14);
    QCOMPARE(int(Navigation::ClockScreen), 15);
    QCOMPARE(int(Navigation::ZoneNotFoundScreen), 16);
    QCOMPARE(int(Navigation::UpdateInstallingScreen), 17);
}

void TestNavigationController::constructorLogsAndReportsBusy()
{
    forgetReports();
    m_log->clear();
    m_navigation = std::make_unique<Navigation>();
    QVERIFY(!m_navigation->parent());
    QCOMPARE(m_log->take(),
        QStringList(
            { constructorLine(QStringLiteral("NavigationController")), own("busy() true") }));
    QCOMPARE(idleReports(), QList<QByteArray>({ "false" }));
    QCOMPARE(screen(), int(Navigation::WelcomeScreen));
}

void TestNavigationController::constructorPowersTheBacklight()
{
    ScreenController::instance()->exec_backlight_off();
    m_log->clear();
    m_navigation = std::make_unique<Navigation>();
    QCOMPARE(m_panel->power(), PowerOn);
    QCOMPARE(m_log->take(),
        QStringList({ constructorLine(QStringLiteral("NavigationController")),
            QStringLiteral("info: ScreenController::exec_backlight_on()"), own("busy() true") }));
}

void TestNavigationController::constructorStartsTheWelcomeTimerOnly()
{
    m_navigation = std::make_unique<Navigation>();
    const QList<QTimer *> timers
        = m_navigation->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 2);
    QVERIFY(timers.at(0)->isSingleShot());
    QVERIFY(timers.at(0)->isActive());
    QCOMPARE(timers.at(0)->interval(), 5000);
    QVERIFY(timers.at(1)->isSingleShot());
    QVERIFY(!timers.at(1)->isActive());
}

void TestNavigationController::unknownWidthIsCriticalAndAsksToQuit()
{
    ScreenController::instance()->setWidth(1024);
    QTimer::singleShot(0, this, [this] { m_navigation = std::make_unique<Navigation>(); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(m_log->take(),
        QStringList({ constructorLine(QStringLiteral("NavigationController")),
            QStringLiteral("critical: unknown screen dimensions!"), own("busy() true") }));

    SignalRecorder signalsOf(m_navigation.get());
    m_navigation->navigate(Navigation::PlayerScreen);
    QCOMPARE(m_log->take(),
        QStringList({ navigateLine(10, 11),
            QStringLiteral("critical: NavigationController:navigate() unknown screen 11") }));
    QCOMPARE(signalsOf.take(), QStringList());
    m_navigation->navigate(Navigation::ClockScreen);
    QCOMPARE(signalsOf.take(), setScreen({ 15 }));
}

void TestNavigationController::instanceIsOneObject()
{
    QVERIFY(Navigation::instance());
    QCOMPARE(Navigation::instance(), Navigation::instance());
    // The other tests have navigations of their own: this one is to hear nothing more.
    for (QObject *const sender : std::initializer_list<QObject *> {
             Player::instance(), Roon::instance(), VelunorState::instance() })
        sender->disconnect(Navigation::instance());
    for (QTimer *const timer : Navigation::instance()->findChildren<QTimer *>())
        timer->stop();
}

void TestNavigationController::navigateEmitsTheNameOfTheScreen_data()
{
    QTest::addColumn<uint>("width");
    QTest::addColumn<int>("target");
    for (const uint width : { 800u, 1280u }) {
        for (int target = FirstScreen; target <= LastScreen; ++target)
            QTest::addRow("%s at %u", qUtf8Printable(ScreenNames.value(target)), width)
                << width << target;
    }
}

void TestNavigationController::navigateEmitsTheNameOfTheScreen()
{
    QFETCH(uint, width);
    QFETCH(int, target);
    ScreenController::instance()->setWidth(width);
    const int from = target == FirstScreen ? LastScreen : FirstScreen;
    makeNavigation(from);
    m_navigation->navigate(static_cast<Navigation::Screen>(target));
    const bool toClock = target == Navigation::ClockScreen;
    QStringList lines { navigateLine(from, target) };
    if (!toClock)
        lines.append(QStringLiteral("info: ScreenController::setDefaultBrightness()"));
    lines.append(QStringLiteral("info: ScreenController::exec_brightness() ")
        + (toClock ? ClockBrightness : NormalBrightness));
    QCOMPARE(m_log->take(), lines);
    QCOMPARE(m_signals->take(), setScreen({ target }));
    QCOMPARE(m_panel->brightness(), toClock ? ClockBrightness : NormalBrightness);
    QCOMPARE(screen(), target);
}

void TestNavigationController::navigateAppliesTheBrightnessFirst()
{
    makeNavigation(Navigation::PlayerScreen);
    QByteArray brightness;
    int current = 0;
    connect(m_navigation.get(), &Navigation::setScreen, this, [&] {
        brightness = m_panel->brightness();
        current = screen();
    });
    m_navigation->navigate(Navigation::ClockScreen);
    QCOMPARE(brightness, ClockBrightness);
    QCOMPARE(current, int(Navigation::ClockScreen));
    m_navigation->navigate(Navigation::PlayerScreen);
    QCOMPARE(brightness, NormalBrightness);
    QCOMPARE(current, int(Navigation::PlayerScreen));
}

void TestNavigationController::navigateToTheCurrentScreenDoesNothing()
{
    for (int target = FirstScreen; target <= LastScreen; ++target) {
        makeNavigation(target);
        m_navigation->navigate(static_cast<Navigation::Screen>(target));
        QCOMPARE(m_log->take(), QStringList(navigateLine(target, target)));
        QCOMPARE(m_signals->take(), QStringList());
    }
}

void TestNavigationController::navigateToAnUnknownScreenChangesNothing_data()
{
    QTest::addColumn<int>("target");
    QTest::newRow("no screen") << -1;
    QTest::newRow("zero") << 0;
    QTest::newRow("below the first") << FirstScreen - 1;
    QTest::newRow("above the last") << LastScreen + 1;
}

void TestNavigationController::navigateToAnUnknownScreenChangesNothing()
{
    QFETCH(int, target);
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->navigate(static_cast<Navigation::Screen>(target));
    QCOMPARE(m_log->take(),
        QStringList({ navigateLine(11, target),
            QStringLiteral("critical: NavigationController:navigate() unknown screen %1")
                .arg(target) }));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(screen(), int(Navigation::PlayerScreen));
}

void TestNavigationController::screenChangedIsBelieved_data()
{
    QTest::addColumn<int>("reported");
    for (int reported = FirstScreen; reported <= LastScreen; ++reported)
        QTest::newRow(qUtf8Printable(ScreenNames.value(reported))) << reported;
}

void TestNavigationController::screenChangedIsBelieved()
{
    QFETCH(int, reported);
    makeNavigation(Navigation::SettingsScreen);
    m_navigation->screenChanged(ScreenNames.value(reported));
    QCOMPARE(m_log->take(),
        QStringList(QStringLiteral("debug: NavigationController::screenChanged() ")
            + ScreenNames.value(reported)));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(screen(), reported);

    // The evaluation follows when the scene's event has ended.
    QCoreApplication::processEvents();
    QVERIFY(m_log->contains(
        QStringLiteral("info: NavigationController::processState() screen: %1").arg(reported)));
    QCOMPARE(m_log->count(ZoneFoundLine), 1);
}

void TestNavigationController::screenChangedToAnUnknownNameChangesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "";
    QTest::newRow("other case") << "welcome";
    QTest::newRow("part of a name") << "RoonPlayerWindow";
    QTest::newRow("accented") << "Réglages";
}

void TestNavigationController::screenChangedToAnUnknownNameChangesNothing()
{
    QFETCH(QString, name);
    makeNavigation(Navigation::ClockScreen);
    m_navigation->screenChanged(name);
    QCoreApplication::processEvents();
    QCOMPARE(m_log->take(),
        QStringList({ QStringLiteral("debug: NavigationController::screenChanged() ") + name,
            QStringLiteral("warning: NavigationController::screenChanged() unknown screen: ")
                + name }));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(screen(), int(Navigation::ClockScreen));
}

void TestNavigationController::communicationFailureNeedsServiceAndCore()
{
    QFETCH(Situation, situation);
    makeNavigation();
    become(situation);
    QCOMPARE(m_navigation->communicationFailure(), isFailure(situation));
    QCOMPARE(
        m_log->take(), isFailure(situation) ? QStringList(failureLine(situation)) : QStringList());
}

void TestNavigationController::zoneFoundLooksUpThePlayersZone()
{
    makeNavigation();
    QVERIFY(m_navigation->zoneFound());
    QCOMPARE(m_log->take(), QStringList(ZoneFoundLine));
    become(ZoneMissing);
    QVERIFY(!m_navigation->zoneFound());
    QCOMPARE(m_log->take(), ZoneMissingLines);

    // A zone that is wanted and available, but is not the one that is shown, does not count.
    Player::instance()->setWantedZone(QStringLiteral("Kitchen"));
    QVERIFY(!m_navigation->zoneFound());
}

void TestNavigationController::idleAndBusyPublishChangesOnly()
{
    makeNavigation();
    forgetReports();
    m_log->clear();
    m_navigation->busy();
    m_navigation->idle();
    m_navigation->idle();
    m_navigation->busy();
    m_navigation->idle();
    QCOMPARE(m_log->take(),
        QStringList({ own("busy() false"), own("idle() false"), own("idle() true"),
            own("busy() true"), own("idle() false") }));
    QCOMPARE(idleReports(), QList<QByteArray>({ "true", "false", "true" }));
}

void TestNavigationController::idleIsPublishedAtQosOneWithoutRetain()
{
    makeNavigation();
    m_navigation->idle();
    QVERIFY(m_broker->waitForLine(QRegularExpression(QStringLiteral(
        "^Received PUBLISH from \\S+ \\(d0, q1, r0, m\\d+, '%1', .* \\(4 bytes\\)\\)$")
                                                         .arg(IdleTopic))));
    QVERIFY(m_broker
                ->lines(QRegularExpression(
                    QStringLiteral("^Received PUBLISH .*\\(d\\d, q([02], r.|., r1), m\\d+, '%1'")
                        .arg(IdleTopic)))
                .isEmpty());
}

void TestNavigationController::welcomeTimeoutLeavesTheWelcomeScreen_data()
{
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<bool>("updating");
    for (auto row = SituationNames.begin(); row != SituationNames.end(); ++row) {
        QTest::addRow("%s", row.value()) << row.key() << false;
        QTest::addRow("%s, updating", row.value()) << row.key() << true;
    }
}

void TestNavigationController::welcomeTimeoutLeavesTheWelcomeScreen()
{
    QFETCH(Situation, situation);
    QFETCH(bool, updating);
    become(situation, updating);
    makeNavigation();
    forgetReports();
    m_log->clear();
    m_navigation->welcomeTimeout();
    // Neither the zone nor an update is looked at here: the scene's report causes that.
    if (isFailure(situation)) {
        QCOMPARE(ownLines(),
            QStringList({ own("welcomeTimeout()"), failureLine(situation), own("idle() false"),
                navigateLine(10, 13) }));
        QCOMPARE(m_signals->take(), setScreen({ 13 }));
        QCOMPARE(idleReports(), QList<QByteArray>({ "true" }));
    } else {
        QCOMPARE(ownLines(),
            QStringList({ own("welcomeTimeout()"), own("busy() false"), navigateLine(10, 11) }));
        QCOMPARE(m_signals->take(), setScreen({ 11 }));
        QCOMPARE(idleReports(), QList<QByteArray>());
    }
}

void TestNavigationController::welcomeTimerCallsItsSlot()
{
    makeNavigation();
    m_navigation->findChildren<QTimer *>().first()->start(0);
    QTRY_VERIFY(m_log->contains(own("welcomeTimeout()")));
    QCOMPARE(m_signals->take(), setScreen({ 11 }));
}

void TestNavigationController::signalsOfOthersCauseAnEvaluationAtOnce()
{
    makeNavigation();
    emit Player::instance()->remoteConnectionChanged();
    QCOMPARE(m_log->count(own("remoteConnectionChanged()")), 1);
    QCOMPARE(m_log->count(ZoneFoundLine), 1);
    m_log->clear();
    emit Roon::instance()->coreDetectionChanged();
    QCOMPARE(ownLines(), QStringList({ own("remoteConnectionChanged()"), ZoneFoundLine }));
    emit VelunorState::instance()->stateUpdateInstallingChanged();
    QCOMPARE(ownLines(), QStringList({ own("updateState()"), ZoneFoundLine }));
    emit Player::instance()->roonStateChanged();
    QCOMPARE(ownLines(), QStringList({ own("stateChanged() init"), ZoneFoundLine }));

    // Nothing else of theirs does.
    emit Player::instance()->zoneChanged();
    emit VelunorState::instance()->stateUpdateAvailableChanged();
    emit RoonZones::instance()->zonesChanged();
    QCOMPARE(ownLines(), QStringList());
    QCOMPARE(m_signals->take(), QStringList());
}

void TestNavigationController::evaluationLogsChangesOnly()
{
    makeNavigation(Navigation::SettingsScreen);
    const auto evaluate = [this] {
        m_navigation->processState();
        return ownLines().filter(QStringLiteral("info: "));
    };
    const QString line = QStringLiteral("info: NavigationController::processState() ");
    QCOMPARE(evaluate(),
        QStringList({ line + "init, previous none", line + "screen: 12",
            line + "available zones: (Kitchen)" }));
    QCOMPARE(evaluate(), QStringList());
    Player::instance()->setRoonState(QStringLiteral("loading"));
    QCOMPARE(ownLines().filter(QStringLiteral("info: ")),
        QStringList({ line + "loading, previous init" }));
    m_navigation->navigate(Navigation::WelcomeScreen);
    QCOMPARE(evaluate(), QStringList({ line + "screen: 10" }));
    RoonZones::instance()->updateAvailableZones(
        R"([{"id":"z2","name":"bath"},{"id":"z1","name":"Küche"},{"id":"z3","name":"Attic"}])");
    m_log->clear();
    QCOMPARE(evaluate(), QStringList({ line + "available zones: (Attic, bath, Küche)" }));
    RoonZones::instance()->updateAvailableZones("[]");
    m_log->clear();
    QCOMPARE(evaluate(), QStringList({ line + "available zones: ()" }));
    QCOMPARE(evaluate(), QStringList());
}

void TestNavigationController::evaluationLogsChangesFirst()
{
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->processState();
    QCOMPARE(ownLines(),
        QStringList({ QStringLiteral(
                          "info: NavigationController::processState() init, previous none"),
            QStringLiteral("info: NavigationController::processState() screen: 11"),
            QStringLiteral("info: NavigationController::processState() available zones: (Kitchen)"),
            own("processState() start screensaver timer 10"), ZoneFoundLine }));
}

// Where an evaluation goes to, by the current screen: 0 means nowhere, Target to the player if
// playback has resumed.  While an update is installing everything goes to the update screen.

void TestNavigationController::decisionTable_data()
{
    constexpr int Target = -1;
    const QList<int> failure { 0, 13, 0, 0, Target, Target, 13, 0 };
    const QList<int> found { 0, 0, 0, 11, Target, Target, 11, 0 };
    const QList<int> missing { 0, 16, 0, 16, Target, Target, 0, 0 };

    QTest::addColumn<Situation>("situation");
    QTest::addColumn<bool>("updating");
    QTest::addColumn<bool>("resumed");
    QTest::addColumn<bool>("wasIdle");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    for (auto row = SituationNames.begin(); row != SituationNames.end(); ++row) {
        const QList<int> &table = isFailure(row.key()) ? failure
            : row.key() == ZoneFound                   ? found
                                                       : missing;
        for (int from = FirstScreen; from <= LastScreen; ++from) {
            for (int variant = 0; variant < 8; ++variant) {
                const bool updating = variant & 1;
                const bool resumed = variant & 2;
                const bool wasIdle = variant & 4;
                int to = table.at(from - FirstScreen);
                if (to == Target)
                    to = resumed ? 11 : 0;
                if (updating)
                    to = from == 17 ? 0 : 17;
                QTest::addRow("%s%s%s%s, %s", row.value(), updating ? ", updating" : "",
                    resumed ? ", resumed" : "", wasIdle ? ", was idle" : "",
                    qUtf8Printable(ScreenNames.value(from)))
                    << row.key() << updating << resumed << wasIdle << from << to;
            }
        }
    }
}

void TestNavigationController::decisionTable()
{
    QFETCH(Situation, situation);
    QFETCH(bool, updating);
    QFETCH(bool, resumed);
    QFETCH(bool, wasIdle);
    QFETCH(int, from);
    QFETCH(int, to);
    makeNavigation();
    if (resumed)
        Player::instance()->setRoonState(QStringLiteral("paused"));
    m_navigation->navigate(static_cast<Navigation::Screen>(from));
    wasIdle ? m_navigation->idle() : m_navigation->busy();
    ScreenController::instance()->exec_backlight_off();
    become(situation, updating);
    forgetReports();
    m_signals->take();
    m_log->clear();

    if (resumed)
        Player::instance()->setRoonState(QStringLiteral("playing"));
    else
        m_navigation->updateState();

    QCOMPARE(m_signals->take(), to == 0 ? QStringList() : setScreen({ to }));
    QCOMPARE(screen(), to == 0 ? from : to);
    QCOMPARE(m_panel->power(), resumed ? PowerOn : PowerOff);
    const int expectedScreen = to == 0 ? from : to;
    QCOMPARE(m_panel->brightness(),
        expectedScreen == Navigation::ClockScreen ? ClockBrightness : NormalBrightness);

    // The calls of idle() and busy(), in order, and which of them are published.
    QStringList calls;
    if (resumed)
        calls.append(QStringLiteral("busy"));
    if (situation != ZoneFound)
        calls.append(QStringLiteral("idle"));
    else if (from == 13 || from == 16)
        calls.append(QStringLiteral("busy"));
    if (updating)
        calls.append(QStringLiteral("busy"));
    QStringList lines;
    QList<QByteArray> reports;
    bool isIdle = wasIdle;
    for (const QString &call : qAsConst(calls)) {
        lines.append(QStringLiteral("debug: NavigationController::%1() %2")
                         .arg(call, QLatin1String(isIdle ? "true" : "false")));
        const bool becomesIdle = call == QLatin1String("idle");
        if (becomesIdle != isIdle)
            reports.append(becomesIdle ? "true" : "false");
        isIdle = becomesIdle;
    }
    QCOMPARE(ownLines().filter(QRegularExpression(QStringLiteral("::(idle|busy)\\(\\)"))), lines);
    QCOMPARE(idleReports(), reports);
}

void TestNavigationController::screenSaverIsArmed_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("on");
    QTest::addColumn<bool>("armed");
    for (const char *state :
        { "playing", "paused", "stopped", "loading", "unknown", "", "Playing" }) {
        for (int on = FirstScreen; on <= LastScreen; ++on) {
            const bool counts = on == 11 || on == 13 || on == 16;
            QTest::addRow("%s, %s", state, qUtf8Printable(ScreenNames.value(on)))
                << QString::fromLatin1(state) << on << (counts && qstrcmp(state, "playing") != 0);
        }
    }
}

void TestNavigationController::screenSaverIsArmed()
{
    QFETCH(QString, state);
    QFETCH(int, on);
    QFETCH(bool, armed);
    Player::instance()->setRoonState(state);
    makeNavigation(on);
    m_navigation->processState();
    QCOMPARE(m_log->contains(own("processState() start screensaver timer 10")), armed);
    QCOMPARE(screenSaverTimer()->isActive(), armed);
    if (armed)
        QCOMPARE(screenSaverTimer()->interval(), 600000);
}

void TestNavigationController::runningScreenSaverTimerIsLeftAlone()
{
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->processState();
    QCOMPARE(screenSaverTimer()->interval(), 600000);
    const int timerId = screenSaverTimer()->timerId();
    Settings::instance()->setScreenSaverTime(1);
    m_navigation->processState();
    QVERIFY(m_log->contains(own("processState() start screensaver timer 1")));
    QCOMPARE(screenSaverTimer()->interval(), 600000);
    QCOMPARE(screenSaverTimer()->timerId(), timerId); // a new start would take a new one
}

void TestNavigationController::screenSaverTimeIsInMinutes_data()
{
    QTest::addColumn<uint>("minutes");
    QTest::addColumn<int>("interval");
    QTest::newRow("one") << 1u << 60000;
    QTest::newRow("an hour") << 60u << 3600000;
    QTest::newRow("the longest that a timer can do") << 35791u << 2147460000;
    QTest::newRow("one more") << 35792u << std::numeric_limits<int>::max();
    QTest::newRow("product that overflows") << 71583u << std::numeric_limits<int>::max();
    QTest::newRow("largest") << std::numeric_limits<uint>::max() << std::numeric_limits<int>::max();
}

void TestNavigationController::screenSaverTimeIsInMinutes()
{
    QFETCH(uint, minutes);
    QFETCH(int, interval);
    Settings::instance()->setScreenSaverTime(minutes);
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->processState();
    QVERIFY(
        m_log->contains(own("processState() start screensaver timer ") + QString::number(minutes)));
    QCOMPARE(screenSaverTimer()->interval(), interval);
}

void TestNavigationController::screenSaverTimeOfZeroComesAtOnce()
{
    Settings::instance()->setScreenSaverTime(0);
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->processState();
    QCOMPARE(m_signals->take(), QStringList());
    QTRY_COMPARE(screen(), int(Navigation::ClockScreen));
    QCOMPARE(m_signals->take(), setScreen({ 15 }));
}

void TestNavigationController::playingLeavesARunningTimerAlone()
{
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->processState();
    QVERIFY(screenSaverTimer()->isActive());
    Player::instance()->setRoonState(QStringLiteral("playing"));
    QVERIFY(screenSaverTimer()->isActive());
    forgetReports();
    m_log->clear();
    screenSaverTimer()->start(0);
    QTRY_VERIFY(!screenSaverTimer()->isActive());
    QCOMPARE(ownLines(), QStringList(own("screenSaverTimeout() playing")));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(idleReports(), QList<QByteArray>());
}

void TestNavigationController::screenSaverTimeoutCountsInSomeStates_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("blank");
    QTest::addColumn<bool>("counts");
    const QStringList counting { "paused", "stopped", "unknown", "init" };
    const QStringList others { "playing", "loading", "", "Paused", "STOPPED", "paused " };
    for (const QString &state : counting + others) {
        for (const bool blank : { false, true })
            QTest::addRow("'%s'%s", qUtf8Printable(state), blank ? ", dark panel" : "")
                << state << blank << counting.contains(state);
    }
}

void TestNavigationController::screenSaverTimeoutCountsInSomeStates()
{
    QFETCH(QString, state);
    QFETCH(bool, blank);
    QFETCH(bool, counts);
    Player::instance()->setRoonState(state);
    Settings::instance()->setBlankScreen(blank);
    makeNavigation(Navigation::PlayerScreen);
    forgetReports();
    m_log->clear();
    m_navigation->screenSaverTimeout();
    const int target = blank ? 14 : 15;
    QStringList lines { own("screenSaverTimeout() ") + state };
    if (counts) {
        lines.append({ own("idle() false"), own("screenSaverTimeout() enable screen saver") });
        if (blank)
            lines.append(own("blankScreen()"));
        lines.append(navigateLine(11, target));
    }
    QCOMPARE(ownLines(), lines);
    QCOMPARE(m_signals->take(), counts ? setScreen({ target }) : QStringList());
    QCOMPARE(m_panel->power(), counts && blank ? PowerOff : PowerOn);
    QCOMPARE(idleReports(), counts ? QList<QByteArray>({ "true" }) : QList<QByteArray>());
    QVERIFY(!screenSaverTimer()->isActive());
}

void TestNavigationController::resumeWakesTheDisplay_data()
{
    QTest::addColumn<QStringList>("states");
    QTest::addColumn<bool>("wakes");
    QTest::newRow("paused") << QStringList({ "paused", "playing" }) << true;
    QTest::newRow("stopped") << QStringList({ "stopped", "playing" }) << true;
    QTest::newRow("paused and loading") << QStringList({ "paused", "loading", "playing" }) << true;
    QTest::newRow("stopped and loading")
        << QStringList({ "stopped", "loading", "playing" }) << true;
    QTest::newRow("stopped and unknown")
        << QStringList({ "stopped", "unknown", "playing" }) << false;
    QTest::newRow("paused and empty") << QStringList({ "paused", "", "playing" }) << false;
    QTest::newRow("loading only") << QStringList({ "loading", "playing" }) << false;
    QTest::newRow("unknown only") << QStringList({ "unknown", "playing" }) << false;
    QTest::newRow("nothing before") << QStringList({ "playing" }) << false;
    QTest::newRow("other case") << QStringList({ "Paused", "loading", "playing" }) << false;
    QTest::newRow("playing in other case") << QStringList({ "paused", "Playing" }) << false;
    QTest::newRow("not playing yet") << QStringList({ "paused", "loading" }) << false;
}

void TestNavigationController::resumeWakesTheDisplay()
{
    QFETCH(QStringList, states);
    QFETCH(bool, wakes);
    for (const int from : { 14, 15 }) {
        Player::instance()->setRoonState(QStringLiteral("init"));
        makeNavigation(from);
        m_navigation->idle();
        ScreenController::instance()->exec_backlight_off();
        forgetReports();
        for (const QString &state : states)
            Player::instance()->setRoonState(state);
        QCOMPARE(m_signals->take(), wakes ? setScreen({ 11 }) : QStringList());
        QCOMPARE(m_panel->power(), wakes ? PowerOn : PowerOff);
        QCOMPARE(idleReports(), wakes ? QList<QByteArray>({ "false" }) : QList<QByteArray>());
    }
}

void TestNavigationController::wakeIsKeptUntilAResumeThatCounts()
{
    makeNavigation(Navigation::ClockScreen);
    for (const char *state : { "stopped", "unknown", "playing" })
        Player::instance()->setRoonState(QString::fromLatin1(state));
    QCOMPARE(m_signals->take(), QStringList());
    for (const char *state : { "loading", "playing" })
        Player::instance()->setRoonState(QString::fromLatin1(state));
    QCOMPARE(m_signals->take(), setScreen({ 11 }));

    // Then it is used up.
    m_navigation->navigate(Navigation::ClockScreen);
    m_signals->take();
    for (const char *state : { "loading", "playing" })
        Player::instance()->setRoonState(QString::fromLatin1(state));
    QCOMPARE(m_signals->take(), QStringList());
}

void TestNavigationController::resumeOnThePlayerOnlyEndsTheScreenSaverDelay()
{
    makeNavigation(Navigation::PlayerScreen);
    Player::instance()->setRoonState(QStringLiteral("stopped"));
    QVERIFY(screenSaverTimer()->isActive());
    m_navigation->idle();
    ScreenController::instance()->exec_backlight_off();
    forgetReports();
    m_log->clear();
    Player::instance()->setRoonState(QStringLiteral("playing"));
    QVERIFY(!screenSaverTimer()->isActive());
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(m_panel->power(), PowerOn);
    QCOMPARE(idleReports(), QList<QByteArray>({ "false" }));
    const QStringList lines = m_log->take();
    const int busy = lines.indexOf(own("busy() true"));
    const int on = lines.indexOf(QStringLiteral("info: ScreenController::exec_backlight_on()"));
    const int zone = lines.indexOf(ZoneFoundLine);
    QVERIFY2(0 <= busy && busy < on && on < zone, qPrintable(lines.join(QLatin1Char('\n'))));
}

void TestNavigationController::blankScreenCutsTheBacklightFirst()
{
    makeNavigation(Navigation::ClockScreen);
    QByteArray power;
    connect(m_navigation.get(), &Navigation::setScreen, this, [&] { power = m_panel->power(); });
    m_navigation->blankScreen();
    QCOMPARE(power, PowerOff);
    QCOMPARE(m_log->take().mid(0, 3),
        QStringList(
            { own("blankScreen()"), QStringLiteral("debug: ScreenController::exec_backlight_off()"),
                navigateLine(15, 14) }));
    QCOMPARE(m_signals->take(), setScreen({ 14 }));
    QCOMPARE(m_panel->brightness(), NormalBrightness);
}

void TestNavigationController::enableScreenGoesNowhere()
{
    makeNavigation(Navigation::ClockScreen);
    ScreenController::instance()->exec_backlight_off();
    m_log->clear();
    m_navigation->enableScreen();
    QCOMPARE(m_log->take(),
        QStringList({ QStringLiteral("info: NavigationController::enableScreen()"),
            QStringLiteral("info: ScreenController::exec_backlight_on()"),
            QStringLiteral("info: ScreenController::setDefaultBrightness()"),
            QStringLiteral("info: ScreenController::exec_brightness() 100") }));
    QCOMPARE(m_signals->take(), QStringList());
    QCOMPARE(m_panel->power(), PowerOn);
    QCOMPARE(m_panel->brightness(), NormalBrightness);
    QCOMPARE(screen(), int(Navigation::ClockScreen));
}

void TestNavigationController::leaveScreenSaverLogsItsSteps()
{
    QFETCH(Situation, situation);
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->blankScreen();
    m_navigation->idle();
    m_navigation->processState(); // its lines about changes are over then
    become(situation);
    Player::instance()->setRoonState(QStringLiteral("playing"));
    forgetReports();
    m_log->clear();
    m_signals->take();

    m_navigation->leaveScreenSaver();
    const QString leave = QStringLiteral("info: NavigationController::leaveScreenSaver()");
    const QString enable = QStringLiteral("info: NavigationController::enableScreen()");
    const auto now = [](int screen) {
        return QStringLiteral("info: NavigationController::processState() screen: %1").arg(screen);
    };
    if (isFailure(situation)) {
        QCOMPARE(ownLines(),
            QStringList({ leave, failureLine(situation), navigateLine(14, 13), enable,
                own("busy() true"), now(13), failureLine(situation), own("idle() false") }));
        QCOMPARE(m_signals->take(), setScreen({ 13 }));
        QCOMPARE(idleReports(), QList<QByteArray>({ "false", "true" }));
    } else if (situation == ZoneFound) {
        QCOMPARE(ownLines(),
            QStringList({ leave, navigateLine(14, 11), enable, own("busy() true"), now(11),
                ZoneFoundLine }));
        QCOMPARE(m_signals->take(), setScreen({ 11 }));
        QCOMPARE(idleReports(), QList<QByteArray>({ "false" }));
    } else {
        QCOMPARE(ownLines(),
            QStringList({ leave, navigateLine(14, 11), enable, own("busy() true"), now(11) })
                + ZoneMissingLines + QStringList({ own("idle() false"), navigateLine(11, 16) }));
        QCOMPARE(m_signals->take(), setScreen({ 11, 16 }));
        QCOMPARE(idleReports(), QList<QByteArray>({ "false", "true" }));
    }
    QCOMPARE(m_panel->power(), PowerOn);
    QCOMPARE(m_panel->brightness(), NormalBrightness);
}

void TestNavigationController::settingsAreEnteredAndLeft_data()
{
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<QList<int>>("screens");
    QTest::newRow("no remote service") << NoRemoteService << QList<int>({ 13 });
    QTest::newRow("no core") << NoCore << QList<int>({ 13 });
    QTest::newRow("neither") << NeitherServiceNorCore << QList<int>({ 13 });
    QTest::newRow("zone found") << ZoneFound << QList<int>({ 11 });
    QTest::newRow("zone missing") << ZoneMissing << QList<int>({ 11, 16 });
}

void TestNavigationController::settingsAreEnteredAndLeft()
{
    QFETCH(Situation, situation);
    QFETCH(QList<int>, screens);
    makeNavigation(Navigation::PlayerScreen);
    m_navigation->clickedGotoSettings();
    QCOMPARE(ownLines(), QStringList({ own("clickedGotoSettings()"), navigateLine(11, 12) }));
    QCOMPARE(m_signals->take(), setScreen({ 12 }));

    become(situation);
    m_navigation->clickedLeaveSettings();
    QStringList expected { own("clickedLeaveSettings()") };
    if (isFailure(situation))
        expected.append(failureLine(situation));
    expected.append(navigateLine(12, screens.first()));
    QCOMPARE(ownLines().mid(0, expected.size()), expected);
    QStringList entries;
    for (const int screen : screens)
        entries += setScreen({ screen });
    QCOMPARE(m_signals->take(), entries);
}

void TestNavigationController::cycleTable_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<bool>("blank");
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<int>("to");
    // By the current screen: the next one, and the next one when the clock is left out.
    const QMap<int, QPair<int, int>> table { { 10, { 0, 0 } }, { 11, { 15, 14 } }, { 12, { 0, 0 } },
        { 13, { 15, 14 } }, { 14, { 11, 11 } }, { 15, { 14, 14 } }, { 16, { 15, 14 } },
        { 17, { 0, 0 } } };
    for (auto row = table.begin(); row != table.end(); ++row) {
        for (const Situation situation : { ZoneFound, NoCore }) {
            for (const bool blank : { false, true }) {
                int to = blank ? row->second : row->first;
                if (to == 11 && situation == NoCore)
                    to = 13;
                QTest::addRow("%s, %s%s", qUtf8Printable(ScreenNames.value(row.key())),
                    SituationNames.value(situation), blank ? ", no clock" : "")
                    << row.key() << blank << situation << to;
            }
        }
    }
}

void TestNavigationController::cycleTable()
{
    QFETCH(int, from);
    QFETCH(bool, blank);
    QFETCH(Situation, situation);
    QFETCH(int, to);
    makeNavigation(from);
    become(situation);
    Settings::instance()->setBlankScreen(blank);
    if (from == Navigation::ScreenSaverScreen)
        ScreenController::instance()->exec_backlight_off();
    m_log->clear();
    m_navigation->cycleDisplayOutput();

    QCOMPARE(m_signals->take(), to == 0 ? QStringList() : setScreen({ to }));
    QCOMPARE(m_panel->power(), to == 14 ? PowerOff : PowerOn);
    const QStringList lines = ownLines();
    const QString entry = own("cycleDisplayOutput(): ") + QString::number(from);
    if (to == 0) {
        QCOMPARE(lines, QStringList(entry));
    } else if (to == 15) {
        QCOMPARE(lines, QStringList({ entry, navigateLine(from, 15) }));
    } else if (to == 14) {
        QCOMPARE(lines, QStringList({ entry, own("blankScreen()"), navigateLine(from, 14) }));
    } else {
        QCOMPARE(lines.mid(0, 2),
            QStringList(
                { entry, QStringLiteral("info: NavigationController::leaveScreenSaver()") }));
    }
}

void TestNavigationController::wholeCycle()
{
    makeNavigation(Navigation::PlayerScreen);
    for (int touch = 0; touch < 3; ++touch)
        m_navigation->cycleDisplayOutput();
    QCOMPARE(m_signals->take(), setScreen({ 15, 14, 11 }));
    Settings::instance()->setBlankScreen(true);
    for (int touch = 0; touch < 2; ++touch)
        m_navigation->cycleDisplayOutput();
    QCOMPARE(m_signals->take(), setScreen({ 14, 11 }));
}

void TestNavigationController::transitionTable_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QByteArray>("event"); // a slot, or "zone message" for an evaluation
    QTest::addColumn<Situation>("situation");
    QTest::addColumn<bool>("updating");
    QTest::addColumn<bool>("blank");
    QTest::addColumn<int>("to");
    QTest::addColumn<QByteArray>(
        "report"); // what the display is said to be: idle "true" or "false"
    QTest::addColumn<bool>("power");

    const auto row = [](const char *name, int from, const char *event, Situation situation,
                         bool updating, bool blank, int to, const char *report, bool power) {
        QTest::newRow(name) << from << QByteArray(event) << situation << updating << blank << to
                            << QByteArray(report) << power;
    };
    row("welcome ends", 10, "welcomeTimeout", ZoneFound, false, false, 11, "false", true);
    row("welcome ends, failure", 10, "welcomeTimeout", NoCore, false, false, 13, "true", true);
    row("player, failure", 11, "updateState", NoCore, false, false, 13, "true", true);
    row("zone not found, failure", 16, "updateState", NoCore, false, false, 13, "true", true);
    row("connection failure, zone found", 13, "updateState", ZoneFound, false, false, 11, "false",
        true);
    row("zone not found, zone found", 16, "updateState", ZoneFound, false, false, 11, "false",
        true);
    row("player, zone missing", 11, "updateState", ZoneMissing, false, false, 16, "true", true);
    row("connection failure, zone missing", 13, "updateState", ZoneMissing, false, false, 16,
        "true", true);
    for (int from = FirstScreen; from < LastScreen; ++from) {
        row(qPrintable(ScreenNames.value(from) + QStringLiteral(", update")), from, "updateState",
            ZoneFound, true, false, 17, "false", true);
    }
    for (const int from : { 11, 13, 16 }) {
        const QString name = ScreenNames.value(from);
        const Situation situation = from == 11 ? ZoneFound : from == 13 ? NoCore : ZoneMissing;
        row(qPrintable(name + ", screen saver"), from, "screenSaverTimeout", situation, false,
            false, 15, "true", true);
        row(qPrintable(name + ", dark screen saver"), from, "screenSaverTimeout", situation, false,
            true, 14, "true", false);
        row(qPrintable(name + ", next display mode"), from, "cycleDisplayOutput", situation, false,
            false, 15, "", true);
        row(qPrintable(name + ", next display mode, dark"), from, "cycleDisplayOutput", situation,
            false, true, 14, "", false);
    }
    row("clock, next display mode", 15, "cycleDisplayOutput", ZoneFound, false, false, 14, "",
        false);
    row("clock, touch", 15, "blankScreen", ZoneFound, false, false, 14, "", false);
    row("screen saver, next display mode", 14, "cycleDisplayOutput", ZoneFound, false, false, 11,
        "false", true);
    row("screen saver, next display mode, failure", 14, "leaveScreenSaver", NoCore, false, false,
        13, "true", true);
    row("screen saver, touch", 14, "leaveScreenSaver", ZoneFound, false, false, 11, "false", true);
    row("player, settings", 11, "clickedGotoSettings", ZoneFound, false, false, 12, "", true);
    row("settings, leave", 12, "clickedLeaveSettings", ZoneFound, false, false, 11, "", true);
    row("settings, leave, failure", 12, "clickedLeaveSettings", NoCore, false, false, 13, "true",
        true);
}

void TestNavigationController::transitionTable()
{
    QFETCH(int, from);
    QFETCH(QByteArray, event);
    QFETCH(Situation, situation);
    QFETCH(bool, updating);
    QFETCH(bool, blank);
    QFETCH(int, to);
    QFETCH(QByteArray, report);
    QFETCH(bool, power);
    Settings::instance()->setBlankScreen(blank);
    // From either state of the report, its last value is the one in the table.
    for (const bool wasIdle : { false, true }) {
        become(situation, updating);
        makeNavigation(from);
        wasIdle ? m_navigation->idle() : m_navigation->busy();
        if (from == Navigation::ScreenSaverScreen && !updating)
            ScreenController::instance()->exec_backlight_off();
        else
            ScreenController::instance()->exec_backlight_on();
        const QByteArray before = wasIdle ? "true" : "false";
        forgetReports();
        QVERIFY(QMetaObject::invokeMethod(m_navigation.get(), event.constData()));
        QCOMPARE(m_signals->take(), setScreen({ to }));
        QCOMPARE(m_panel->power(), power ? PowerOn : PowerOff);
        QCOMPARE(m_panel->brightness(), to == 15 ? ClockBrightness : NormalBrightness);
        const QList<QByteArray> reports = idleReports();
        QCOMPARE(reports.isEmpty() ? before : reports.last(), report.isEmpty() ? before : report);
        m_log->clear();
    }
}

void TestNavigationController::documentedDecisions_data()
{
    QTest::addColumn<QString>("situation");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("cell");
    const QList<QStringList> table = markdownTable(
        QStringLiteral(TOUCHUI_CHECKOUT "/ARCHITECTURE.md"), QStringLiteral("Situation"));
    QCOMPARE(table.size(), 5);
    const QStringList &heads = table.first();
    QCOMPARE(heads.size(), 1 + ScreenNames.size());
    for (const QString &head : heads.mid(1)) { // a number, and words that are in the page's name
        const QString name = ScreenNames.value(head.section(QLatin1Char(' '), 0, 0).toInt());
        const QString words = head.section(QLatin1Char(' '), 1).remove(QLatin1Char(' '));
        QVERIFY2(name.contains(words, Qt::CaseInsensitive), qPrintable(head));
    }
    for (const QStringList &row : table.mid(1)) {
        for (int column = 1; column < heads.size(); ++column)
            QTest::addRow("%s, %s", qUtf8Printable(row.value(0)), qUtf8Printable(heads.at(column)))
                << row.value(0) << heads.at(column).section(QLatin1Char(' '), 0, 0).toInt()
                << row.value(column);
    }
}

void TestNavigationController::documentedDecisions()
{
    QFETCH(QString, situation);
    QFETCH(int, from);
    QFETCH(QString, cell);
    const QMap<QString, QList<Situation>> meanings {
        { QStringLiteral("failure"), { NoRemoteService, NoCore, NeitherServiceNorCore } },
        { QStringLiteral("zone found"), { ZoneFound } },
        { QStringLiteral("zone missing"), { ZoneMissing } },
        { QStringLiteral("any, while an update is installed"), SituationNames.keys() },
    };
    const bool updating = situation.contains(QLatin1String("update"));
    QVERIFY2(meanings.contains(situation), qPrintable(situation));
    for (const Situation meaning : meanings.value(situation)) {
        for (const bool resumed : { false, true }) {
            const QString next = cell == QLatin1String("wake")
                ? QStringLiteral("%1").arg(resumed ? 11 : from)
                : cell == QStringLiteral("—") ? QString::number(from)
                                              : cell;
            become(ZoneFound);
            Player::instance()->setRoonState(QStringLiteral("init"));
            makeNavigation();
            Player::instance()->setRoonState(QStringLiteral("paused"));
            m_navigation->navigate(static_cast<Navigation::Screen>(from));
            become(meaning, updating);
            if (resumed)
                Player::instance()->setRoonState(QStringLiteral("playing"));
            else
                m_navigation->updateState();
            QCOMPARE(QString::number(screen()), next);
            m_log->clear();
        }
    }
}

void TestNavigationController::documentedEvents_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QStringList>("next"); // as a rule, in a failure, without the clock
    const QList<QStringList> table = markdownTable(
        QStringLiteral(TOUCHUI_CHECKOUT "/ARCHITECTURE.md"), QStringLiteral("Screen"));
    QVERIFY(table.size() > 1);
    for (const QStringList &row : table.mid(1)) {
        const QString slot = row.value(1).section(QLatin1Char('`'), 1, 1).remove("()");
        for (const QString &from : row.first().split(QStringLiteral(", ")))
            QTest::addRow("%s, %s", qUtf8Printable(from), qUtf8Printable(slot))
                << from << slot << QStringList(row.mid(2));
    }
}

void TestNavigationController::documentedEvents()
{
    QFETCH(QString, from);
    QFETCH(QString, slot);
    QFETCH(QStringList, next);
    QVERIFY2(ScreenNames.contains(from.toInt()), qPrintable(from));
    QStringList seen;
    for (const auto &[situation, withoutClock] :
        { qMakePair(ZoneFound, false), qMakePair(NoCore, false), qMakePair(ZoneFound, true) }) {
        become(situation);
        Settings::instance()->setBlankScreen(withoutClock);
        makeNavigation(from.toInt());
        QVERIFY2(QMetaObject::invokeMethod(m_navigation.get(), slot.toLatin1().constData()),
            qPrintable(slot));
        seen.append(QString::number(screen()));
        m_log->clear();
    }
    QCOMPARE(seen, next);
}

QTEST_GUILESS_MAIN(TestNavigationController)
#include "tst_navigationcontroller.moc"
