// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sysfile.h"

#include <QObject>
#include <QString>

/**
 * The physical display: geometry and orientation, the panel's brightness band, the brightness in
 * force and the backlight's power.
 *
 * Geometry and panel type come from the environment, once. Brightness values are always device
 * units, the number written to the panel's sysfs attribute. Every brightness applied is reported to
 * the broker, also when there is no panel to write to. Main thread only.
 */
class ScreenController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool swapped READ swapped WRITE setSwapped NOTIFY swappedChanged)
    Q_PROPERTY(bool rotated READ rotated WRITE setRotated NOTIFY rotatedChanged)
    Q_PROPERTY(int rotation READ rotation WRITE setRotation NOTIFY rotationChanged)
    Q_PROPERTY(uint width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(uint height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(
        uint minBrightness READ minBrightness WRITE setMinBrightness NOTIFY minBrightnessChanged)
    Q_PROPERTY(
        uint maxBrightness READ maxBrightness WRITE setMaxBrightness NOTIFY maxBrightnessChanged)

public:
    static ScreenController *instance();

    /** @p backlightDirectory holds one directory a panel; only the first that is listed is driven.
     */
    explicit ScreenController(
        const QString &backlightDirectory = QStringLiteral("/sys/class/backlight"),
        QObject *parent = nullptr);

    /** Whether the panel's width and height change places in the scene. */
    bool swapped() const { return m_swapped; }
    void setSwapped(bool value);

    /** Whether the panel is mounted turned; rotation() says by how much. */
    bool rotated() const { return m_rotated; }
    void setRotated(bool value);

    /** Degrees, clockwise. */
    int rotation() const { return m_rotation; }
    void setRotation(int value);

    /** Pixels. */
    uint width() const { return m_width; }
    void setWidth(uint value);

    /** Pixels. */
    uint height() const { return m_height; }
    void setHeight(uint value);

    /** Lower end of the panel's brightness band. */
    uint minBrightness() const { return m_minBrightness; }
    void setMinBrightness(uint value);

    /** Upper end of the panel's brightness band. */
    uint maxBrightness() const { return m_maxBrightness; }
    void setMaxBrightness(uint value);

    /** Writes @p value to the panel and reports it, on every call. The band is not enforced. */
    void exec_brightness(uint value);
    /** Powers the backlight, unless this object has powered it already. */
    void exec_backlight_on();
    /** Cuts the backlight's power, on every call. */
    void exec_backlight_off();

public slots:
    /** Takes and applies a new normal brightness. */
    void lcdBrightnessChanged(uint value);
    /** Takes a new clock brightness and applies it at once, whatever screen is shown: the user's
     * preview. */
    void lcdClockBrightnessChanged(uint value);
    void saveSettings();
    void restoreSettings();
    /** Applies the normal brightness. */
    void setDefaultBrightness();
    /** Applies the brightness of the clock screen. */
    void setClockBrightness();

signals:
    void brightnessChanged(); // Deliberate: declared for the scene, never emitted
    void timeFormatChanged(); // Deliberate: likewise
    void swappedChanged();
    void rotatedChanged();
    void rotationChanged();
    void widthChanged();
    void heightChanged();
    void minBrightnessChanged();
    void maxBrightnessChanged();

private:
    void findPanel(const QString &backlightDirectory);
    void readEnvironment();

    QString m_screenType;
    uint m_brightness = 0;
    uint m_minBrightness = 0;
    uint m_maxBrightness = 0;
    uint m_clockBrightness = 0;
    bool m_backlightOn = false;
    SysFile m_brightnessFile;
    SysFile m_powerFile;
    bool m_swapped = false;
    bool m_rotated = false;
    int m_rotation = 0;
    uint m_width = 0;
    uint m_height = 0;
};
