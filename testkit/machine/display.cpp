// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/display.h"

#include "testkit/waiting.h"

#include <QProcessEnvironment>
#include <QRegularExpression>

Display::Display(const QSize &size)
    : m_size(size)
{
}

bool Display::start()
{
    // The server writes the number of the display to standard error once it takes clients.
    const QString screen = QStringLiteral("%1x%2x24").arg(m_size.width()).arg(m_size.height());
    const bool started = m_process.start(QStringLiteral("Xvfb"),
        { QStringLiteral("-displayfd"), QStringLiteral("2"), QStringLiteral("-screen"),
            QStringLiteral("0"), screen, QStringLiteral("-nolisten"), QStringLiteral("tcp"),
            QStringLiteral("-noreset") },
        QProcessEnvironment::systemEnvironment());
    if (!started) {
        qWarning("cannot start Xvfb (package xvfb): %s", qUtf8Printable(m_process.errorText()));
        return false;
    }
    const QRegularExpression number(QStringLiteral("^\\d+$"));
    if (!waitUntil([&] { return !m_process.lines().filter(number).isEmpty(); })) {
        qWarning("Xvfb does not come up");
        return false;
    }
    m_name = QLatin1Char(':') + m_process.lines().filter(number).first();
    return true;
}
