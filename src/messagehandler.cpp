// SPDX-License-Identifier: GPL-3.0-or-later
#include "messagehandler.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>

namespace {

constexpr int CopiesPrinted = 5;

std::atomic<bool> printDebug { false };

/** What the handler remembers between messages. Never destroyed, as messages come until the end. */
struct Repeats {
    std::mutex mutex; // not Qt's, whose slow path no thread sanitizer sees
    // The last line, in parts: most lines are hidden and never put together.
    QByteArray file;
    std::optional<int> number; // none before the first message; scene errors may have -1
    QString message;
    int count = 0; // further copies of the line; not counted beyond the first that is not printed
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
    const char *const file = fileName(context.file);

    Repeats &state = repeats();
    const std::lock_guard<std::mutex> guard(state.mutex);

    // The bookkeeping comes before the filter: a hidden debug line breaks a run of equal lines.
    if (context.line != state.number || message != state.message || state.file != file) {
        state.count = 0;
        state.file = file;
        state.number = context.line;
        state.message = message;
    } else if (state.count <= CopiesPrinted) {
        ++state.count;
    }
    if (state.count > CopiesPrinted)
        return;

    const char *const level = prefix(type);
    if (!level)
        return;
    if (state.count == CopiesPrinted) {
        std::fprintf(stderr, "%slast message repeated %d times\n", level, CopiesPrinted);
        return;
    }
    const QByteArray text = (QLatin1Char('[') + QString::fromLocal8Bit(file) + QLatin1Char('(')
        + QString::number(context.line) + QLatin1String(")] ") + message)
                                .toLatin1();
    std::fprintf(stderr, "%s%s\n", level, text.constData());
}
