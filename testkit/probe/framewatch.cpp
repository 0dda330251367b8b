// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/framewatch.h"

#include "testkit/probe/clock.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QVariant>

void FrameWatch::begin(QQuickWindow *window, QQuickItem *item, const QByteArray &property)
{
    disconnect(m_synchronized);
    disconnect(m_swapped);
    m_seen = {};
    m_item = item;
    m_property = property;
    m_synchronized = connect(window, &QQuickWindow::afterSynchronizing, this, &FrameWatch::readItem,
        Qt::DirectConnection);
    m_swapped = connect(
        window, &QQuickWindow::frameSwapped, this, &FrameWatch::noteFrame, Qt::DirectConnection);
}

/**
 * While the scene is synchronised the GUI thread waits, so the item may be read; what it holds is
 * what the frame will show.
 */
void FrameWatch::readItem()
{
    const QMutexLocker locker(&m_mutex);
    m_drawn = m_item ? m_item->property(m_property).toString() : QString();
}

void FrameWatch::noteFrame()
{
    const double now = monotonicNanoseconds();
    const QMutexLocker locker(&m_mutex);
    if (!m_seen.contains(m_drawn))
        m_seen.insert(m_drawn, now);
}

QJsonObject FrameWatch::seen()
{
    const QMutexLocker locker(&m_mutex);
    return m_seen;
}
