// SPDX-License-Identifier: GPL-3.0-or-later
#include "report.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdio>

namespace {

/** With as many decimals as make sense at the size of the number; a count has none. */
QString shown(double value, const QString &unit)
{
    if (unit.isEmpty())
        return QString::number(value, 'f', 0);
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : 2;
    return QString::number(value, 'f', decimals) + QLatin1Char(' ') + unit;
}

QString ratioText(double ours, double reference)
{
    return QString::number(ours / reference, 'f', 2);
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
    m_rows.append({ m_measurement, what, shown(ours, unit), shown(reference, unit),
        ratioText(ours, reference),
        QLatin1String(goal == AtLeast ? ">= " : "<= ") + QString::number(limit, 'f', 2),
        verdict(goal == AtLeast ? ratio >= limit : ratio <= limit), ratio, limit });
}

void Report::addLimited(const QString &what, const QString &unit, double ours, double limit)
{
    m_rows.append({ m_measurement, what, shown(ours, unit), QString(), QString(),
        QLatin1String("<= ") + shown(limit, unit), verdict(ours <= limit), ours, limit });
}

void Report::addFigure(const QString &what, const QString &unit, double ours, double reference)
{
    const bool compared = reference >= 0;
    Row row;
    row.measurement = m_measurement;
    row.what = what;
    row.ours = shown(ours, unit);
    row.reference = compared ? shown(reference, unit) : QString();
    row.ratio = compared ? ratioText(ours, reference) : QString();
    m_rows.append(row);
}

void Report::print() const
{
    const auto line = [](const Row &row) {
        std::printf("%-56s %15s %15s %7s %12s  %s\n", qPrintable(row.what), qPrintable(row.ours),
            qPrintable(row.reference), qPrintable(row.ratio), qPrintable(row.goal),
            qPrintable(row.verdict));
    };
    Row head;
    head.ours = QStringLiteral("this program");
    head.reference = QStringLiteral("reference");
    head.ratio = QStringLiteral("ratio");
    head.goal = QStringLiteral("goal");
    line(head);
    for (const Row &row : m_rows)
        line(row);
}

bool Report::write(const QString &path) const
{
    QJsonArray rows;
    for (const Row &row : m_rows) {
        QJsonObject object { { QStringLiteral("measurement"), row.measurement },
            { QStringLiteral("what"), row.what }, { QStringLiteral("ours"), row.ours },
            { QStringLiteral("reference"), row.reference }, { QStringLiteral("ratio"), row.ratio },
            { QStringLiteral("goal"), row.goal }, { QStringLiteral("verdict"), row.verdict } };
        if (!std::isnan(row.limit)) {
            object.insert(QStringLiteral("compared"), row.compared);
            object.insert(QStringLiteral("limit"), row.limit);
        }
        rows.append(object);
    }
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(rows).toJson()) > 0)
        return true;
    qWarning("cannot write %s", qPrintable(path));
    return false;
}
