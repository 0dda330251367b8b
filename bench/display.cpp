// SPDX-License-Identifier: GPL-3.0-or-later
#include "display.h"

#include "eventwait.h"

#include <QRegularExpression>

bool Display::start()
{
    // The server writes the number of the display to standard error once it takes clients.
    const bool started = m_process.start(QStringLiteral("Xvfb"),
        { QStringLiteral("-displayfd"), QStringLiteral("2"), QStringLiteral("-screen"),
            QStringLiteral("0"), QStringLiteral("800x480x24"), QStringLiteral("-nolisten"),
            QStringLiteral("tcp") },
        QProcessEnvironment::systemEnvironment());
    if (!started) {
        qWarning("cannot start Xvfb (package xvfb): %s", qUtf8Printable(m_process.errorText()));
        return false;
    }
    const QRegularExpression number(QStringLiteral("^\\d+$"));
    if (!waitForEvent([&] { return !m_process.lines().filter(number).isEmpty(); })) {
        qWarning("Xvfb does not come up");
        return false;
    }
    m_name = QLatin1Char(':') + m_process.lines().filter(number).first();
    return true;
}
