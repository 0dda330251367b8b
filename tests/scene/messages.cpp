// SPDX-License-Identifier: GPL-3.0-or-later
#include "messages.h"

#include <QHash>

namespace {
QtMessageHandler formerHandler = nullptr;
}

Messages *Messages::instance()
{
    static Messages *const messages = new Messages;
    return messages;
}

QStringList Messages::complaints() const
{
    QStringList found;
    for (const QString &message : m_all) {
        if (message.startsWith(QLatin1String("warning: "))
            || message.startsWith(QLatin1String("critical: ")))
            found.append(message);
    }
    return found;
}

void Messages::listen()
{
    const QtMessageHandler former = qInstallMessageHandler(handle);
    if (former != handle)
        formerHandler = former;
}

void Messages::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    static const QHash<int, QString> words { { QtDebugMsg, QStringLiteral("debug: ") },
        { QtInfoMsg, QStringLiteral("info: ") }, { QtWarningMsg, QStringLiteral("warning: ") },
        { QtCriticalMsg, QStringLiteral("critical: ") },
        { QtFatalMsg, QStringLiteral("fatal: ") } };
    instance()->m_all.append(words.value(type) + text);
    if (formerHandler)
        formerHandler(type, context, text);
}
