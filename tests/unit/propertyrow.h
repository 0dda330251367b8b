// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

/**
 * One property of a class under test: its entry as propertyTable() writes it down, what a fresh
 * object holds, and what the entry does not say of a write.
 *
 * Where nothing else is said, a write stores the value; a write of another value than the property
 * holds emits the entry's notify signal once, with the value if the signal takes one, and no other
 * signal; it logs nothing and moves no other property. An entry without "write" refuses.
 */
class PropertyRow {
public:
    /**
     * Without @p start, what a fresh object holds depends on its surroundings and is not looked at.
     */
    PropertyRow(const char *entry, const QVariant &start = QVariant());

    /** Every write notifies, also one of the value that is there already. */
    PropertyRow &onEveryWrite();
    /** A write emits the signal of this signature, which is not the property's notify signal. */
    PropertyRow &telling(const char *signature);
    /** A write of another value logs these labelled lines; "%1" stands for the value. */
    PropertyRow &logging(const QStringList &lines);
    /** A write of the value that is there already logs these. */
    PropertyRow &loggingRepeats(const QStringList &lines);
    /** The values to write in place of samples, each different from the one before it. */
    PropertyRow &writing(const QVariantList &values);
    /** Any of these values moves the property of this name as well. */
    PropertyRow &moving(const char *property);

    QString entry() const { return m_entry; }
    QString name() const { return m_entry.section(QLatin1Char(' '), 1, 1); }
    bool isWritable() const { return m_entry.contains(QLatin1String(" write")); }

    bool hasStart() const { return m_start.isValid(); }
    QVariant start() const { return m_start; }
    QVariantList values() const { return m_values; }

    bool tellsEveryWrite() const { return m_tellsEveryWrite; }
    /** The entries of a SignalRecorder when a write of @p value notifies. */
    QStringList signalsOf(const QVariant &value) const;
    /** The lines in the log when @p value is written, which the property holds already or not. */
    QStringList linesOf(const QVariant &value, bool isThere) const;
    /** The other properties that differ from their start while this one does. */
    QStringList moved() const { return m_moved; }

private:
    QString m_entry;
    QVariant m_start;
    QVariantList m_values;
    QString m_signal; // signature; empty for none
    bool m_tellsEveryWrite = false;
    QStringList m_lines;
    QStringList m_repeatedLines;
    QStringList m_moved;
};
