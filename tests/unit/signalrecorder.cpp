// SPDX-License-Identifier: GPL-3.0-or-later
#include "signalrecorder.h"

#include <QVariant>

#include <utility>

SignalRecorder::SignalRecorder(QObject *sender, std::function<void()> heard)
    : m_heard(std::move(heard))
{
    const QMetaObject *const meta = sender->metaObject();
    const int firstOwn = QObject::staticMetaObject.methodCount();
    for (int i = firstOwn; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        // As a signal spy does it: a method number that qt_metacall() below knows.
        QMetaObject::connect(sender, i, this, firstOwn + m_signals.size(), Qt::DirectConnection);
        m_signals.append(method);
    }
}

QStringList SignalRecorder::take()
{
    const QStringList taken = m_entries;
    m_entries.clear();
    return taken;
}

int SignalRecorder::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    const QMetaMethod &method = m_signals.at(id);
    QString entry = QString::fromLatin1(method.name());
    for (int i = 0; i < method.parameterCount(); ++i)
        entry += QLatin1Char(' ') + QVariant(method.parameterType(i), arguments[i + 1]).toString();
    m_entries.append(entry);
    if (m_heard)
        m_heard();
    return -1;
}
