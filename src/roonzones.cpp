// SPDX-License-Identifier: GPL-3.0-or-later
#include "roonzones.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <algorithm>

namespace {

constexpr int MostFoundGroups = 8;

/** @p names as a list is read, without the empty one. */
QStringList sorted(QStringList names)
{
    names.removeAll(QString());
    std::sort(names.begin(), names.end(), [](const QString &left, const QString &right) {
        const int order = left.compare(right, Qt::CaseInsensitive);
        return order != 0 ? order < 0
                          : left < right; // a fixed order for names that differ only in case
    });
    return names;
}

} // namespace

RoonZones *RoonZones::instance()
{
    static RoonZones *const theInstance = new RoonZones;
    return theInstance;
}

RoonZones::RoonZones(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "RoonZones::constructor in thread "
                                 << QThread::currentThreadId();
}

RoonZones::~RoonZones()
{
    qDeleteAll(m_zones);
}

QVariant RoonZones::zones() const
{
    return availableNames();
}

bool RoonZones::contains(const QString &id) const
{
    return m_zones.contains(id);
}

RoonZone *RoonZones::find(const QString &id) const
{
    return m_zones.value(id);
}

bool RoonZones::add(RoonZone *zone)
{
    const QString id = zone->id();
    if (m_zones.contains(id))
        return false;
    qInfo().noquote().nospace() << "RoonZones::add() inserting zone " << id;
    m_zones.insert(id, zone);
    if (!zone->outputs().isEmpty())
        m_foundGroups.clear();
    connect(
        zone->outputsNotifier(), &ChangeNotifier::changed, this, [this] { m_foundGroups.clear(); });
    return true;
}

void RoonZones::updateAvailableZones(const QByteArray &json)
{
    const QJsonArray elements = QJsonDocument::fromJson(json).array();
    m_available.clear();
    m_foundGroups.clear();
    for (int i = 0; i < elements.size(); ++i) {
        const QJsonObject element = elements.at(i).toObject();
        const QString id = element.value(QLatin1String("id")).toString();
        qDebug().noquote().nospace()
            << "RoonZones::updateAvailableZones() element " << i << " with data " << id;
        m_available.insert(element.value(QLatin1String("name")).toString(), id);
    }

    m_availableNames = sorted(m_available.keys());
    const QList<QString> ids = m_available.values();
    m_availableIds = QSet<QString>(ids.cbegin(), ids.cend());

    const QStringList known = m_zones.keys();
    for (const QString &id : known) {
        if (m_availableIds.contains(id))
            continue;
        qInfo().noquote().nospace()
            << "RoonZones::updateAvailableZones() removing stale zone " << id;
        delete m_zones.take(id);
    }
    emit zonesChanged();
}

QString RoonZones::findZoneByDisplayName(const QString &displayName) const
{
    const Found found = lookUp(displayName);
    if (found.groupRole)
        qInfo().noquote().nospace() << "RoonZones::findZoneByDisplayName() we're "
                                    << found.groupRole << " in a GROUPED zone: " << found.id;
    return found.id;
}

QString RoonZones::idByDisplayName(const QString &displayName) const
{
    return lookUp(displayName).id;
}

RoonZones::Found RoonZones::lookUp(const QString &displayName) const
{
    const auto exact = m_available.constFind(displayName);
    if (exact != m_available.constEnd())
        return { exact.value(), nullptr };

    auto group = m_foundGroups.constFind(displayName);
    if (group == m_foundGroups.constEnd()) {
        // The names that are asked for come from outside.
        if (m_foundGroups.size() >= MostFoundGroups)
            m_foundGroups.clear();
        group = m_foundGroups.insert(displayName, lookUpGroup(displayName));
    }
    return group.value();
}

RoonZones::Found RoonZones::lookUpGroup(const QString &displayName) const
{
    // Group names are the members' names joined by " + ". Deliberate: the name counts anywhere in
    // the group's name. Only the last member has no " + " after it, and is found as a follower.
    const QString leading = displayName + QLatin1String(" + ");
    for (auto zone = m_available.constBegin(); zone != m_available.constEnd(); ++zone) {
        if (zone.key().contains(leading))
            return { zone.value(), "leader" };
    }

    for (auto zone = m_zones.constBegin(); zone != m_zones.constEnd(); ++zone) {
        if (zone.value()->outputs().contains(displayName) && m_availableIds.contains(zone.key()))
            return { zone.key(), "follower" };
    }
    return { QString(), nullptr };
}
