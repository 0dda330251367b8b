// SPDX-License-Identifier: GPL-3.0-or-later
#include "propertyrow.h"

PropertyRow::PropertyRow(const char *entry, const QVariant &start)
    : m_entry(QString::fromLatin1(entry))
    , m_start(start)
{
    const QString lastWord = m_entry.section(QLatin1Char(' '), -1);
    if (lastWord.endsWith(QLatin1Char(')')))
        m_signal = lastWord;
}

PropertyRow &PropertyRow::onEveryWrite()
{
    m_tellsEveryWrite = true;
    return *this;
}

PropertyRow &PropertyRow::telling(const char *signature)
{
    m_signal = QString::fromLatin1(signature);
    return *this;
}

PropertyRow &PropertyRow::logging(const QStringList &lines)
{
    m_lines = lines;
    return *this;
}

PropertyRow &PropertyRow::loggingRepeats(const QStringList &lines)
{
    m_repeatedLines = lines;
    return *this;
}

PropertyRow &PropertyRow::writing(const QVariantList &values)
{
    m_values = values;
    return *this;
}

PropertyRow &PropertyRow::moving(const char *property)
{
    m_moved.append(QString::fromLatin1(property));
    return *this;
}

QStringList PropertyRow::signalsOf(const QVariant &value) const
{
    if (m_signal.isEmpty())
        return {};
    const QString name = m_signal.section(QLatin1Char('('), 0, 0);
    return { m_signal.endsWith(QLatin1String("()")) ? name
                                                    : name + QLatin1Char(' ') + value.toString() };
}

QStringList PropertyRow::linesOf(const QVariant &value, bool isThere) const
{
    QStringList lines = isThere ? m_repeatedLines : m_lines;
    lines.replaceInStrings(QStringLiteral("%1"), value.toString());
    return lines;
}
