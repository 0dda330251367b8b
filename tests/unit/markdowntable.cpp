// SPDX-License-Identifier: GPL-3.0-or-later
#include "markdowntable.h"

#include <QFile>

QList<QStringList> markdownTable(const QString &path, const QString &firstHead)
{
    QList<QStringList> rows;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    const QString text = QString::fromUtf8(file.readAll());
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        QStringList cells = line.split(QLatin1Char('|'));
        if (cells.size() < 3 || !cells.takeFirst().isEmpty()) {
            if (!rows.isEmpty())
                break; // the table is over
            continue;
        }
        cells.removeLast(); // what follows the last bar
        for (QString &cell : cells)
            cell = cell.trimmed();
        const bool isRule = cells.first().startsWith(QLatin1String("---"));
        if (!isRule && (!rows.isEmpty() || cells.first() == firstHead))
            rows.append(cells);
    }
    return rows;
}
