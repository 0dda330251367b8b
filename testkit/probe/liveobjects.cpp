// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/liveobjects.h"

#include <QMutex>
#include <QObject>
#include <QSet>
#include <QThread>

// Qt's table of hooks for tools that look into a program.  Its layout is fixed for Qt 5.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace {

constexpr int AddObjectHook = 3;
constexpr int RemoveObjectHook = 4;

QBasicMutex mutex;

// Never destroyed: objects die, and tell us so, until the very end of the process.
QSet<QObject *> &objects()
{
    static QSet<QObject *> *const set = new QSet<QObject *>;
    return *set;
}

void added(QObject *object)
{
    const QMutexLocker locker(&mutex);
    objects().insert(object);
}

void removed(QObject *object)
{
    const QMutexLocker locker(&mutex);
    objects().remove(object);
}

} // namespace

void LiveObjects::startRecording()
{
    qtHookData[AddObjectHook] = reinterpret_cast<quintptr>(&added);
    qtHookData[RemoveObjectHook] = reinterpret_cast<quintptr>(&removed);
}

QList<QObject *> LiveObjects::ofThisThread()
{
    const QMutexLocker locker(&mutex);
    QList<QObject *> list;
    for (QObject *object : qAsConst(objects())) {
        if (object->thread() == QThread::currentThread())
            list.append(object);
    }
    return list;
}
