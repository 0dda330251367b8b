// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QPair>

class Passages;
class QQuickItem;

/**
 * Everything that is shown in an item of the scene, itself included, in the order in which it is
 * painted.
 *
 * Each entry has the item's "path", of names as in "songTitle/marquee/label", its "type", and of
 * its looks what it has: place and size in the window, text, colour, font, picture, border and so
 * on.  An item that is not shown itself, but is what an effect shows, is described as well.  An
 * item that moves has, instead of a place, its "passage" and "within", the place of its parent.
 */
class SceneDescription {
public:
    explicit SceneDescription(QQuickItem *root);

    QJsonArray items() const;

private:
    void collect(QQuickItem *item, const QString &path);
    void collectChildren(QQuickItem *item, const QString &path);

    QList<QPair<QString, QQuickItem *>> m_items;
};
