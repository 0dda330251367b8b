// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/simulatorprogram.h"

#include "testkit/waiting.h"

#include <algorithm>
#include <csignal>

SimulatorProgram::SimulatorProgram(QObject *parent)
    : QObject(parent)
{
}

SimulatorProgram::~SimulatorProgram()
{
    if (!QTest::currentTestFailed())
        return;
    const QStringList all = lines();
    for (const QString &line : all)
        qInfo("simulator: %s", qUtf8Printable(line));
}

bool SimulatorProgram::start(const QStringList &arguments)
{
    // Process reads standard error; the simulator prints on both, and their order matters.
    const QStringList command = QStringList({ "-c", "exec \"$@\" >&2", "sh", TOUCHUI_SIMULATOR });
    return m_process.start(
        "/bin/sh", command + arguments, QProcessEnvironment::systemEnvironment());
}

bool SimulatorProgram::startAndWait(const QStringList &arguments)
{
    return start(arguments) && waitForLine("broker: connected");
}

bool SimulatorProgram::stop()
{
    sendSignal(SIGTERM);
    return waitForExit() && exitStatus() == 0;
}

QStringList SimulatorProgram::lines() const
{
    QStringList decoded;
    const QStringList &raw = m_process.lines();
    for (const QString &line : raw)
        decoded.append(QString::fromUtf8(line.toLatin1()));
    return decoded;
}

int SimulatorProgram::count(const QString &line) const
{
    return lines().count(line);
}

bool SimulatorProgram::waitForLine(const QString &beginning)
{
    if (waitUntil([this, &beginning] { return printed(beginning) || !isRunning(); })
        && printed(beginning))
        return true;
    qWarning("the simulator does not print: %s", qUtf8Printable(beginning));
    return false;
}

bool SimulatorProgram::printed(const QString &beginning) const
{
    const QStringList all = lines();
    return std::any_of(all.cbegin(), all.cend(),
        [&beginning](const QString &line) { return line.startsWith(beginning); });
}
