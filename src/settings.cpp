// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings.h"

#include <QDebug>
#include <QFile>
#include <QMap>
#include <QThread>

#include <cstring>

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

/**
 * A file's text as QSettings takes it: quotation marks are nothing, and escapes are characters by
 * number (modulo 65536), characters by name, or, as an unknown one and a line's end, nothing.
 */
QString unescaped(const QByteArray &text)
{
    const auto number = [&text](int &i, int base) {
        ushort code = 0;
        for (bool isDigit = true; isDigit;) {
            const ushort digit = text.mid(i + 1, 1).toUShort(&isDigit, base);
            if (isDigit) {
                code = ushort(code * base + digit);
                ++i;
            }
        }
        return QChar(code);
    };
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const char character = text.at(i);
        if (character == '\\' && i + 1 < text.size()) {
            const char kind = text.at(++i);
            if (kind == 'x')
                result += number(i, 16);
            else if (kind >= '0' && kind <= '7')
                result += number(--i, 8);
            else if (kind && std::strchr("abfnrtv\"?'\\", kind))
                result += QLatin1Char(' '); // another one than those that are looked for
            else if (text.mid(i, 2) == "\r\n" || text.mid(i, 2) == "\n\r")
                ++i;
        } else if (character != '"') {
            result += QLatin1Char(character);
        }
    }
    return result;
}

/**
 * Whether QSettings can read the file. These words begin objects that it makes of the bytes that
 * follow; where they speak of two billion elements, that much memory is asked for, and the program
 * ends. What is written here are numbers.
 */
bool isReadable(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QString text = unescaped(file.readAll());
    for (const QLatin1String object : { QLatin1String("@Variant("), QLatin1String("@DateTime(") }) {
        for (int at = text.indexOf(object); at >= 0; at = text.indexOf(object, at + 1)) {
            if (at == 0 || text.at(at - 1) != QLatin1Char('@')) // two of them are one that is meant
                return false;
        }
    }
    return true;
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
    m_isReadable = isReadable(m_file.fileName());
    if (!m_isReadable)
        qWarning().noquote().nospace()
            << "Settings: not reading " << m_file.fileName() << ", which holds an object";
    m_brightness = m_savedBrightness = read(brightnessKey(), DefaultBrightness);
    m_clockBrightness = m_savedClockBrightness = read(clockBrightnessKey(), DefaultBrightness);
    m_defaultPlayerScreen = read(QStringLiteral("LCD/DefaultPlayerScreen"), DefaultPlayerScreen);
}

uint Settings::read(const QString &key, uint defaultValue) const
{
    if (!m_isReadable)
        return defaultValue;
    bool isNumber = false;
    const uint value = m_file.value(key, defaultValue).toString().toUInt(&isNumber);
    return isNumber ? value : defaultValue; // a damaged entry must not leave the panel dark
}

template <typename T>
void Settings::store(T &field, const T &value, const char *what, void (Settings::*changed)(T))
{
    if (field == value)
        return;
    qDebug().noquote().nospace() << what << value;
    field = value;
    emit(this->*changed)(value);
}

QString Settings::clockColorRGB() const
{
    if (m_clockColor == customColorName())
        return m_customClockColor;
    return colorTable().value(m_clockColor, QStringLiteral("#545050"));
}

void Settings::setLcdBrightness(uint value)
{
    store(m_brightness, value, "Settings::setLcdBrightness() ", &Settings::lcdBrightnessChanged);
}

void Settings::setLcdClockBrightness(uint value)
{
    store(m_clockBrightness, value, "Settings::setLcdClockBrightness() ",
        &Settings::lcdClockBrightnessChanged);
}

void Settings::setLcdClockColor(const QString &name)
{
    const bool known = name == customColorName() || colorTable().contains(name);
    const QString accepted = known ? name : QStringLiteral("grey");
    store(m_clockColor, accepted, "Settings::setLcdClockColor() ", &Settings::lcdClockColorChanged);
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
    store(m_timeFormat, value, "Settings::timeFormat write ", &Settings::timeFormatChanged);
}

void Settings::setScrolling(bool value)
{
    store(m_scrolling, value, "Settings::scrolling write ", &Settings::scrollingChanged);
}

void Settings::setBlankScreen(bool value)
{
    store(m_blankScreen, value, "Settings::blankScreen write ", &Settings::blankScreenChanged);
}

void Settings::setScreenSaverTime(uint minutes)
{
    // Deliberate: every write notifies, even of an equal value, and nothing is logged.
    m_screenSaverTime = minutes;
    emit screenSaverTimeChanged(minutes);
}

void Settings::setHidePowerButton(bool value)
{
    store(m_hidePowerButton, value, "Settings::hidePowerButton write ",
        &Settings::hidePowerButtonChanged);
}

void Settings::setHideOptionsButtons(bool value)
{
    store(m_hideOptionsButtons, value, "Settings::setHideOptionsButtons write ",
        &Settings::hideOptionsButtonsChanged);
}

void Settings::setShowBlurBackground(bool value)
{
    store(m_showBlurBackground, value, "Settings::setShowBlurBackground write ",
        &Settings::showBlurBackgroundChanged);
}

void Settings::save()
{
    qDebug() << "Settings::save()";
    qDebug().noquote().nospace() << "Settings::save:LCD/Brightness" << m_brightness;
    qDebug().noquote().nospace() << "Settings::save:LCD/ClockBrightness" << m_clockBrightness;
    if (!m_isReadable) {
        // What somebody has put there is kept, but not in the way.
        const QString aside = m_file.fileName() + QStringLiteral(".unread");
        QFile::remove(aside);
        m_isReadable = QFile::rename(m_file.fileName(), aside);
        if (!m_isReadable)
            return;
    }
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
