// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

/**
 * A folder of commands that stand in for those of the machine, before all others in a script's
 * PATH. What they answer lies in files of the same folder, which the test writes.
 */
class FakeTools {
public:
    FakeTools();

    /** A command with this shell text as its body, in which $here is the folder. */
    void add(const QString &name, const QByteArray &body);
    /** What a command reads, or has written; empty where there is no such file. */
    void write(const QString &file, const QByteArray &text);
    void append(const QString &file, const QByteArray &text);
    QByteArray read(const QString &file) const;
    /** The same by lines, without an empty last one. */
    QStringList lines(const QString &file) const;
    QString path(const QString &file) const { return m_folder.filePath(file); }

    /** The test's own environment, with the commands first and messages in English. */
    QProcessEnvironment environment() const;

private:
    QTemporaryDir m_folder;
};
