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
        WelcomeScreen = 10,
        PlayerScreen,
        SettingsScreen,
        ConnectionFailureScreen,
        ScreenSaverScreen,
        ClockScreen,
        ZoneNotFoundScreen,
        UpdateInstallingScreen,
    };

    static NavigationController *instance();

    explicit NavigationController(QObject *parent = nullptr);

    /** Goes to @p target: brightness first, then setScreen(). Nothing happens when it is the
     * current screen. */
    void navigate(Screen target);
    /** Evaluates the situation and goes where it demands. */
    void processState();
    /** Whether the remote-control service or the core is missing; logged as a warning if so. */
    bool communicationFailure() const;
    /** Whether the zone that the player shows can be controlled. */
    bool zoneFound() const;
    /** Reports the display as idle, unless that was reported last. */
    void idle();
    /** Reports the display as in use, unless that was reported last. */
    void busy();

signals:
    /** The page to show. */
    void setScreen(QString newScreen);
    // Deliberate: the next three are declared for the scene, never emitted.
    void radioButtonPressed(bool on);
    void shuffleButtonPressed(bool on);
    void loopButtonPressed(QString mode);

public slots:
    void remoteConnectionChanged();
    void stateChanged();
    void clickedGotoSettings();
    void clickedLeaveSettings();
    void leaveScreenSaver();
    /** Next display mode: a normal screen, the clock (unless it is configured away), the dark
     * panel, back. */
    void cycleDisplayOutput();
    /** Cuts the backlight and goes to the screen saver. */
    void blankScreen();
    /** Powers the backlight and applies the normal brightness; goes nowhere. */
    void enableScreen();
    /** The scene's report that the page @p name is on view. */
    void screenChanged(QString name);
    void welcomeTimeout();
    void screenSaverTimeout();
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
