// SPDX-License-Identifier: GPL-3.0-or-later
#include "messagehandler.h"

#include <QMutex>
#include <QMutexLocker>

#include <atomic>
#include <cstdio>
#include <cstring>

namespace {

constexpr int CopiesPrinted = 5;

std::atomic<bool> printDebug { false };

/** What the handler remembers between messages. Never destroyed: messages may come until the very
 * end. */
struct Repeats {
    QBasicMutex mutex;
    QString lastLine;
    int count = 0; // further copies of lastLine, counted no further than the first one that is not
                   // printed
};

Repeats &repeats()
{
    static Repeats *const state = new Repeats;
    return *state;
}

const char *fileName(const char *path)
{
    if (!path)
        return "";
    const char *slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

const char *prefix(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return printDebug ? "DEBUG " : nullptr;
    case QtInfoMsg:
        return "INFO  ";
    case QtWarningMsg:
        return "WARN  ";
    case QtCriticalMsg:
        return "ERROR ";
    case QtFatalMsg:
        return "FATAL ";
    }
    return nullptr;
}

} // namespace

void setDebugLogging(bool enabled)
{
    printDebug = enabled;
}

bool debugLogging()
{
    return printDebug;
}

void messageHandler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString line = QLatin1Char('[') + QString::fromLocal8Bit(fileName(context.file))
        + QLatin1Char('(') + QString::number(context.line) + QLatin1String(")] ") + message;

    Repeats &state = repeats();
    QMutexLocker locker(&state.mutex);

    // The bookkeeping comes before the filter: a hidden debug line breaks a run of equal lines.
    if (line != state.lastLine) {
        state.count = 0;
        state.lastLine = line;
    } else if (state.count <= CopiesPrinted) {
        ++state.count;
    }
    if (state.count > CopiesPrinted)
        return;

    const char *const level = prefix(type);
    if (!level)
        return;
    const QByteArray text = state.count == CopiesPrinted
        ? QByteArrayLiteral("last message repeated 5 times")
        : line.toLatin1();
    std::fprintf(stderr, "%s%s\n", level, text.constData());
}
