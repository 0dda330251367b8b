// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

struct StreamMessage;

/** Brings messages to their targets, as the program does once the broker has delivered them. */
class Receiver {
public:
    void receive(const StreamMessage &message);
    /** Receives messages of a zone until there have been so many. */
    void receiveUntil(int received, const QString &zone);
    /** Receives as many zones, of which the first is the one that is controlled. */
    void receiveZones(int count);

    /** Counts the instructions of the same messages each time, under this name. */
    void measure(const QByteArray &name, const QString &zone);

    /** The id of a zone of receiveZones(), from 1 on. */
    static QString zoneId(int number);

private:
    int m_received = 0;
};
