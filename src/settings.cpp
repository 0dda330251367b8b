// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings.h"

#include <QDebug>
#include <QMap>
#include <QThread>

namespace {

constexpr uint DefaultBrightness = 150;
constexpr uint DefaultPlayerScreen = 11;

QString brightnessKey()
{
    return QStringLiteral("LCD/Brightness");
}

QString clockBrightnessKey()
{
    return QStringLiteral("LCD/ClockBrightness");
}

QString customColorName()
{
    return QStringLiteral("custom");
}

const QMap<QString, QString> &colorTable()
{
    static const QMap<QString, QString> table {
        { QStringLiteral("grey"), QStringLiteral("#545050") },
        { QStringLiteral("green"), QStringLiteral("#5dfc0a") },
        { QStringLiteral("blue"), QStringLiteral("#05edff") },
    };
    return table;
}

} // namespace

Settings *Settings::instance()
{
    static Settings *const theInstance = new Settings;
    return theInstance;
}

Settings::Settings(const QString &directory, QObject *parent)
    : QObject(parent)
    , m_file(directory + QStringLiteral("/velunor-touch.ini"), QSettings::IniFormat)
{
    qDebug().noquote().nospace() << "Settings::constructor in thread "
                                 << QThread::currentThreadId();
    qDebug().noquote().nospace() << "Settings: reading from: " << m_file.fileName();
    m_brightness = m_savedBrightness = read(brightnessKey(), DefaultBrightness);
    m_clockBrightness = m_savedClockBrightness = read(clockBrightnessKey(), DefaultBrightness);
    m_defaultPlayerScreen = read(QStringLiteral("LCD/DefaultPlayerScreen"), DefaultPlayerScreen);
}

uint Settings::read(const QString &key, uint defaultValue) const
{
    bool isNumber = false;
    const uint value = m_file.value(key, defaultValue).toString().toUInt(&isNumber);
    return isNumber ? value : defaultValue; // a damaged entry must not leave the panel dark
}

QString Settings::clockColorRGB() const
{
    if (m_clockColor == customColorName())
        return m_customClockColor;
    return colorTable().value(m_clockColor, QStringLiteral("#545050"));
}

void Settings::setLcdBrightness(uint value)
{
    if (m_brightness == value)
        return;
    qDebug().noquote().nospace() << "Settings::setLcdBrightness() " << value;
    m_brightness = value;
    emit lcdBrightnessChanged(value);
}

void Settings::setLcdClockBrightness(uint value)
{
    if (m_clockBrightness == value)
        return;
    qDebug().noquote().nospace() << "Settings::setLcdClockBrightness() " << value;
    m_clockBrightness = value;
    emit lcdClockBrightnessChanged(value);
}

void Settings::setLcdClockColor(const QString &name)
{
    const bool known = name == customColorName() || colorTable().contains(name);
    const QString accepted = known ? name : QStringLiteral("grey");
    if (m_clockColor == accepted)
        return;
    qDebug().noquote().nospace() << "Settings::setLcdClockColor() " << accepted;
    m_clockColor = accepted;
    emit lcdClockColorChanged(accepted);
}

void Settings::setLcdCustomClockColor(const QString &rgb)
{
    // Deliberate: no test for equality, so that whoever shows clockColorRGB looks again.
    qDebug().noquote().nospace() << "Settings::setLcdCustomClockColor() " << rgb;
    m_customClockColor = rgb;
    emit lcdClockColorChanged(rgb);
}

void Settings::setTimeFormat(bool value)
{
    if (m_timeFormat == value)
        return;
    qDebug().noquote().nospace() << "Settings::timeFormat write " << value;
    m_timeFormat = value;
    emit timeFormatChanged(value);
}

void Settings::setScrolling(bool value)
{
    if (m_scrolling == value)
        return;
    qDebug().noquote().nospace() << "Settings::scrolling write " << value;
    m_scrolling = value;
    emit scrollingChanged(value);
}

void Settings::setBlankScreen(bool value)
{
    if (m_blankScreen == value)
        return;
    qDebug().noquote().nospace() << "Settings::blankScreen write " << value;
    m_blankScreen = value;
    emit blankScreenChanged(value);
}

void Settings::setScreenSaverTime(uint minutes)
{
    // Deliberate: every write notifies, even of an equal value, and nothing is logged.
    m_screenSaverTime = minutes;
    emit screenSaverTimeChanged(minutes);
}

void Settings::setHidePowerButton(bool value)
{
    if (m_hidePowerButton == value)
        return;
    qDebug().noquote().nospace() << "Settings::hidePowerButton write " << value;
    m_hidePowerButton = value;
    emit hidePowerButtonChanged(value);
}

void Settings::setHideOptionsButtons(bool value)
{
    if (m_hideOptionsButtons == value)
        return;
    qDebug().noquote().nospace() << "Settings::setHideOptionsButtons write " << value;
    m_hideOptionsButtons = value;
    emit hideOptionsButtonsChanged(value);
}

void Settings::setShowBlurBackground(bool value)
{
    if (m_showBlurBackground == value)
        return;
    qDebug().noquote().nospace() << "Settings::setShowBlurBackground write " << value;
    m_showBlurBackground = value;
    emit showBlurBackgroundChanged(value);
}

void Settings::save()
{
    qDebug() << "Settings::save()";
    qDebug().noquote().nospace() << "Settings::save:LCD/Brightness" << m_brightness;
    qDebug().noquote().nospace() << "Settings::save:LCD/ClockBrightness" << m_clockBrightness;
    m_file.setValue(brightnessKey(), m_brightness);
    m_file.setValue(clockBrightnessKey(), m_clockBrightness);
    m_file.sync();
}

void Settings::revert()
{
    // Deliberate: the saved values are those of start-up, save() does not refresh them.
    qDebug() << "Settings::revert()";
    setLcdBrightness(m_savedBrightness);
    setLcdClockBrightness(m_savedClockBrightness);
}
