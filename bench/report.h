// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <limits>

/** The table of results. A goal that is missed is shown, and is not a failure. */
class Report {
public:
    enum Goal { AtLeast, AtMost };

    /** What follows belongs to this measurement. */
    void begin(const QString &measurement) { m_measurement = measurement; }

    /** The program's figure against that of its reference; the goal is a limit of their ratio. */
    void addRatio(const QString &what, const QString &unit, double ours, double reference,
        Goal goal, double limit);
    /** A figure with a limit of its own. */
    void addLimited(const QString &what, const QString &unit, double ours, double limit);
    /** A figure without a goal, for whoever reads the others; @p reference below 0 for none. */
    void addFigure(const QString &what, const QString &unit, double ours, double reference = -1);

    /** Writes the table to standard output. */
    void print() const;
    /**
     * Writes the rows to a file as a JSON array of objects, with the texts as they are printed and,
     * for what has a goal, the numbers that are compared. False, with a message, when it cannot.
     */
    bool write(const QString &path) const;

private:
    struct Row {
        QString measurement;
        QString what;
        QString ours;
        QString reference;
        QString ratio;
        QString goal;
        QString verdict;
        double compared = std::numeric_limits<double>::quiet_NaN();
        double limit = std::numeric_limits<double>::quiet_NaN();
    };

    QString m_measurement;
    QList<Row> m_rows;
};
