// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QObject>
#include <QRect>
#include <QVariant>

class QQuickItem;

/** What an item looks like: which of its pixels are drawn, and in which colour. */
class Pixels : public QObject {
    Q_OBJECT
public:
    static Pixels *instance();

    /**
     * A picture of the item as it is drawn now, with the items in it; an invalid one on failure.
     */
    Q_INVOKABLE QVariant grab(QQuickItem *item) const;
    /** The pixels that lie in this area as a whole. */
    Q_INVOKABLE QVariant part(const QVariant &picture, const QRectF &area) const;
    /**
     * The smallest rectangle that holds all that is drawn, but for the faint rim of smoothed
     * glyphs; empty where nothing is.
     */
    Q_INVOKABLE QRect drawn(const QVariant &picture) const;
    /** The colour that is furthest from black; black where there is no other. */
    Q_INVOKABLE QColor brightest(const QVariant &picture) const;
    Q_INVOKABLE bool same(const QVariant &picture, const QVariant &other) const;
    Q_INVOKABLE QColor at(const QVariant &picture, int x, int y) const;
};
