// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"

#include <QDebug>
#include <QTest>
#include <QThread>

#include <atomic>

namespace {

std::atomic<LogCapture *> current { nullptr };

QString word(QtMsgType level)
{
    switch (level) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
        return QStringLiteral("critical");
    case QtFatalMsg:
        return QStringLiteral("fatal");
    }
    return QStringLiteral("unknown");
}

} // namespace

QString LogMessage::labelled() const
{
    return word(level) + QStringLiteral(": ") + text;
}

LogCapture::LogCapture()
    : m_outer(current)
{
    current = this;
    m_former = qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_former);
    current = m_outer;
    for (const LogMessage &line : lines()) {
        if (line.level == QtDebugMsg || line.level == QtInfoMsg)
            continue;
        const QString complaint = QStringLiteral("unexpected message, %1(%2): %3")
                                      .arg(line.file, QString::number(line.line), line.labelled());
        QTest::qFail(complaint.toLocal8Bit().constData(), __FILE__, __LINE__);
    }
}

QList<LogMessage> LogCapture::lines() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_lines;
}

QStringList LogCapture::take(const QString &file)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    QStringList taken;
    QList<LogMessage> left;
    for (const LogMessage &line : qAsConst(m_lines)) {
        if (file.isEmpty() || line.file == file)
            taken.append(line.labelled());
        else
            left.append(line);
    }
    m_lines = left;
    return taken;
}

bool LogCapture::contains(const QString &labelled) const
{
    return count(labelled) > 0;
}

int LogCapture::count(const QString &labelled) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    int found = 0;
    for (const LogMessage &line : m_lines) {
        if (line.labelled() == labelled)
            ++found;
    }
    return found;
}

void LogCapture::clear()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_lines.clear();
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    LogCapture *const capture = current;
    if (!capture)
        return;
    if (type == QtFatalMsg && capture->m_former)
        capture->m_former(type, context, text);
    const QString file = QString::fromLocal8Bit(context.file).section(QLatin1Char('/'), -1);
    const std::lock_guard<std::mutex> guard(capture->m_mutex);
    capture->m_lines.append(
        { type, file, context.line, QString::fromLatin1(context.category), text });
}

QString constructorLine(const QString &className)
{
    QString line;
    QDebug(&line).noquote().nospace()
        << "debug: " << className << "::constructor in thread " << QThread::currentThreadId();
    return line;
}
