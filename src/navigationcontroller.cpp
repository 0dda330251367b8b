// SPDX-License-Identifier: GPL-3.0-or-later
#include "navigationcontroller.h"

#include "brokertopics.h"
#include "mqtt.h"
#include "player.h"
#include "roon.h"
#include "roonzones.h"
#include "screencontroller.h"
#include "settings.h"
#include "velunor_state.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>
#include <QTimer>

#include <limits>

namespace {

constexpr int WelcomeDelayMs = 5000;
constexpr qint64 MsPerMinute = 60000;

bool isPausedOrStopped(const QString &roonState)
{
    return roonState == QLatin1String("paused") || roonState == QLatin1String("stopped");
}

} // namespace

NavigationController *NavigationController::instance()
{
    static NavigationController *const theInstance = new NavigationController;
    return theInstance;
}

NavigationController::NavigationController(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "NavigationController::constructor in thread "
                                 << QThread::currentThreadId();

    m_screens.insert(WelcomeScreen, QStringLiteral("Welcome"));
    // Deliberate: two branches with the same page; each width may get its own layout one day.
    const uint width = ScreenController::instance()->width();
    if (width == 800) {
        m_screens.insert(PlayerScreen, QStringLiteral("RoonPlayerWindow2"));
    } else if (width == 1280) {
        m_screens.insert(PlayerScreen, QStringLiteral("RoonPlayerWindow2"));
    } else {
        qCritical() << "unknown screen dimensions!";
        QCoreApplication::quit();
    }
    m_screens.insert(SettingsScreen, QStringLiteral("SettingsWindow"));
    m_screens.insert(ConnectionFailureScreen, QStringLiteral("RoonConnectionFailure"));
    m_screens.insert(ScreenSaverScreen, QStringLiteral("ScreenSaver"));
    m_screens.insert(ClockScreen, QStringLiteral("Clock"));
    m_screens.insert(ZoneNotFoundScreen, QStringLiteral("RoonZoneNotFound"));
    m_screens.insert(UpdateInstallingScreen, QStringLiteral("UpdateInstalling"));

    auto *const welcomeTimer = new QTimer(this);
    welcomeTimer->setSingleShot(true);
    welcomeTimer->setInterval(WelcomeDelayMs);
    connect(welcomeTimer, &QTimer::timeout, this, &NavigationController::welcomeTimeout);
    welcomeTimer->start();

    const Player *const player = Player::instance();
    connect(player, &Player::remoteConnectionChanged, this,
        &NavigationController::remoteConnectionChanged);
    connect(Roon::instance(), &Roon::coreDetectionChanged, this,
        &NavigationController::remoteConnectionChanged);
    connect(player, &Player::roonStateChanged, this, &NavigationController::stateChanged);
    connect(VelunorState::instance(), &VelunorState::stateUpdateInstallingChanged, this,
        &NavigationController::updateState);

    m_screenSaverTimer = new QTimer(this);
    m_screenSaverTimer->setSingleShot(true);
    connect(m_screenSaverTimer, &QTimer::timeout, this, &NavigationController::screenSaverTimeout);

    ScreenController::instance()->exec_backlight_on();
    busy();
}

bool NavigationController::communicationFailure() const
{
    const bool remoteConnected = Player::instance()->remoteConnected();
    const bool coreDetected = Roon::instance()->coreDetected();
    if (remoteConnected && coreDetected)
        return false;
    // Deliberate: the spelling of the method in this line is what log filters know.
    qWarning().noquote().nospace()
        << "NavigationController::communcationFailure() problem detected! (remote connected: "
        << remoteConnected << "; core detected: " << coreDetected << ")";
    return true;
}

bool NavigationController::zoneFound() const
{
    const QString zone = Player::instance()->zone();
    qDebug().noquote().nospace() << "NavigationController::zoneFound() called with controlled zone "
                                 << zone;
    if (!RoonZones::instance()->findZoneByDisplayName(zone).isEmpty())
        return true;
    qDebug() << "NavigationController::zoneFound(): NO";
    return false;
}

void NavigationController::navigate(Screen target)
{
    qDebug().noquote().nospace() << "NavigationController::navigate() to " << int(target)
                                 << ", current " << int(m_screen);
    if (target == m_screen)
        return;
    const auto name = m_screens.constFind(target);
    if (name == m_screens.constEnd()) {
        qCritical().noquote().nospace()
            << "NavigationController:navigate() unknown screen " << int(target);
        return;
    }
    m_screen = target;
    if (target == ClockScreen)
        ScreenController::instance()->setClockBrightness();
    else
        ScreenController::instance()->setDefaultBrightness();
    emit setScreen(name.value());
}

void NavigationController::screenChanged(QString name)
{
    qDebug().noquote().nospace() << "NavigationController::screenChanged() " << name;
    const QList<Screen> named = m_screens.keys(name);
    if (named.isEmpty()) {
        qWarning().noquote().nospace()
            << "NavigationController::screenChanged() unknown screen: " << name;
        return;
    }
    m_screen = named.first();
    // Queued, so that the scene's own event ends first.
    QMetaObject::invokeMethod(this, &NavigationController::processState, Qt::QueuedConnection);
}

void NavigationController::idle()
{
    qDebug().noquote().nospace() << "NavigationController::idle() " << m_displayIdle;
    setIdle(true);
}

void NavigationController::busy()
{
    qDebug().noquote().nospace() << "NavigationController::busy() " << m_displayIdle;
    setIdle(false);
}

void NavigationController::setIdle(bool idle)
{
    if (m_displayIdle == idle)
        return;
    m_displayIdle = idle;
    Mqtt::instance()->publish(BrokerTopics::displayIdle(),
        idle ? QByteArrayLiteral("true") : QByteArrayLiteral("false"), false, 1);
}

void NavigationController::welcomeTimeout()
{
    qDebug() << "NavigationController::welcomeTimeout()";
    if (!communicationFailure()) {
        busy();
        navigate(PlayerScreen);
    } else {
        idle();
        navigate(ConnectionFailureScreen);
    }
}

void NavigationController::stateChanged()
{
    const QString state = Player::instance()->roonState();
    qDebug().noquote().nospace() << "NavigationController::stateChanged() " << state;
    if (isPausedOrStopped(state))
        m_wakeOnResume = true;
    processState();
}

void NavigationController::remoteConnectionChanged()
{
    qDebug() << "NavigationController::remoteConnectionChanged()";
    processState();
}

void NavigationController::updateState()
{
    qDebug() << "NavigationController::updateState()";
    processState();
}

void NavigationController::processState()
{
    logChanges();
    armScreenSaver();
    const bool resumed = wakeOnResume();

    if (communicationFailure()) {
        idle();
        if (m_screen == PlayerScreen || m_screen == ZoneNotFoundScreen) {
            navigateUnlessUpdating(ConnectionFailureScreen);
            return;
        }
    } else if (zoneFound()) {
        if (m_screen == ConnectionFailureScreen || m_screen == ZoneNotFoundScreen) {
            busy();
            navigateUnlessUpdating(PlayerScreen);
            return;
        }
    } else {
        idle();
        if (m_screen == PlayerScreen || m_screen == ConnectionFailureScreen) {
            navigateUnlessUpdating(ZoneNotFoundScreen);
            return;
        }
    }

    if (VelunorState::instance()->updateInstalling())
        showUpdate();
    else if (resumed)
        navigate(PlayerScreen);
}

void NavigationController::logChanges()
{
    const Player *const player = Player::instance();
    const QString state = player->roonState();
    if (m_loggedState != state) {
        qInfo().noquote().nospace() << "NavigationController::processState() " << state
                                    << ", previous " << player->previousRoonState();
        m_loggedState = state;
    }
    if (m_loggedScreen != m_screen) {
        m_loggedScreen = m_screen;
        qInfo().noquote().nospace()
            << "NavigationController::processState() screen: " << m_loggedScreen;
    }
    const QStringList zones = RoonZones::instance()->availableNames();
    if (m_loggedZones != zones) {
        m_loggedZones = zones;
        qInfo().noquote().nospace() << "NavigationController::processState() available zones: ("
                                    << zones.join(QStringLiteral(", ")) << ')';
    }
}

void NavigationController::armScreenSaver()
{
    if (Player::instance()->roonState() == QLatin1String("playing"))
        return;
    if (m_screen != PlayerScreen && m_screen != ConnectionFailureScreen
        && m_screen != ZoneNotFoundScreen)
        return;
    const uint minutes = Settings::instance()->screenSaverTime();
    qDebug().noquote().nospace() << "NavigationController::processState() start screensaver timer "
                                 << minutes;
    // A running timer is left alone: the delay counts from when it was first armed.
    if (m_screenSaverTimer->isActive())
        return;
    const qint64 interval = minutes * MsPerMinute;
    m_screenSaverTimer->start(
        static_cast<int>(qMin<qint64>(interval, std::numeric_limits<int>::max())));
}

/** Wakes the display when playback goes on. Returns whether that calls for the player screen. */
bool NavigationController::wakeOnResume()
{
    const Player *const player = Player::instance();
    const QString previous = player->previousRoonState();
    if (!m_wakeOnResume || player->roonState() != QLatin1String("playing"))
        return false;
    if (!isPausedOrStopped(previous) && previous != QLatin1String("loading"))
        return false;
    m_wakeOnResume = false;
    busy();
    m_screenSaverTimer->stop();
    const bool toPlayer = m_screen == ScreenSaverScreen || m_screen == ClockScreen;
    ScreenController::instance()->exec_backlight_on();
    return toPlayer;
}

void NavigationController::navigateUnlessUpdating(Screen target)
{
    if (VelunorState::instance()->updateInstalling())
        showUpdate();
    else
        navigate(target);
}

void NavigationController::showUpdate()
{
    busy();
    navigate(UpdateInstallingScreen);
}

void NavigationController::screenSaverTimeout()
{
    const QString state = Player::instance()->roonState();
    qDebug().noquote().nospace() << "NavigationController::screenSaverTimeout() " << state;
    if (!isPausedOrStopped(state) && state != QLatin1String("unknown")
        && state != QLatin1String("init"))
        return;
    idle();
    qDebug() << "NavigationController::screenSaverTimeout() enable screen saver";
    if (Settings::instance()->blankScreen())
        blankScreen();
    else
        navigate(ClockScreen);
}

void NavigationController::blankScreen()
{
    qDebug() << "NavigationController::blankScreen()";
    ScreenController::instance()->exec_backlight_off();
    navigate(ScreenSaverScreen);
}

void NavigationController::enableScreen()
{
    qInfo() << "NavigationController::enableScreen()";
    ScreenController::instance()->exec_backlight_on();
    ScreenController::instance()->setDefaultBrightness();
}

void NavigationController::leaveScreenSaver()
{
    qInfo() << "NavigationController::leaveScreenSaver()";
    navigate(communicationFailure() ? ConnectionFailureScreen : PlayerScreen);
    enableScreen();
    busy();
    processState();
}

void NavigationController::clickedGotoSettings()
{
    qDebug() << "NavigationController::clickedGotoSettings()";
    navigate(SettingsScreen);
}

void NavigationController::clickedLeaveSettings()
{
    qDebug() << "NavigationController::clickedLeaveSettings()";
    navigate(communicationFailure() ? ConnectionFailureScreen : PlayerScreen);
    processState();
}

void NavigationController::cycleDisplayOutput()
{
    qDebug().noquote().nospace() << "NavigationController::cycleDisplayOutput(): " << int(m_screen);
    switch (m_screen) {
    case PlayerScreen:
    case ConnectionFailureScreen:
    case ZoneNotFoundScreen:
        if (Settings::instance()->blankScreen())
            blankScreen();
        else
            navigate(ClockScreen);
        break;
    case ClockScreen:
        blankScreen();
        break;
    case ScreenSaverScreen:
        leaveScreenSaver();
        break;
    case WelcomeScreen:
    case SettingsScreen:
    case UpdateInstallingScreen:
        break;
    }
}
