// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/** One line of the program's log: "INFO  [main.cpp(12)] text". */
struct LogLine {
    /**
     * Takes a line without its newline.  A line of another form has an empty level and is all text.
     */
    static LogLine parsed(const QString &line);

    QString level;  ///< "DEBUG", "INFO", "WARN", "ERROR" or "FATAL"
    QString file;   ///< the source file's name, without directory
    int number = 0; ///< the line in the source file
    QString text;
    QString whole; ///< the line as it was written

    /**
     * Level and text without the place in the source, for comparing a run of lines: "INFO  text".
     */
    QString withoutPlace() const;
};

/** What a test looks for in the log: a level and a text.  An empty level stands for every level. */
class LogPattern {
public:
    /** The text must be the line's whole text. */
    LogPattern(const QString &level, const QString &text);

    /** The same, but a line matches that begins with the text. */
    LogPattern andMore() const;

    bool matches(const LogLine &line) const;

    /** For the message of a test that fails. */
    QString description() const;

private:
    QString m_level;
    QString m_text;
    bool m_andMore = false;
};

namespace Line {
LogPattern debug(const QString &text);
LogPattern info(const QString &text);
LogPattern warning(const QString &text);
LogPattern critical(const QString &text);
LogPattern any(const QString &text);
} // namespace Line
