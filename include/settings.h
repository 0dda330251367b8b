// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSettings>
#include <QString>

/**
 * The display's user settings.
 *
 * The two brightness values and the default player screen are read from the ini file in the data
 * directory, once; only the two brightness values are ever written back. All else arrives by
 * messages and lives in memory. The scene, the player and the display controller listen. Setters
 * notify only on a change, except where noted, and never write the file. Main thread only.
 */
class Settings : public QObject {
    Q_OBJECT
    Q_PROPERTY(uint brightness READ brightness WRITE setLcdBrightness NOTIFY lcdBrightnessChanged)
    Q_PROPERTY(uint clockBrightness READ clockBrightness WRITE setLcdClockBrightness NOTIFY
            lcdClockBrightnessChanged)
    Q_PROPERTY(
        QString clockColor READ clockColor WRITE setLcdClockColor NOTIFY lcdClockColorChanged)
    Q_PROPERTY(QString customClockColor READ customClockColor WRITE setLcdCustomClockColor)
    Q_PROPERTY(QString clockColorRGB READ clockColorRGB NOTIFY lcdClockColorChanged)
    Q_PROPERTY(bool timeFormat READ timeFormat WRITE setTimeFormat NOTIFY timeFormatChanged)
    Q_PROPERTY(bool scrolling READ scrolling WRITE setScrolling NOTIFY scrollingChanged)
    Q_PROPERTY(bool blankScreen READ blankScreen WRITE setBlankScreen NOTIFY blankScreenChanged)
    Q_PROPERTY(uint defaultPlayerScreen READ defaultPlayerScreen WRITE setDefaultPlayerScreen)
    Q_PROPERTY(uint screenSaverTime READ screenSaverTime WRITE setScreenSaverTime NOTIFY
            screenSaverTimeChanged)
    Q_PROPERTY(bool hidePowerButton READ hidePowerButton WRITE setHidePowerButton NOTIFY
            hidePowerButtonChanged)
    Q_PROPERTY(bool hideOptionsButtons READ hideOptionsButtons WRITE setHideOptionsButtons NOTIFY
            hideOptionsButtonsChanged)
    Q_PROPERTY(bool ShowBlurBackground READ showBlurBackground WRITE setShowBlurBackground NOTIFY
            showBlurBackgroundChanged)

public:
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static Settings *instance();

    /**
     * @p directory is where the ini file "velunor-touch.ini" lies. For what is missing there, or is
     * not an unsigned number, the defaults hold; and for all of a file that holds an object in
     * the form of QSettings, which is not read.
     */
    explicit Settings(
        const QString &directory = QStringLiteral("/data"), QObject *parent = nullptr);

    /** Normal brightness, in the panel's own units, not held to its band; 150 by default. */
    uint brightness() const { return m_brightness; }
    void setLcdBrightness(uint value);

    /** Brightness of the clock screen, likewise. */
    uint clockBrightness() const { return m_clockBrightness; }
    void setLcdClockBrightness(uint value);

    /** "grey" (the default), "green", "blue" or "custom". */
    QString clockColor() const { return m_clockColor; }
    /** An unknown name counts as "grey". */
    void setLcdClockColor(const QString &name);

    /** The RGB text that "custom" stands for; "#545050" by default. Any text is kept. */
    QString customClockColor() const { return m_customClockColor; }
    /** Notifies of lcdClockColorChanged() on every call, with the RGB text. */
    void setLcdCustomClockColor(const QString &rgb);

    /** The clock colour as RGB text, such as "#545050"; with "custom", whatever text that is. */
    QString clockColorRGB() const;

    /** True for the 24-hour clock (the default), false for the 12-hour clock. */
    bool timeFormat() const { return m_timeFormat; }
    void setTimeFormat(bool value);

    /** Whether long texts scroll (the default); otherwise they are cut. */
    bool scrolling() const { return m_scrolling; }
    void setScrolling(bool value);

    /** Whether the panel goes dark at once instead of showing the clock; false by default. */
    bool blankScreen() const { return m_blankScreen; }
    void setBlankScreen(bool value);

    /** Number of the player screen, 11 by default; nothing in the program looks at it. */
    uint defaultPlayerScreen() const { return m_defaultPlayerScreen; }
    /** Only stores: nothing is notified, nothing is saved. */
    void setDefaultPlayerScreen(uint value) { m_defaultPlayerScreen = value; }

    /** Minutes without playback until the screen saver comes; 10 by default, 0 means at once. */
    uint screenSaverTime() const { return m_screenSaverTime; }
    /** Notifies on every call. A delay that is running goes on as it is. */
    void setScreenSaverTime(uint minutes);

    /** Whether a power button is to be hidden; false by default. No page has such a button. */
    bool hidePowerButton() const { return m_hidePowerButton; }
    void setHidePowerButton(bool value);

    /** Whether the player hides its radio, shuffle and loop icons; false by default. */
    bool hideOptionsButtons() const { return m_hideOptionsButtons; }
    void setHideOptionsButtons(bool value);

    /** Whether the player shows its blurred background; true by default. */
    bool showBlurBackground() const { return m_showBlurBackground; }
    void setShowBlurBackground(bool value);

public slots:
    /**
     * Writes the two brightness values to the file. A failure is not reported. A file that holds
     * an object is first put aside, with the ending ".unread".
     */
    void save();
    /** Takes the two brightness values back to those of the start-up, even after a save(). */
    void revert();

signals:
    // Emitted with the new value after it has been stored; not for an equal one unless so noted.
    void lcdBrightnessChanged(uint brightness);
    void lcdClockBrightnessChanged(uint brightness);
    /** @p color is the new clockColor(), or the text of every write of customClockColor(). */
    void lcdClockColorChanged(QString color);
    void timeFormatChanged(bool is24Hours);
    void scrollingChanged(bool scrolling);
    void blankScreenChanged(bool blank);
    void screenSaverTimeChanged(uint minutes); ///< on every write
    void hidePowerButtonChanged(bool hide);
    void hideOptionsButtonsChanged(bool hide);
    void showBlurBackgroundChanged(bool show);

private:
    uint read(const QString &key, uint defaultValue) const;
    /** What a setter does with a new value: log it after the words @p what, store it, notify. */
    template <typename T>
    void store(T &field, const T &value, const char *what, void (Settings::*changed)(T));

    QSettings m_file;
    uint m_brightness = 0;
    uint m_clockBrightness = 0;
    uint m_savedBrightness = 0;      // as at start-up, never refreshed
    uint m_savedClockBrightness = 0; // likewise
    QString m_clockColor = QStringLiteral("grey");
    QString m_customClockColor = QStringLiteral("#545050");
    bool m_timeFormat = true;
    bool m_scrolling = true;
    bool m_blankScreen = false;
    uint m_defaultPlayerScreen = 0;
    uint m_screenSaverTime = 10;
    bool m_hidePowerButton = false;
    bool m_hideOptionsButtons = false;
    bool m_showBlurBackground = true;
};
