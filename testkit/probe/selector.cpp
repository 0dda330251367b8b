// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/selector.h"

#include "testkit/probe/liveobjects.h"
#include "testkit/probe/values.h"

#include <QMetaObject>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

namespace {

/**
 * True for the class itself and for the types that QML derives from it, such as
 * "Marquee_QMLTYPE_3".
 */
bool isOfType(const QMetaObject *metaObject, const QByteArray &type)
{
    for (; metaObject; metaObject = metaObject->superClass()) {
        const QByteArray name = metaObject->className();
        if (name == type || name.startsWith(type + "_QML"))
            return true;
    }
    return false;
}

bool isWrittenIn(const QObject *object, const QString &file)
{
    const QQmlContext *const context = qmlContext(object);
    return context && context->baseUrl().fileName() == file;
}

/** What an item lies in on the screen, any other object in the tree of objects. */
const QObject *outerOf(const QObject *object)
{
    const auto *const item = qobject_cast<const QQuickItem *>(object);
    return item && item->parentItem() ? item->parentItem() : object->parent();
}

bool liesInside(const QObject *object, const QString &name)
{
    for (const QObject *outer = outerOf(object); outer; outer = outerOf(outer)) {
        if (outer->objectName() == name)
            return true;
    }
    return false;
}

} // namespace

Selector::Selector(const QJsonObject &description)
    : m_name(description.value(QLatin1String("name")).toString())
    , m_type(description.value(QLatin1String("type")).toString().toLatin1())
    , m_file(description.value(QLatin1String("file")).toString())
    , m_inside(description.value(QLatin1String("inside")).toString())
    , m_where(description.value(QLatin1String("where")).toObject())
    , m_hidden(description.value(QLatin1String("all")).toBool())
{
}

bool Selector::isValid() const
{
    return !m_name.isEmpty() || !m_type.isEmpty() || !m_file.isEmpty() || !m_where.isEmpty();
}

QList<QQuickItem *> Selector::items(const QQuickWindow *window) const
{
    QList<QQuickItem *> found;
    if (isValid())
        collect(window->contentItem(), &found);
    return found;
}

QList<QObject *> Selector::objects() const
{
    QList<QObject *> found;
    if (!isValid())
        return found;
    const QList<QObject *> alive = LiveObjects::ofThisThread();
    for (QObject *object : alive) {
        if (matches(object))
            found.append(object);
    }
    return found;
}

bool Selector::matches(const QObject *object) const
{
    if (!m_name.isEmpty() && object->objectName() != m_name)
        return false;
    if (!m_type.isEmpty() && !isOfType(object->metaObject(), m_type))
        return false;
    if (!m_file.isEmpty() && !isWrittenIn(object, m_file))
        return false;
    if (!m_inside.isEmpty() && !liesInside(object, m_inside))
        return false;
    for (auto it = m_where.begin(); it != m_where.end(); ++it) {
        if (toJson(object->property(it.key().toLatin1())) != it.value())
            return false;
    }
    return true;
}

void Selector::collect(QQuickItem *item, QList<QQuickItem *> *found) const
{
    if (!m_hidden && !item->isVisible())
        return;
    if (matches(item))
        found->append(item);
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children)
        collect(child, found);
}
