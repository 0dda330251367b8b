// SPDX-License-Identifier: GPL-3.0-or-later
#include "screencontroller.h"

#include "brokertopics.h"
#include "mqtt.h"
#include "settings.h"
#include "storeifchanged.h"

#include <QDebug>
#include <QDir>
#include <QProcessEnvironment>
#include <QThread>

namespace {

// What the kernel's bl_power attribute takes; the reverse of what one would expect.
constexpr uint PowerOn = 0;
constexpr uint PowerOff = 1;

/** The first entry of @p directory in the order in which sysfs lists it; empty without one. */
QString firstEntry(const QDir &directory)
{
    return directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted).value(0);
}

bool isTrue(const QProcessEnvironment &environment, const QString &name)
{
    return environment.value(name, QStringLiteral("false")).toUpper() == QLatin1String("TRUE");
}

/** The whole number in the variable @p name; @p fallback, with a warning, if it holds none. */
int number(
    const QProcessEnvironment &environment, const QString &name, const char *what, int fallback)
{
    bool isNumber = false;
    const int value = environment.value(name, QString::number(fallback)).toInt(&isNumber);
    if (isNumber)
        return value;
    qWarning().noquote().nospace()
        << "setting default " << what << " failed. Falling back to " << fallback;
    return fallback;
}

} // namespace

ScreenController *ScreenController::instance()
{
    static ScreenController *const theInstance = new ScreenController;
    return theInstance;
}

ScreenController::ScreenController(const QString &backlightDirectory, QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "ScreenController::constructor in thread "
                                 << QThread::currentThreadId();
    const Settings *const settings = Settings::instance();
    connect(
        settings, &Settings::lcdBrightnessChanged, this, &ScreenController::lcdBrightnessChanged);
    connect(settings, &Settings::lcdClockBrightnessChanged, this,
        &ScreenController::lcdClockBrightnessChanged);

    findPanel(backlightDirectory);
    readEnvironment();

    m_minBrightness = 13;
    m_maxBrightness = 254;
    if (m_screenType == QLatin1String("DISPLAY2_7INCH")
        || m_screenType == QLatin1String("DISPLAY2_5INCH")) {
        qInfo()
            << "ScreenController::ScreenController() 'Display 2' detected, adjusting brightness "
               "bandwidth";
        m_minBrightness = 1;
        m_maxBrightness = 31;
    }

    m_brightness = settings->brightness();
    m_clockBrightness = settings->clockBrightness();
    exec_brightness(m_brightness);
    exec_backlight_on();
}

void ScreenController::findPanel(const QString &backlightDirectory)
{
    const QDir directory(backlightDirectory);
    const QString panel = firstEntry(directory);
    if (panel.isEmpty()) {
        qWarning() << "ScreenController::constructor() no sysfile found!";
        return;
    }
    qInfo().noquote().nospace() << "ScreenController::constructor() found sys dir " << panel;
    const QString path = directory.absolutePath() + QLatin1Char('/') + panel;
    m_brightnessFile.setFileName(path + QStringLiteral("/brightness"));
    m_powerFile.setFileName(path + QStringLiteral("/bl_power"));
}

void ScreenController::readEnvironment()
{
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

    m_screenType
        = environment.value(QStringLiteral("VELUNOR_TOUCHUI_SCREENTYPE"), QStringLiteral("unknown"))
              .toUpper();
    qInfo().noquote().nospace() << "ScreenController::ScreenController() screenType: "
                                << m_screenType;

    m_swapped = isTrue(environment, QStringLiteral("VELUNOR_TOUCHUI_SWAPPED"));
    qInfo().noquote().nospace() << "ScreenController::ScreenController() swapped: " << m_swapped;

    m_rotated = isTrue(environment, QStringLiteral("VELUNOR_TOUCHUI_ROTATED"));
    qInfo().noquote().nospace() << "ScreenController::ScreenController() rotated: " << m_rotated;

    m_rotation = number(environment, QStringLiteral("VELUNOR_TOUCHUI_ROTATION"), "rotation", 0);
    qInfo().noquote().nospace() << "ScreenController::ScreenController() rotation: " << m_rotation;

    // A negative width or height is kept as it comes, as an unsigned number.
    m_width = static_cast<uint>(
        number(environment, QStringLiteral("VELUNOR_TOUCHUI_WIDTH"), "width", 800));
    qInfo().noquote().nospace() << "ScreenController::ScreenController() width: " << m_width;

    m_height = static_cast<uint>(
        number(environment, QStringLiteral("VELUNOR_TOUCHUI_HEIGHT"), "height", 480));
    qInfo().noquote().nospace() << "ScreenController::ScreenController() height: " << m_height;
}

void ScreenController::setSwapped(bool value)
{
    if (storeIfChanged(m_swapped, value))
        emit swappedChanged();
}

void ScreenController::setRotated(bool value)
{
    if (storeIfChanged(m_rotated, value))
        emit rotatedChanged();
}

void ScreenController::setRotation(int value)
{
    if (storeIfChanged(m_rotation, value))
        emit rotationChanged();
}

void ScreenController::setWidth(uint value)
{
    if (storeIfChanged(m_width, value))
        emit widthChanged();
}

void ScreenController::setHeight(uint value)
{
    if (storeIfChanged(m_height, value))
        emit heightChanged();
}

void ScreenController::setMinBrightness(uint value)
{
    if (storeIfChanged(m_minBrightness, value))
        emit minBrightnessChanged();
}

void ScreenController::setMaxBrightness(uint value)
{
    if (storeIfChanged(m_maxBrightness, value))
        emit maxBrightnessChanged();
}

void ScreenController::exec_brightness(uint value)
{
    qInfo().noquote().nospace() << "ScreenController::exec_brightness() " << value;
    m_brightnessFile.write(value);
    Mqtt::instance()->publish(
        BrokerTopics::displayBrightness(), QByteArray::number(value), true, 1);
}

void ScreenController::exec_backlight_on()
{
    if (m_backlightOn)
        return;
    qInfo() << "ScreenController::exec_backlight_on()";
    m_backlightOn = true;
    m_powerFile.write(PowerOn);
}

void ScreenController::exec_backlight_off()
{
    // Deliberate: unlike switching on, this writes every time.
    qDebug() << "ScreenController::exec_backlight_off()";
    m_backlightOn = false;
    m_powerFile.write(PowerOff);
}

void ScreenController::lcdBrightnessChanged(uint value)
{
    qDebug() << "ScreenController::lcdBrightnessChanged()";
    m_brightness = value;
    exec_brightness(value);
}

void ScreenController::lcdClockBrightnessChanged(uint value)
{
    qDebug() << "ScreenController::lcdClockBrightnessChanged()";
    m_clockBrightness = value;
    exec_brightness(value);
}

void ScreenController::saveSettings()
{
    qDebug() << "ScreenController::saveSettings()";
    Settings::instance()->save();
}

void ScreenController::restoreSettings()
{
    qDebug() << "ScreenController::restoreSettings()";
    Settings::instance()->revert();
}

void ScreenController::setDefaultBrightness()
{
    qInfo() << "ScreenController::setDefaultBrightness()";
    exec_brightness(m_brightness);
}

void ScreenController::setClockBrightness()
{
    exec_brightness(m_clockBrightness);
}
