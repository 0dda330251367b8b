// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QJsonObject>
#include <QList>

class QQuickItem;

/**
 * How items move from side to side, again and again: not as their animations are set up, but as
 * the items are seen to move when the animations' clock is put forward by single milliseconds.
 */
class Passages {
public:
    /** Watches the items until each one that moves has been through a whole passage. */
    explicit Passages(const QList<QQuickItem *> &items);

    bool moves(const QQuickItem *item) const { return m_passages.contains(item); }
    /**
     * "from" and "to", the first and last x of a passage, and its "duration" in milliseconds.  An
     * item that moves, but in no such way, has "lowest" and "highest" instead.
     */
    QJsonObject of(const QQuickItem *item) const { return m_passages.value(item); }

private:
    QHash<const QQuickItem *, QJsonObject> m_passages;
};
