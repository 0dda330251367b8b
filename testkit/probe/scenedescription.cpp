// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/scenedescription.h"

#include "testkit/probe/passages.h"
#include "testkit/probe/values.h"

#include <QHash>
#include <QQmlProperty>
#include <QQuickItem>
#include <QRectF>

namespace {

/** What may differ between two items that look different; not every item has all of it. */
const QStringList Looks { "opacity", "clip", "z", "rotation", "scale", "enabled", "text",
    "textFormat", "color", "font.family", "font.pixelSize", "font.bold", "font.italic",
    "fontInfo.pixelSize", "elide", "horizontalAlignment", "verticalAlignment", "lineCount",
    "contentWidth", "contentHeight", "source", "status", "fillMode", "smooth", "mirror", "radius",
    "border.width", "border.color", "contentX", "contentY", "count", "currentIndex",
    "visualPosition" };

/** The class without the number that depends on which types were made before. */
QString typeOf(const QObject *object)
{
    const QString name = QString::fromLatin1(object->metaObject()->className());
    return name.left(name.indexOf(QLatin1String("_QML")));
}

QJsonObject place(const QQuickItem *item)
{
    const QRectF area = item->mapRectToScene({ 0, 0, item->width(), item->height() });
    return { { QStringLiteral("left"), area.left() }, { QStringLiteral("top"), area.top() },
        { QStringLiteral("width"), area.width() }, { QStringLiteral("height"), area.height() } };
}

QQuickItem *shownByEffect(const QQuickItem *item)
{
    return item->property("source").value<QQuickItem *>();
}

} // namespace

SceneDescription::SceneDescription(QQuickItem *root)
{
    collect(root, QString());
}

void SceneDescription::collect(QQuickItem *item, const QString &path)
{
    m_items.append({ path, item });
    if (QQuickItem *const shown = shownByEffect(item))
        m_items.append({ path + QStringLiteral("/source"), shown });
    collectChildren(item, path);
}

void SceneDescription::collectChildren(QQuickItem *item, const QString &path)
{
    QHash<QString, int> namesakes;
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children) {
        if (!child->isVisible())
            continue;
        const QString name = child->objectName().isEmpty() ? typeOf(child) : child->objectName();
        const int number = namesakes[name]++;
        collect(child,
            (path.isEmpty() ? name : path + QLatin1Char('/') + name)
                + (number > 0 ? QStringLiteral("[%1]").arg(number) : QString()));
    }
}

QJsonArray SceneDescription::items() const
{
    QList<QQuickItem *> shown;
    for (const auto &item : m_items)
        shown.append(item.second);
    const Passages passages(shown);

    QJsonArray descriptions;
    for (const auto &entry : m_items) {
        QQuickItem *const item = entry.second;
        QJsonObject description { { QStringLiteral("path"), entry.first },
            { QStringLiteral("type"), typeOf(item) } };
        QJsonObject where = place(item);
        if (passages.moves(item)) {
            where.remove(QStringLiteral("left"));
            where.remove(QStringLiteral("top"));
            description.insert(QStringLiteral("passage"), passages.of(item));
            description.insert(QStringLiteral("within"), place(item->parentItem()));
        }
        description.insert(QStringLiteral("place"), where);
        for (const QString &name : Looks) {
            const QVariant value = QQmlProperty(item, name).read();
            const bool isObject
                = QMetaType::typeFlags(value.userType()) & QMetaType::PointerToQObject;
            if (value.isValid() && !isObject)
                description.insert(name, toJson(value));
        }
        descriptions.append(description);
    }
    return descriptions;
}
