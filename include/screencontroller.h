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
 * the broker, even when there is no panel to write to. Writing a property only notifies the scene,
 * the panel stays as it is. Main thread only.
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
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static ScreenController *instance();

    /**
     * Applies the stored normal brightness and powers the backlight. @p backlightDirectory holds a
     * directory for each panel; only the first that is listed is driven. Without one, every write
     * to the panel fails with a warning.
     */
    explicit ScreenController(
        const QString &backlightDirectory = QStringLiteral("/sys/class/backlight"),
        QObject *parent = nullptr);

    /** Whether width and height are swapped for the pages; false unless configured. */
    bool swapped() const { return m_swapped; }
    void setSwapped(bool value);

    /** Whether the pages are turned, by rotation(); false unless configured. */
    bool rotated() const { return m_rotated; }
    void setRotated(bool value);

    /** Degrees, clockwise; 0 unless configured as a whole number. Counts only while rotated(). */
    int rotation() const { return m_rotation; }
    void setRotation(int value);

    /** Pixels; 800 unless configured as a whole number. A negative one wraps around. */
    uint width() const { return m_width; }
    void setWidth(uint value);

    /** Pixels; 480 unless configured as a whole number. A negative one wraps around. */
    uint height() const { return m_height; }
    void setHeight(uint value);

    /** Lower end of the panel's brightness band: 1 for a "Display 2" panel, 13 for all others. */
    uint minBrightness() const { return m_minBrightness; }
    void setMinBrightness(uint value);

    /** Upper end of the panel's brightness band: 31 for a "Display 2" panel, 254 for all others. */
    uint maxBrightness() const { return m_maxBrightness; }
    void setMaxBrightness(uint value);

    /**
     * Writes @p value to the panel and reports it, on every call, and even when the panel cannot be
     * written. The band is not enforced.
     */
    void exec_brightness(uint value);
    /** Powers the backlight, unless this object has powered it already. */
    void exec_backlight_on();
    /** Cuts the backlight's power, on every call. */
    void exec_backlight_off();

public slots:
    /** Remembers the normal brightness @p value and applies it, whatever screen is shown. */
    void lcdBrightnessChanged(uint value);
    /** Remembers the clock brightness @p value and applies it as a preview, whatever is shown. */
    void lcdClockBrightnessChanged(uint value);
    /** Settings::save(). */
    void saveSettings();
    /** Settings::revert(); what that changes is applied. */
    void restoreSettings();
    /** Applies the normal brightness. */
    void setDefaultBrightness();
    /** Applies the brightness of the clock screen. */
    void setClockBrightness();

signals:
    void brightnessChanged(); // Deliberate: declared for the scene, never emitted
    void timeFormatChanged(); // Deliberate: likewise

    // Emitted when the property has changed, and not by the constructor.
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
