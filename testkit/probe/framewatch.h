// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMutex>
#include <QObject>
#include <QPointer>

class QQuickItem;
class QQuickWindow;

/** Records when the values of one property of an item come on the screen. */
class FrameWatch : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /** Begins anew.  To be called in the GUI thread. */
    void begin(QQuickWindow *window, QQuickItem *item, const QByteArray &property);

    /**
     * The values, as text, with the time at which the first frame that shows them was finished, in
     * nanoseconds of the monotonic clock.
     */
    QJsonObject seen();

private:
    void readItem();
    void noteFrame();

    QPointer<QQuickItem> m_item;
    QByteArray m_property;
    QMetaObject::Connection m_synchronized;
    QMetaObject::Connection m_swapped;
    QMutex m_mutex; // the frames may be drawn in a thread of their own
    QString m_drawn;
    QJsonObject m_seen;
};
