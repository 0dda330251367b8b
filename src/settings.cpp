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
 * A file's text without what QSettings takes for nothing in some place: blanks, quotation marks, a
 * line's end after a backslash, unknown escapes and what is not ASCII. A character can be told by
 * its number, which counts modulo 65536.
 */
QByteArray unescaped(const QByteArray &text)
{
    QByteArray result;
    const auto append = [&result](ushort code) {
        if (code > ' ' && code < 0x7f && code != '"')
            result += char(code);
    };
    const auto number = [&text](int &i, int base) {
        ushort code = 0;
        for (bool isDigit = true; isDigit;) {
            const ushort digit = text.mid(i + 1, 1).toUShort(&isDigit, base);
            if (isDigit) {
                code = ushort(code * base + digit);
                ++i;
            }
        }
        return code;
    };
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != '\\' || i + 1 == text.size()) {
            append(uchar(text.at(i)));
            continue;
        }
        const char kind = text.at(++i);
        if (kind == 'x')
            append(number(i, 16));
        else if (kind >= '0' && kind <= '7')
            append(number(--i, 8));
        else if (kind && std::strchr("abfnrtv\"?'\\", kind))
            result += ' '; // another character than those that are looked for
    }
    return result;
}

/**
 * Whether the file holds an object in the form of QSettings, which makes it of the bytes that
 * follow one of these words; where they speak of two billion elements, that much memory is asked
 * for, and the program ends. What is written here are numbers.
 */
bool holdsObject(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = unescaped(file.readAll());
    return text.contains("@Variant(") || text.contains("@DateTime(");
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
    // Nothing is reported of a file that cannot be read, for whatever reason.
    const bool isSound = !holdsObject(m_file.fileName());
    const auto value = [&](const QString &key, uint defaultValue) {
        return isSound ? read(key, defaultValue) : defaultValue;
    };
    m_brightness = m_savedBrightness = value(brightnessKey(), DefaultBrightness);
    m_clockBrightness = m_savedClockBrightness = value(clockBrightnessKey(), DefaultBrightness);
    m_defaultPlayerScreen = value(QStringLiteral("LCD/DefaultPlayerScreen"), DefaultPlayerScreen);
}

uint Settings::read(const QString &key, uint defaultValue) const
{
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
    // QSettings reads it anew where it has changed. What somebody has put there is kept, but aside.
    if (holdsObject(m_file.fileName())) {
        const QString aside = m_file.fileName() + QStringLiteral(".unread");
        QFile::remove(aside);
        if (!QFile::rename(m_file.fileName(), aside))
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
