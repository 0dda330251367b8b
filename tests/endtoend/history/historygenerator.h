// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "step.h"

#include <QByteArrayList>
#include <QStringList>

#include <random>

/**
 * Makes up some hundred steps of an appliance's day, the same ones for the same seed: an appliance
 * that plays, with a listener who skips, regroups and changes the volume, and services that send
 * odd things now and then.  First this leads to all pages, then it hardly leaves the player page,
 * where traces would be erased.  In each part only some of all that can happen does, because what
 * happens seldom leaves a trace only where what happens often does not come after it.
 */
class HistoryGenerator {
public:
    /** The addresses are those of the core's image service, the first one before it moves. */
    HistoryGenerator(quint32 seed, const QByteArrayList &coreAddresses);

    History history();
    /** A number below the limit, for whatever else depends on the seed. */
    int below(int limit) { return static_cast<int>(m_random() % static_cast<quint32>(limit)); }
    /** In random order. */
    void shuffle(History *history);

private:
    bool chance(int percent) { return below(100) < percent; }
    template <typename List> auto oneOf(const List &list) { return list.at(below(list.size())); }
    void happen(int steps);

    void publish(const QString &topic, const QByteArray &payload);
    void publishZone(const QString &key, const QByteArray &payload);

    void beginning();
    void returnToPlayer();
    void chooseActivities();
    void zoneText();
    void zoneFlag();
    void zoneNumber();
    void playbackState();
    void loop();
    void picture();
    void track();
    void volume();
    void range();
    void zoneList();
    void outputs();
    void core();
    void setting();
    void state();
    void oddity();
    void touch();
    void wait();

    QByteArray text();
    QByteArray longText(int words);
    QByteArray number();
    QByteArray flag();

    using Activity = void (HistoryGenerator::*)();

    std::mt19937 m_random;
    QByteArrayList m_coreAddresses;
    bool m_calm = false;            ///< whether the player page is to stay
    bool m_smallVolumeChanges;      ///< whether volumes may differ by less than what counts
    QString m_zone;                 ///< the id that zone messages are about
    QStringList m_zoneIds;          ///< those that were listed last
    QVector<Activity> m_activities; ///< each as often as it is likely
    History m_history;
};
