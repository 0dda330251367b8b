// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene.h"

#include "testkit/probe/probe.h"

#include <QJsonDocument>
#include <QMap>
#include <QPainter>

#include <cmath>

namespace {

constexpr double Tolerance = 0.01; // pixels or milliseconds, for what was computed in another order

/** As text: "#ffffff", or for several members "{left: 10, top: 3.5}". */
QString shown(const QJsonValue &value)
{
    if (value.isUndefined())
        return QStringLiteral("(nothing)");
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    return value.isString() ? QLatin1Char('"') + value.toString() + QLatin1Char('"')
                            : value.toVariant().toString();
}

bool areAlike(const QJsonValue &one, const QJsonValue &other)
{
    if (one.isDouble() && other.isDouble())
        return std::fabs(one.toDouble() - other.toDouble()) <= Tolerance;
    if (!one.isObject() || !other.isObject())
        return one == other;
    const QJsonObject first = one.toObject();
    const QJsonObject second = other.toObject();
    if (first.keys() != second.keys())
        return false;
    const QStringList names = first.keys();
    return std::all_of(names.begin(), names.end(),
        [&](const QString &name) { return areAlike(first.value(name), second.value(name)); });
}

QMap<QString, QJsonObject> byPath(const QJsonArray &items)
{
    QMap<QString, QJsonObject> result;
    for (const QJsonValue &item : items)
        result.insert(item[QLatin1String("path")].toString(), item.toObject());
    return result;
}

QVector<Difference> differences(
    const QString &path, const QJsonObject &first, const QJsonObject &second)
{
    QStringList names = first.keys() + second.keys();
    names.sort();
    names.removeDuplicates();
    QVector<Difference> result;
    for (const QString &name : qAsConst(names)) {
        if (!areAlike(first.value(name), second.value(name)))
            result.append({ path + QLatin1Char(' ') + name, shown(first.value(name)),
                shown(second.value(name)) });
    }
    return result;
}

/** The smallest rectangle that holds every pixel that differs. */
QRect differingArea(const QImage &first, const QImage &second)
{
    QRect area;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            if (first.pixel(x, y) != second.pixel(x, y))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

QString shown(const QImage &image, const QPoint &place)
{
    return QStringLiteral("%1x%2 pixels, %3 at %4, %5")
        .arg(image.width())
        .arg(image.height())
        .arg(image.valid(place) ? image.pixelColor(place).name() : QStringLiteral("nothing"))
        .arg(place.x())
        .arg(place.y());
}

QJsonObject hiddenToo(const QString &name)
{
    return { { QStringLiteral("name"), name }, { QStringLiteral("all"), true } };
}

} // namespace

Scene Scene::ofWindow(Probe *probe)
{
    Scene scene;
    // The pictures first: with the frame that they draw, what is laid out late has its place.
    scene.m_pictures.append({ QStringLiteral("window"), probe->picture() });
    for (const QString &name :
        { QStringLiteral("coverPicture"), QStringLiteral("backgroundPicture") })
        scene.m_pictures.append({ name, probe->picture(Probe::Target(hiddenToo(name))) });
    for (const QString &line :
        { QStringLiteral("songTitle"), QStringLiteral("artist"), QStringLiteral("album") }) {
        const Probe::Target label = Probe::Target(QStringLiteral("label")).inside(line);
        scene.m_pictures.append({ line, probe->picture(label) });
    }
    scene.m_items = probe->scene();
    scene.hideMovingItems();
    return scene;
}

Scene Scene::ofPopup(Probe *probe)
{
    const Probe::Target overlay = Probe::Target::type(QStringLiteral("QQuickOverlay"));
    Scene scene;
    scene.m_pictures.append({ QStringLiteral("popup"), probe->picture(overlay) });
    scene.m_items = probe->scene(overlay);
    return scene;
}

/** Where something moves, pictures taken at two moments differ by design. */
void Scene::hideMovingItems()
{
    QPainter painter(&m_pictures.first().image);
    for (const QJsonValue &item : qAsConst(m_items)) {
        const QJsonValue within = item[QLatin1String("within")];
        if (within.isObject()) {
            const QRectF area(within[QLatin1String("left")].toDouble(),
                within[QLatin1String("top")].toDouble(), within[QLatin1String("width")].toDouble(),
                within[QLatin1String("height")].toDouble());
            painter.fillRect(area.toAlignedRect(), Qt::black);
        }
    }
}

QVector<Difference> Scene::differencesFrom(const Scene &other) const
{
    QVector<Difference> result;
    const QMap<QString, QJsonObject> items = byPath(m_items);
    const QMap<QString, QJsonObject> others = byPath(other.m_items);
    QStringList paths = items.keys() + others.keys();
    paths.sort();
    paths.removeDuplicates();
    for (const QString &path : qAsConst(paths)) {
        if (items.contains(path) && others.contains(path))
            result += differences(path, items.value(path), others.value(path));
        else
            result.append({ path + QStringLiteral(" visibility"),
                items.contains(path) ? QStringLiteral("shown") : QStringLiteral("hidden"),
                others.contains(path) ? QStringLiteral("shown") : QStringLiteral("hidden") });
    }
    for (int i = 0; i < m_pictures.size(); ++i) {
        const QImage &first = m_pictures.at(i).image;
        const QImage &second = other.m_pictures.at(i).image;
        if (first == second)
            continue;
        const QRect area = differingArea(first, second);
        result.append({ m_pictures.at(i).name + QStringLiteral(" pixels"),
            shown(first, area.center()), shown(second, area.center()) });
    }
    return result;
}
