// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/loglines.h"

#include <QRegularExpression>

LogLine LogLine::parsed(const QString &line)
{
    static const QRegularExpression form(
        QStringLiteral("^(DEBUG|INFO |WARN |ERROR|FATAL) \\[([^\\](]*)\\((-?[0-9]+)\\)\\] (.*)$"),
        QRegularExpression::DotMatchesEverythingOption);
    LogLine result;
    result.whole = line;
    const QRegularExpressionMatch match = form.match(line);
    if (!match.hasMatch()) {
        result.text = line;
        return result;
    }
    result.level = match.captured(1).trimmed();
    result.file = match.captured(2);
    result.number = match.captured(3).toInt();
    result.text = match.captured(4);
    return result;
}

QString LogLine::withoutPlace() const
{
    return QStringLiteral("%1 %2").arg(level, -5).arg(text);
}

LogPattern::LogPattern(const QString &level, const QString &text)
    : m_level(level)
    , m_text(text)
{
}

LogPattern LogPattern::andMore() const
{
    LogPattern pattern(*this);
    pattern.m_andMore = true;
    return pattern;
}

bool LogPattern::matches(const LogLine &line) const
{
    if (!m_level.isEmpty() && line.level != m_level)
        return false;
    return m_andMore ? line.text.startsWith(m_text) : line.text == m_text;
}

QString LogPattern::description() const
{
    return QStringLiteral("%1 \"%2\"%3")
        .arg(m_level.isEmpty() ? QStringLiteral("any level") : m_level, m_text,
            m_andMore ? QStringLiteral(" and more") : QString());
}

LogPattern Line::debug(const QString &text)
{
    return { QStringLiteral("DEBUG"), text };
}

LogPattern Line::info(const QString &text)
{
    return { QStringLiteral("INFO"), text };
}

LogPattern Line::warning(const QString &text)
{
    return { QStringLiteral("WARN"), text };
}

LogPattern Line::critical(const QString &text)
{
    return { QStringLiteral("ERROR"), text };
}

LogPattern Line::any(const QString &text)
{
    return { QString(), text };
}
