// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

class QObject;
class QQuickItem;
class QQuickWindow;

/**
 * A test's description of the objects it means.  All given members must match; a selector without
 * any member is invalid and matches nothing.
 *
 * - "name": the objectName, exactly.
 * - "type": the C++ or QML type, or one it derives from: "QQuickText" also finds labels.
 * - "file": the name, without directory, of the QML file in which the object is written.
 * - "inside": the objectName of an object that it lies in, at any depth.
 * - "where": an object of property names with the values they must have.
 * - "all": true when hidden items count too; they are left out otherwise.
 */
class Selector {
public:
    explicit Selector(const QJsonObject &description);

    /** False when the description names nothing to look for. */
    bool isValid() const;

    /** The matching items of the window, pop-ups included, in painting order within each parent. */
    QList<QQuickItem *> items(const QQuickWindow *window) const;

    /** The matching objects of the calling thread that are alive, whether they are shown or not. */
    QList<QObject *> objects() const;

private:
    bool matches(const QObject *object) const;
    void collect(QQuickItem *item, QList<QQuickItem *> *found) const;

    QString m_name;
    QByteArray m_type;
    QString m_file;
    QString m_inside;
    QJsonObject m_where;
    bool m_hidden = false;
};
