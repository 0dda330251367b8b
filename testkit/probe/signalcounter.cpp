// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/signalcounter.h"

#include <QMetaMethod>

bool SignalCounter::listen(const QObject *object, const QJsonArray &names)
{
    if (m_object)
        m_object->disconnect(this);
    m_object = object;
    m_count = 0;
    const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("increment()"));
    for (const QJsonValue &name : names) {
        const QMetaObject *const type = object->metaObject();
        const int index = type->indexOfSignal(name.toString().toLatin1() + "()");
        if (index < 0)
            return false;
        connect(object, type->method(index), this, slot);
    }
    return true;
}
