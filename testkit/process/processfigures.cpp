// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/processfigures.h"

#include "testkit/process/filecontents.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <ctime>
#include <unistd.h>

namespace {

constexpr int RestMs = 1000;
constexpr int LongestUnrestMs = 60000;

QString directoryOf(qint64 process)
{
    return QStringLiteral("/proc/%1").arg(process);
}

/** The number after @p label, which begins a line of @p text. */
qint64 labelled(const QByteArray &text, const QByteArray &label)
{
    const int start = text.indexOf('\n' + label);
    if (start < 0)
        qFatal("the kernel does not tell %s", label.constData());
    const QByteArray rest = text.mid(start + 1 + label.size());
    return rest.left(rest.indexOf('\n')).simplified().split(' ').first().toLongLong();
}

} // namespace

qint64 ProcessFigures::pssKiB(qint64 process)
{
    return labelled(fileContents(directoryOf(process) + QStringLiteral("/smaps_rollup")), "Pss:");
}

qint64 ProcessFigures::privateKiB(qint64 process)
{
    const QByteArray text = fileContents(directoryOf(process) + QStringLiteral("/smaps_rollup"));
    return labelled(text, "Private_Clean:") + labelled(text, "Private_Dirty:");
}

qint64 ProcessFigures::anonymousKiB(qint64 process)
{
    return labelled(
        fileContents(directoryOf(process) + QStringLiteral("/smaps_rollup")), "Anonymous:");
}

qint64 ProcessFigures::residentKiB(qint64 process)
{
    return labelled(fileContents(directoryOf(process) + QStringLiteral("/status")), "VmRSS:");
}

qint64 ProcessFigures::peakKiB(qint64 process)
{
    return labelled(fileContents(directoryOf(process) + QStringLiteral("/status")), "VmHWM:");
}

void ProcessFigures::forgetPeak(qint64 process)
{
    QFile file(directoryOf(process) + QStringLiteral("/clear_refs"));
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

int ProcessFigures::openFiles(qint64 process)
{
    return QDir(directoryOf(process) + QStringLiteral("/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

int ProcessFigures::threads(qint64 process)
{
    return int(
        labelled(fileContents(directoryOf(process) + QStringLiteral("/status")), "Threads:"));
}

qint64 ProcessFigures::processorMs(qint64 process)
{
    // After the name, which may hold anything but ends with the last parenthesis; user and system
    // time are the 12th and 13th of what follows, in clock ticks.
    const QByteArray text = fileContents(directoryOf(process) + QStringLiteral("/stat"));
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 13)
        qFatal("the kernel does not tell the times of process %lld", process);
    return (fields.at(11).toLongLong() + fields.at(12).toLongLong()) * 1000
        / ::sysconf(_SC_CLK_TCK);
}

qint64 ProcessFigures::processorNs(qint64 process)
{
    clockid_t clock = {};
    timespec time = {};
    if (::clock_getcpuclockid(static_cast<pid_t>(process), &clock) != 0
        || ::clock_gettime(clock, &time) != 0)
        qFatal("the kernel does not tell the processor time of %lld", process);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

QMap<QString, qint64> ProcessFigures::voluntarySwitches(qint64 process)
{
    const QString directory = directoryOf(process) + QStringLiteral("/task/");
    const QStringList threads = QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QMap<QString, qint64> switches;
    for (const QString &thread : threads) {
        const QByteArray status = fileContents(directory + thread + QStringLiteral("/status"));
        const QByteArray name
            = fileContents(directory + thread + QStringLiteral("/comm")).trimmed();
        switches.insert(thread + QLatin1Char(' ') + QString::fromLocal8Bit(name),
            labelled(status, "voluntary_ctxt_switches:"));
    }
    return switches;
}

bool ProcessFigures::waitUntilAtRest(qint64 process)
{
    for (int i = 0; i < LongestUnrestMs / RestMs; ++i) {
        const qint64 before = processorMs(process);
        QTest::qWait(RestMs);
        if (processorMs(process) == before)
            return true;
    }
    return false;
}
