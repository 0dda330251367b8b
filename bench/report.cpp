// SPDX-License-Identifier: GPL-3.0-or-later
#include "report.h"

#include <cstdio>

namespace {

/** With as many decimals as make sense at the size of the number. */
QString shown(double value, const QString &unit)
{
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : 2;
    return QString::number(value, 'f', decimals) + QLatin1Char(' ') + unit;
}

QString verdict(bool met)
{
    return met ? QStringLiteral("met") : QStringLiteral("MISSED");
}

} // namespace

void Report::addRatio(const QString &what, const QString &unit, double ours, double reference,
    Goal goal, double limit)
{
    const double ratio = ours / reference;
    m_rows.append({ what, shown(ours, unit), shown(reference, unit), QString::number(ratio, 'f', 2),
        QLatin1String(goal == AtLeast ? ">= " : "<= ") + QString::number(limit, 'f', 2),
        verdict(goal == AtLeast ? ratio >= limit : ratio <= limit) });
}

void Report::addLimited(const QString &what, const QString &unit, double ours, double limit)
{
    m_rows.append({ what, shown(ours, unit), QString(), QString(),
        QLatin1String("<= ") + shown(limit, unit), verdict(ours <= limit) });
}

void Report::addFigure(const QString &what, const QString &unit, double ours, double reference)
{
    const bool compared = reference >= 0;
    m_rows.append({ what, shown(ours, unit), compared ? shown(reference, unit) : QString(),
        compared ? QString::number(ours / reference, 'f', 2) : QString(), QString(), QString() });
}

void Report::print() const
{
    const auto line = [](const Row &row) {
        std::printf("%-48s %15s %15s %7s %12s  %s\n", qPrintable(row.what), qPrintable(row.ours),
            qPrintable(row.reference), qPrintable(row.ratio), qPrintable(row.goal),
            qPrintable(row.verdict));
    };
    line({ QString(), QStringLiteral("this program"), QStringLiteral("reference"),
        QStringLiteral("ratio"), QStringLiteral("goal"), QString() });
    for (const Row &row : m_rows)
        line(row);
}
