// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lastvalues.h"

/**
 * The messages that end a history so that nothing is on view which depends on the way by design.
 *
 * Each is sent only where the history left something of that kind behind; the reasons are in the
 * table at the top of tst_history.cpp.
 */
class Ending {
public:
    /** The wanted zone is the one that the program controls at the end of the history. */
    Ending(const History &history, const QString &wantedZone);

    History messages() const { return m_messages; }
    /** What has the program look at the controlled zone once more; comes last of all. */
    Step lastWord() const;

private:
    void publish(const QString &topic, const QByteArray &payload);
    QString zoneTopic(const QString &key) const;
    QString resolvedZone(const QString &name) const;

    void core();
    void zone(const QString &wantedZone);
    void picture();
    void playbackState();
    void volume(const History &history);
    void screenSaver();

    LastValues m_values;
    QString m_zoneId;
    History m_messages;
};
