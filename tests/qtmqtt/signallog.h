// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QStringList>
#include <QtMqtt/QMqttClient>

/**
 * Writes down a client's signals in the order in which they are emitted, like
 * "stateChanged(Connected)". error() is added to an entry as " !Name" where it is set before
 * errorChanged() has told.
 */
class SignalLog {
public:
    explicit SignalLog(QMqttClient *client);

    QStringList entries() const { return m_entries; }
    bool contains(const QString &entry) const { return m_entries.contains(entry); }
    /** The entries so far; the log is empty afterwards. */
    QStringList take();

private:
    void add(const QString &entry);

    QMqttClient *const m_client;
    QObject m_context; // ends the connections together with the log
    QStringList m_entries;
};
