// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <mutex>

/** One message as the Qt message functions delivered it. */
struct LogMessage {
    QtMsgType level;
    QString file; // without the directory
    int line;
    QString category;
    QString text;

    /** Level word, colon, blank and text: "warning: no panel". */
    QString labelled() const;
};

/**
 * Collects every message of the process, from all threads, as long as it lives.
 *
 * A test takes what it expects; warnings and critical messages that nobody has taken when the
 * capture ends fail the test. Usually made in init() and destroyed in cleanup(). Captures may be
 * nested: the inner one hides the outer one. Fatal messages also go to the handler that was there
 * before.
 */
class LogCapture {
public:
    LogCapture();
    ~LogCapture();

    /** Everything that was not taken yet. */
    QList<LogMessage> lines() const;

    /** Takes all lines, labelled; with @p file (as "roon.cpp") only the lines logged there. */
    QStringList take(const QString &file = QString());

    /** Whether a line that was not taken yet reads, labelled, exactly @p labelled. */
    bool contains(const QString &labelled) const;
    /** How many lines that were not taken yet read, labelled, exactly @p labelled. */
    int count(const QString &labelled) const;

    /** Drops everything collected so far, warnings included. */
    void clear();

private:
    Q_DISABLE_COPY(LogCapture)
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    mutable std::mutex m_mutex;
    QList<LogMessage> m_lines;
    LogCapture *const m_outer;
    QtMessageHandler m_former;
};

/**
 * The labelled line that every constructor of the class @p className logs when it runs in this
 * thread.
 */
QString constructorLine(const QString &className);
