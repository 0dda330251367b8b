// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSettings>
#include <QString>

/**
 * The display's user settings.
 *
 * The two brightness values and the default player screen are read from the ini file in the data
 * directory; only the two brightness values are ever written back. All else arrives by messages and
 * lives in memory. The scene and the display controller listen. Setters notify only on a change,
 * except where noted. Main thread only.
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
    static Settings *instance();

    /** @p directory is where the ini file lies; without it, or with a damaged one, the defaults
     * hold. */
    explicit Settings(
        const QString &directory = QStringLiteral("/data"), QObject *parent = nullptr);

    /** Normal brightness, in the panel's own units. */
    uint brightness() const { return m_brightness; }
    void setLcdBrightness(uint value);

    /** Brightness of the clock screen, in the panel's own units. */
    uint clockBrightness() const { return m_clockBrightness; }
    void setLcdClockBrightness(uint value);

    /** "grey", "green", "blue" or "custom". */
    QString clockColor() const { return m_clockColor; }
    /** An unknown name counts as "grey". */
    void setLcdClockColor(const QString &name);

    /** The RGB text that "custom" stands for. */
    QString customClockColor() const { return m_customClockColor; }
    /** Notifies on every call, with the RGB text. */
    void setLcdCustomClockColor(const QString &rgb);

    /** The clock colour as RGB text. */
    QString clockColorRGB() const;

    /** True for the 24-hour clock. */
    bool timeFormat() const { return m_timeFormat; }
    void setTimeFormat(bool value);

    /** Whether long texts scroll; otherwise they are cut. */
    bool scrolling() const { return m_scrolling; }
    void setScrolling(bool value);

    /** Whether the screen saver is a dark panel rather than the clock. */
    bool blankScreen() const { return m_blankScreen; }
    void setBlankScreen(bool value);

    /** Number of the player screen, 11 by default. */
    uint defaultPlayerScreen() const { return m_defaultPlayerScreen; }
    /** Only stores: nothing is notified, nothing is saved. */
    void setDefaultPlayerScreen(uint value) { m_defaultPlayerScreen = value; }

    /** Minutes until the screen saver comes on. */
    uint screenSaverTime() const { return m_screenSaverTime; }
    /** Notifies on every call. */
    void setScreenSaverTime(uint minutes);

    bool hidePowerButton() const { return m_hidePowerButton; }
    void setHidePowerButton(bool value);

    /** Whether the player hides its radio, shuffle and loop icons. */
    bool hideOptionsButtons() const { return m_hideOptionsButtons; }
    void setHideOptionsButtons(bool value);

    /** Whether the player shows its blurred background. */
    bool showBlurBackground() const { return m_showBlurBackground; }
    void setShowBlurBackground(bool value);

public slots:
    /** Writes the two brightness values to the file. */
    void save();
    /** Takes the two brightness values back to what the file held at start-up, also after a save().
     */
    void revert();

signals:
    void lcdBrightnessChanged(uint brightness);
    void lcdClockBrightnessChanged(uint brightness);
    void lcdClockColorChanged(QString color);
    void timeFormatChanged(bool is24Hours);
    void scrollingChanged(bool scrolling);
    void blankScreenChanged(bool blank);
    void screenSaverTimeChanged(uint minutes);
    void hidePowerButtonChanged(bool hide);
    void hideOptionsButtonsChanged(bool hide);
    void showBlurBackgroundChanged(bool show);

private:
    uint read(const QString &key, uint defaultValue) const;

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
