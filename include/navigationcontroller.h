// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

class QTimer;

/**
 * Which of the full-screen pages is shown: the screen state machine of the display.
 *
 * All decisions are taken in processState(), which looks at the whole situation anew each time
 * something has changed. It proposes a screen with setScreen(); the scene answers with
 * screenChanged() once the page is on view. Also runs the welcome delay and the screen-saver delay,
 * switches backlight and brightness with the screen, and reports to the broker whether the display
 * is idle. Main thread only.
 */
class NavigationController : public QObject {
    Q_OBJECT

public:
    /** The screens; their order counts in no decision, their numbers show in the log. */
    enum Screen : int {
        WelcomeScreen = 10,      ///< the first five seconds
        PlayerScreen,            ///< what the controlled zone is playing
        SettingsScreen,          ///< the two brightness levels
        ConnectionFailureScreen, ///< the remote-control service or the core is missing
        ScreenSaverScreen,       ///< black, as a rule with the backlight off
        ClockScreen,             ///< time and date, in a brightness of its own
        ZoneNotFoundScreen,      ///< the core has no zone of the wanted name
        UpdateInstallingScreen,  ///< an update is being installed
    };

    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static NavigationController *instance();

    /**
     * Starts the welcome delay, powers the backlight and reports the display as in use. A display
     * that is neither 800 nor 1280 pixels wide has no player page; that is logged as critical.
     */
    explicit NavigationController(QObject *parent = nullptr);

    /**
     * Goes to @p target: brightness first, then setScreen(). Nothing happens when it is the current
     * screen; a screen without a page is logged as critical and not gone to.
     */
    void navigate(Screen target);
    /** Looks at the situation and goes to the screen that it calls for, if that is another one. */
    void processState();
    /** Whether the remote-control service or the core is missing; logged as a warning if so. */
    bool communicationFailure() const;
    /** Whether a zone of the name that the player shows is available, alone or in a group. */
    bool zoneFound() const;
    /** Reports the display as idle to the broker, unless that was reported last. */
    void idle();
    /** Reports the display as in use to the broker, unless that was reported last. */
    void busy();

signals:
    /** The page to show: the name of its file, without ".qml". Not emitted for the current one. */
    void setScreen(QString newScreen);

    // Deliberate: the next three are declared for the scene, never emitted.
    void radioButtonPressed(bool on);
    void shuffleButtonPressed(bool on);
    void loopButtonPressed(QString mode);

public slots:
    /** The broker, the remote-control service or the core has come or gone: processState(). */
    void remoteConnectionChanged();
    /** The player's state has changed: processState(). A pause or stop lets playing wake later. */
    void stateChanged();
    /** Goes to the settings. */
    void clickedGotoSettings();
    /** Goes back to the player, or to the connection failure if there is one. */
    void clickedLeaveSettings();
    /** The same from the screen saver; also powers the backlight and applies its brightness. */
    void leaveScreenSaver();
    /**
     * Next display mode: from player, failure or missing zone to the clock (unless it is switched
     * off in the settings), to the dark panel, and back. Nothing happens on the other screens.
     */
    void cycleDisplayOutput();
    /** Switches the backlight off and goes to the screen saver. */
    void blankScreen();
    /** Powers the backlight and applies the normal brightness; goes nowhere. */
    void enableScreen();
    /** The scene's report that the page @p name is on view; an unknown name is only logged. */
    void screenChanged(QString name);
    /** The welcome delay is over: goes to the player, or to the connection failure. */
    void welcomeTimeout();
    /**
     * The screen-saver delay is over: goes to the clock or the dark panel, from whichever screen,
     * if the player's state is "paused", "stopped", "unknown" or "init".
     */
    void screenSaverTimeout();
    /** A zone message has been handled, or an update begins or ends: processState(). */
    void updateState();

private:
    void logChanges();
    void armScreenSaver();
    bool wakeOnResume();
    void navigateUnlessUpdating(Screen target);
    void showUpdate();
    void setIdle(bool idle);

    Screen m_screen = WelcomeScreen;
    QMap<Screen, QString> m_screens;
    QTimer *m_screenSaverTimer = nullptr;
    bool m_displayIdle = true;
    bool m_wakeOnResume = false; // set when playback pauses or stops, used up when it goes on

    // What logChanges() wrote last.
    QString m_loggedState;
    int m_loggedScreen = -1; // no screen
    QStringList m_loggedZones;
};
