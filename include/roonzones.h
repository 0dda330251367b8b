// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "roonzone.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

/**
 * All known zones, and which zones are available at the Roon Core at present.
 *
 * Answers the display's central question: which zone id does it control, given a display name, even
 * when that zone plays as part of a group. Zone objects come only through add(), and go only when a
 * list of available zones no longer names them. What a question costs does not depend on how many
 * zones there are. Main thread only.
 */
class RoonZones : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariant zones READ zones NOTIFY zonesChanged)

public:
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static RoonZones *instance();

    /** Knows no zone, and of none that is available. */
    explicit RoonZones(QObject *parent = nullptr);
    /** Destroys the zone objects. */
    ~RoonZones() override;

    /** The display names of the available zones as a string list, sorted regardless of case. */
    QVariant zones() const;
    /** The same in its own type. Empty names are left out. */
    QStringList availableNames() const { return m_availableNames; }

    /** Whether there is a zone object with the id @p id. */
    bool contains(const QString &id) const;
    /** The zone object with the id @p id, or null. The next list of zones may destroy it. */
    RoonZone *find(const QString &id) const;

    /**
     * Takes @p zone into the collection, which owns it from then on. Returns false, and leaves the
     * zone to the caller, when its id is already known. Notifies nobody.
     */
    bool add(RoonZone *zone);

    /**
     * Replaces the available zones by the JSON array @p json of objects with "id" and "name",
     * destroys the zone objects that it does not name, and notifies. Of two with the same name the
     * later one counts. Anything that is not an array counts as an empty one.
     */
    void updateAvailableZones(const QByteArray &json);

    /**
     * The id of the zone that the display controls for @p displayName: the available zone of that
     * name, else the group it leads, else the group it follows; empty when there is none. That it
     * is a group is logged.
     */
    QString findZoneByDisplayName(const QString &displayName) const;
    /** The same without a line in the log, for callers that ask often. */
    QString idByDisplayName(const QString &displayName) const;

signals:
    /** A list of available zones has come, and may be equal to the one before. */
    void zonesChanged();

private:
    struct Found {
        QString id;
        const char *groupRole; ///< null for a zone of that very name
    };
    Found lookUp(const QString &displayName) const;
    Found lookUpGroup(const QString &displayName) const;

    // By the id under which a zone was added, whatever its id is now.
    QHash<QString, RoonZone *> m_zones;
    QHash<QString, QString> m_available; // display name to id
    // What is asked for with every message, and changes with few.
    QStringList m_availableNames; // sorted
    QSet<QString> m_availableIds;
    mutable QHash<QString, Found> m_foundGroups; // by display name; emptied when it may be wrong
};
