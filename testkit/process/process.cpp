// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/process.h"

#include "testkit/waiting.h"

#include <csignal>

Process::Process(QObject *parent)
    : QObject(parent)
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::readyReadStandardError, this, &Process::readLines);
    connect(
        &m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, [this] {
            readLines();
            emit finished();
        });
}

Process::~Process()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished();
}

bool Process::start(
    const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    m_lines.clear();
    m_unfinishedLine.clear();
    m_process.setProcessEnvironment(environment);
    m_process.start(program, arguments);
    return m_process.waitForStarted();
}

void Process::sendSignal(int number)
{
    ::kill(static_cast<pid_t>(processId()), number);
}

bool Process::waitForExit()
{
    return waitUntil([this] { return m_process.state() == QProcess::NotRunning; });
}

int Process::exitStatus() const
{
    // For a process that a signal ended, Qt keeps the signal's number where the status would be.
    return m_process.exitStatus() == QProcess::CrashExit ? -m_process.exitCode()
                                                         : m_process.exitCode();
}

void Process::readLines()
{
    m_unfinishedLine += m_process.readAllStandardError();
    for (int end = m_unfinishedLine.indexOf('\n'); end >= 0; end = m_unfinishedLine.indexOf('\n')) {
        const QString line = QString::fromLatin1(m_unfinishedLine.left(end));
        m_unfinishedLine.remove(0, end + 1);
        m_lines.append(line);
        emit lineWritten(line);
    }
}
